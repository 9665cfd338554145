// The command line as a person runs it: the real `tarnwick` program in a
// program folder laid out as the build lays it out, with settings and log of
// its own, against the real reference server on a loopback port.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "ReferenceServer.h"
#include "common/TestSupport.h"

namespace tarnwick::testing {

struct CliRun {
  std::string out;
  std::string err;
  int status = -1;
};

class CliFixture : public ::testing::Test {
 protected:
  CliFixture();
  ~CliFixture() override;

  // Starts the server over a database of the sample feed and the data folder
  // `data`; sets server.
  void StartServer(const std::filesystem::path& data = TARNWICK_DATA);
  // Runs `tarnwick ARGS` with `input` on standard input.
  CliRun Run(const std::string& args, const std::string& input = "");

  TempDir dir;
  std::filesystem::path program = dir / "program";
  std::string server;

 private:
  std::unique_ptr<ReferenceServer> server_;
};

std::string Slurp(const std::filesystem::path& path);

}  // namespace tarnwick::testing
