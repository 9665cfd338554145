// What is process-wide (one per apartment): the host creates one and every
// band references it. Tests build their own, with their own folders, clock,
// settings and answers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "settings/Endpoints.h"
#include "settings/SettingsStore.h"
#include "settings/ToolbarOptions.h"
#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"
#include "ui/Ui.h"

namespace tarnwick {

// Builds the settings store once the log exists (the store logs through it).
using SettingsStoreFactory = std::function<std::unique_ptr<SettingsStore>(Log&)>;

class ToolbarProcess {
 public:
  ToolbarProcess(Paths& paths, Clock& clock, Ui& ui, const SettingsStoreFactory& makeStore, Endpoints endpoints);

  // Computes DefaultTextWindowWidth and (re)loads the options.
  void LoadOptions();

  Paths& paths;
  Clock& clock;
  Ui& ui;
  Endpoints endpoints;
  ToolbarOptions options;
  Log log{paths, clock, options.Debug};
  std::unique_ptr<SettingsStore> settings;
  std::int32_t DefaultTextWindowWidth = 0;
  std::string AgentString;
};

}  // namespace tarnwick
