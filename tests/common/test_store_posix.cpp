#include "common/TestSupport.h"
#include "settings/store_regfile.h"

namespace tarnwick::testing {

std::unique_ptr<SettingsStore> MakeCleanTestStore(const std::filesystem::path& folder, Log& log) {
  std::filesystem::create_directories(folder / "machine");
  return MakeRegFileStore(folder / "user" / "settings.reg", folder / "machine" / "local-machine.reg", log);
}

}  // namespace tarnwick::testing
