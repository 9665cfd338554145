#include "band/ToolbarProcess.h"

#include "ProductInfo.h"
#include "support/Version.h"

namespace tarnwick {

ToolbarProcess::ToolbarProcess(HostPorts ports, const SettingsStoreFactory& makeStore, Endpoints endpoints_)
    : paths(ports.paths),
      clock(ports.clock),
      ui(ports.ui),
      dialog(ports.dialog),
      shell(ports.shell),
      endpoints(std::move(endpoints_)),
      settings(makeStore(log)),
      AgentString(tarnwick::AgentString()),
      FileDescription(product::kFileDescription) {}

void ToolbarProcess::LoadOptions() {
  DefaultTextWindowWidth = ComputeDefaultTextWindowWidth(ui);
  tarnwick::LoadOptions(*settings, ui, DefaultTextWindowWidth, options);
}

}  // namespace tarnwick
