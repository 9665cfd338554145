#include "band/ToolbarProcess.h"

#include "support/Version.h"

namespace tarnwick {

ToolbarProcess::ToolbarProcess(Paths& paths_, Clock& clock_, Ui& ui_, const SettingsStoreFactory& makeStore,
                               Endpoints endpoints_)
    : paths(paths_),
      clock(clock_),
      ui(ui_),
      endpoints(std::move(endpoints_)),
      settings(makeStore(log)),
      AgentString(tarnwick::AgentString()) {}

void ToolbarProcess::LoadOptions() {
  DefaultTextWindowWidth = ComputeDefaultTextWindowWidth(ui);
  tarnwick::LoadOptions(*settings, ui, DefaultTextWindowWidth, options);
}

}  // namespace tarnwick
