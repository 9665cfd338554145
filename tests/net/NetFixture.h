// The transfer tests' fixture: a download form (DownloadForm.h) with the
// debug log on, and helpers to read the log and fetch.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "DownloadForm.h"
#include "LoopbackServer.h"
#include "net/mdlUpdate.h"

namespace tarnwick::testing {

struct NetFixture : ::testing::Test, DownloadForm {
  NetFixture() : DownloadForm(5) { options.Debug = true; }

  std::string LogText() {
    std::ifstream in(log.LogFilePath(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  bool Logged(const std::string& line) { return LogText().find(line) != std::string::npos; }

  void Get(const std::string& url, const std::string& headers = {}) {
    http.Start_Download(false, "GET", url, "Tarnwick Toolbar (v1.0.0)", headers, "", "");
  }
};

}  // namespace tarnwick::testing
