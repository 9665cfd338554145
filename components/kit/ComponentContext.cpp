#include "ComponentContext.h"

#include "settings/mdlRegistry.h"

namespace tarnwick::kit {

ComponentContext::ComponentContext()
    : paths_(MakePlatformPaths()), clock_(MakeSystemClock()), settings_(MakePlatformSettingsStore(log_)) {
  try {
    debug_ = ToBoolean(mdlRegistry::GetSetting(*settings_, mdlRegistry::kSettingsKey, "Debug", std::int32_t{0}));
  } catch (const ConversionError&) {
    debug_ = false;  // a Debug value that is no Boolean leaves the debug log off
  }
}

}  // namespace tarnwick::kit
