// updater.exe: started by the band, after the person agreed to an update
// (no arguments) or when its folder probe failed (/i).
#include <memory>
#include <string>
#include <vector>

#include "Updater.h"
#include "support/Clock.h"
#include "support/Paths.h"

int main(int argc, char** argv) {
  using namespace tarnwick;
  const auto clock = MakeSystemClock();
  const auto paths = MakePlatformPaths();
  const bool debug = false;
  Log log(*paths, *clock, debug);
  updater::UpdaterOptions options;
  options.onHeld = updater::AskToCloseBrowser;
  return updater::RunUpdater(std::vector<std::string>(argv + 1, argv + argc), RunningModuleFolder(), log,
                             updater::ProgramFileInUse, options);
}
