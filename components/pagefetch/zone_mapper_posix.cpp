#include "ZoneMap.h"
#include "ZoneMapper.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::pagefetch {

// The lists are read at each question, so a changed setting applies at once.
ZoneMapper MakePlatformZoneMapper(kit::ComponentContext& context) {
  SettingsStore& store = context.settings();
  return [&store](std::string_view url) {
    const auto list = [&store](std::string_view name) {
      return ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, name, std::string()));
    };
    return MapZone(url, {list("TrustedSites"), list("IntranetSites"), list("RestrictedSites")});
  };
}

}  // namespace tarnwick::pagefetch
