#include "Cli.h"
#include "settings/Endpoints.h"

namespace tarnwick::cli {

Host::Host(const std::string& serverFlag, int unattendedAnswer)
    : clock_(MakeSystemClock()), paths_(MakePlatformPaths()), ui_(unattendedAnswer) {
  process_ =
      std::make_unique<ToolbarProcess>(*paths_, *clock_, ui_, MakePlatformSettingsStore, ResolveEndpoints(serverFlag));
}

}  // namespace tarnwick::cli
