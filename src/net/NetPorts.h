// What the transfer and update routines need of the process: its log, clock,
// folders, settings, user interface and addresses.
#pragma once

#include "settings/Endpoints.h"
#include "settings/SettingsStore.h"
#include "settings/ToolbarOptions.h"
#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"
#include "ui/Ui.h"

namespace tarnwick {

struct NetPorts {
  Log& log;
  Clock& clock;
  Ui& ui;
  Paths& paths;
  SettingsStore& settings;
  const ToolbarOptions& options;
  const Endpoints& endpoints;
};

}  // namespace tarnwick
