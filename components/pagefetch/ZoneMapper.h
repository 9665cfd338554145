// Where MapZone's answer comes from: the toolbar's own zone lists (ZoneMap.h)
// over the settings on POSIX, the system's security zones on Windows
// (IInternetSecurityManager::MapUrlToZone), so the band sees the zones the
// person has set in the browser.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "ComponentContext.h"

namespace tarnwick::pagefetch {

// A URL's security zone, numbered as ZoneMap.h numbers them.
using ZoneMapper = std::function<std::int32_t(std::string_view url)>;

// The platform's zones, for the component `context` belongs to.
ZoneMapper MakePlatformZoneMapper(kit::ComponentContext& context);

}  // namespace tarnwick::pagefetch
