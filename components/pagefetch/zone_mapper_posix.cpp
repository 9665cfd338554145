#include <memory>
#include <optional>

#include "ZoneMap.h"
#include "ZoneMapper.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::pagefetch {

// The lists are read again whenever the store says they may have changed,
// so a changed setting applies at once; a check asks for every URL, and the
// lists stay as they are for months.
ZoneMapper MakePlatformZoneMapper(kit::ComponentContext& context) {
  SettingsStore& store = context.settings();
  struct Kept {
    std::optional<std::uint64_t> revision;
    ZoneLists lists;
  };
  return [&store, kept = std::make_shared<Kept>()](std::string_view url) {
    const auto revision = store.Revision(Root::CurrentUser);
    if (!revision || revision != kept->revision) {
      const auto list = [&store](std::string_view name) {
        return ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, name, std::string()));
      };
      kept->lists = {list("TrustedSites"), list("IntranetSites"), list("RestrictedSites")};
      kept->revision = revision;
    }
    return MapZone(url, kept->lists);
  };
}

}  // namespace tarnwick::pagefetch
