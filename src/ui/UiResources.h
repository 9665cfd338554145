// Files built into the program for the toolbar's own drawing: the generated
// UiResources.cpp holds the bytes of each file in src/ui/resources/ that the
// build lists (productbutton.bmp, the product menu button's bitmap).
#pragma once

#include <span>

#include "support/EmbeddedResource.h"

namespace tarnwick {

std::span<const EmbeddedResource> UiResources();

}  // namespace tarnwick
