// updater.exe: started by the band after the person agreed to an update.
#include <memory>

#include "Updater.h"
#include "support/Clock.h"
#include "support/Paths.h"

int main() {
  using namespace tarnwick;
  const auto clock = MakeSystemClock();
  const auto paths = MakePlatformPaths();
  const bool debug = false;
  Log log(*paths, *clock, debug);
  return updater::InstallNewVersion(paths->ProgramFolder(), log, updater::ProgramFileInUse);
}
