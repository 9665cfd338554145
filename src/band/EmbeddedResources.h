// Files built into the program: the generated EmbeddedResources.cpp holds the
// bytes of every file in src/band/resources/ that the build lists.
#pragma once

#include <span>

#include "support/EmbeddedResource.h"

namespace tarnwick {

std::span<const EmbeddedResource> EmbeddedResources();

}  // namespace tarnwick
