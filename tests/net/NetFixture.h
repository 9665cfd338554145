// A download form over the real retrieval engine, in a temporary program
// folder, with the platform's settings store and a log in the folder.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "LoopbackServer.h"
#include "PageFetchObject.h"
#include "common/TestSupport.h"
#include "net/frmHTTP.h"
#include "net/mdlUpdate.h"

namespace tarnwick::testing {

struct NetFixture : ::testing::Test {
  NetFixture() {
    options.ServerTimeout = 5;
    options.Debug = true;
    std::ofstream(paths.program / "pagefetch.dll") << "component";
    http.Form_Load();
    http.pageFetch = std::make_shared<pagefetch::PageFetchObject>([] { return pagefetch::ZoneLists{}; });
  }

  std::string LogText() {
    std::ifstream in(log.LogFilePath(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  bool Logged(const std::string& line) { return LogText().find(line) != std::string::npos; }

  void Get(const std::string& url, const std::string& headers = {}) {
    http.Start_Download(false, "GET", url, "Tarnwick Toolbar (v1.0.0)", headers, "", "");
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
