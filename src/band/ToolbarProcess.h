// What is process-wide (one per apartment): the host creates one and every
// band references it. Tests build their own, with their own folders, clock,
// settings and answers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "check/Canonicalizer.h"
#include "check/Resolver.h"
#include "check/mdlXSS.h"
#include "net/frmHTTP.h"
#include "net/mdlUpdate.h"
#include "settings/Endpoints.h"
#include "settings/SettingsStore.h"
#include "settings/ToolbarOptions.h"
#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"
#include "support/Shell.h"
#include "ui/DownloadDialog.h"
#include "ui/MenuState.h"
#include "ui/ToolbarCommands.h"
#include "ui/Ui.h"
#include "ui/frmOptions.h"

namespace tarnwick {

// Builds the settings store once the log exists (the store logs through it).
using SettingsStoreFactory = std::function<std::unique_ptr<SettingsStore>(Log&)>;

// The host's side of the platform: where things are, what time it is, and
// how to reach the person and start programs.
struct HostPorts {
  Paths& paths;
  Clock& clock;
  Ui& ui;
  DownloadDialog& dialog;
  Shell& shell;
};

class ToolbarProcess {
 public:
  ToolbarProcess(HostPorts ports, const SettingsStoreFactory& makeStore, Endpoints endpoints);

  // Computes DefaultTextWindowWidth and (re)loads the options.
  void LoadOptions();
  NetPorts Net() { return {log, clock, ui, paths, *settings, options, endpoints}; }
  MenuPorts Menus() { return {log, paths, endpoints, updates, AgentString, menus}; }
  CommandPorts Commands() { return {log, ui, updates, endpoints, AgentString, FileDescription, menus}; }
  OptionsPorts OptionsForm() {
    return {*settings, options, DefaultTextWindowWidth, [this] { LoadOptions(); }};
  }

  Paths& paths;
  Clock& clock;
  Ui& ui;
  DownloadDialog& dialog;
  Shell& shell;
  Endpoints endpoints;
  ToolbarOptions options;
  Log log{paths, clock, options.Debug};
  std::unique_ptr<SettingsStore> settings;
  std::int32_t DefaultTextWindowWidth = 0;
  std::string AgentString;
  // The program's file description ("Tarnwick Toolbar"); a product built
  // under another description behaves differently in places.
  std::string FileDescription;
  // The one download form (holding the shared retrieval component once the
  // host has created it) and the updater with its file-hash table.
  frmHTTP http{Net(), dialog};
  mdlUpdate updates{Net(), http, shell};
  // The cross-site scripting patterns, and the risk rank of the page last
  // checked (-1 when unknown), which the site information strip reads.
  mdlXSS XSS{options, log};
  std::int16_t CurrentRiskRank = -1;
  // The product and client menus with their bitmaps.
  MenuState menus;
  // Set once the options are loaded, and again when a toolbar is built.
  bool initialised = false;
  // Bands started and not yet closed; the first runs the process-wide
  // start-up, the last to close lets the retrieval component go.
  int openBands = 0;
  // Name resolution and URL canonicalisation as the platform does them;
  // tests put their own in.
  std::unique_ptr<Resolver> resolver = MakePlatformResolver();
  std::unique_ptr<Canonicalizer> canonicalizer = MakePlatformCanonicalizer();
};

}  // namespace tarnwick
