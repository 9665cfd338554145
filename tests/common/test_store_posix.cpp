#include <cstdlib>

#include "common/TestSupport.h"

namespace tarnwick::testing {

// The platform's store with its files in `folder`, found through the
// environment as every program finds it: so a component library a test loads
// registers itself, reads the Debug setting and logs where the test looks.
std::unique_ptr<SettingsStore> MakeCleanTestStore(const std::filesystem::path& folder, Log& log) {
  std::filesystem::create_directories(folder / "machine");
  ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
  ::setenv("TARNWICK_LOCAL_MACHINE_SETTINGS", (folder / "machine" / "local-machine.reg").c_str(), 1);
  ::setenv("XDG_STATE_HOME", (folder / "local").c_str(), 1);
  return MakePlatformSettingsStore(log);
}

}  // namespace tarnwick::testing
