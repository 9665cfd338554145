// One file built into the program (see src/band/resources/Embed.cmake).
#pragma once

#include <string_view>

namespace tarnwick {

struct EmbeddedResource {
  std::string_view name;   // the file's name, as a res: address names it
  std::string_view bytes;  // its content
};

}  // namespace tarnwick
