// The companion components: each is its own library file in the program
// folder, created by ProgID through the component factory.
#pragma once

#include <array>
#include <string_view>

namespace tarnwick {

struct KnownComponent {
  std::string_view name;    // as ComponentFailed names it to the user
  std::string_view progId;  // the class the program creates
  std::string_view file;    // in the program folder, the same name on every platform
};

inline constexpr KnownComponent kRexComponent{"Rex", "Tarnwick.Rex", "tarnwickrex.dll"};
inline constexpr KnownComponent kPageFetchComponent{"PageFetch", "Tarnwick.PageFetch.1", "pagefetch.dll"};
inline constexpr std::array kKnownComponents{kPageFetchComponent, kRexComponent};

}  // namespace tarnwick
