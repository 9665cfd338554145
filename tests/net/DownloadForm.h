// A download form over the real retrieval engine, in a temporary program
// folder, with the platform's settings store and a log in the folder: what
// the transfer tests and benchmarks run against.
#pragma once

#include <fstream>
#include <memory>

#include "PageFetchObject.h"
#include "common/TestSupport.h"
#include "net/frmHTTP.h"

namespace tarnwick::testing {

struct DownloadForm {
  explicit DownloadForm(std::int32_t serverTimeout) {
    options.ServerTimeout = serverTimeout;
    std::ofstream(paths.program / "pagefetch.dll") << "component";
    http.Form_Load();
    // Every URL is in the Internet zone (3): these tests are about transfers.
    http.pageFetch = std::make_shared<pagefetch::PageFetchObject>([](std::string_view) { return 3; });
  }

  TempDir dir;
  TestPaths paths{dir.path()};
  SteppingClock clock;
  ScriptedUi ui;
  ScriptedDialog dialog;
  ToolbarOptions options;
  Log log{paths, clock, options.Debug};
  std::unique_ptr<SettingsStore> store = MakeCleanTestStore(dir.path(), log);
  Endpoints endpoints{"http://127.0.0.1:9", "http://127.0.0.1:9"};
  NetPorts ports{log, clock, ui, paths, *store, options, endpoints};
  frmHTTP http{ports, dialog};
};

}  // namespace tarnwick::testing
