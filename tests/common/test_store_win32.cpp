#include <windows.h>

#include "common/TestSupport.h"

namespace tarnwick::testing {

std::unique_ptr<SettingsStore> MakeCleanTestStore(const std::filesystem::path&, Log& log) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Tarnwick");
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, "Software\\Tarnwick");
  return MakePlatformSettingsStore(log);
}

}  // namespace tarnwick::testing
