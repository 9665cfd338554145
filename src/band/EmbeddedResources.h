// Files built into the program: the generated EmbeddedResources.cpp holds the
// bytes of every file in src/band/resources/ that the build lists.
#pragma once

#include <span>
#include <string_view>

namespace tarnwick {

struct EmbeddedResource {
  std::string_view name;   // the file's name, as a res: address names it
  std::string_view bytes;  // its content
};

std::span<const EmbeddedResource> EmbeddedResources();

}  // namespace tarnwick
