// The tarnwick program against the reference server, each in a process of
// its own, talking over loopback: a program folder with the built
// components, and a server over the bundled sample feed.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "ReferenceServer.h"
#include "common/TestSupport.h"

namespace tarnwick::testing {

inline std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir / "program");
    for (const char* file : {"tarnwickrex.dll", "pagefetch.dll"}) {
      std::filesystem::copy_file(std::filesystem::path(TARNWICK_PROGRAM_OUTPUT) / file, dir / "program" / file);
    }
    ASSERT_EQ(
        std::system((std::string(TARNWICK_SERVER) + " import --db " + Quote(dir / "server.db") + " --format lines " +
                     Quote(std::string(TARNWICK_DATA) + "/feeds/tarnwick-lines.txt") + " >/dev/null")
                        .c_str()),
        0);
    server_ = std::make_unique<ReferenceServer>(dir / "server.db", TARNWICK_DATA);
  }

  // Runs `tarnwick COMMAND --server SERVER ARGS` with `input` on its standard
  // input, in the test's own folders; its output and exit status.
  std::pair<std::string, int> Run(const std::string& command, const std::string& args, const std::string& input) {
    std::ofstream(dir / "input.txt") << input;
    const std::string line = "XDG_CONFIG_HOME=" + Quote(dir / "config") + " XDG_STATE_HOME=" + Quote(dir / "state") +
                             " TARNWICK_PROGRAM_DIR=" + Quote(dir / "program") + " " + TARNWICK_CLI + " " + command +
                             " --server " + server_->Base() + " " + args + " < " + Quote(dir / "input.txt") + " > " +
                             Quote(dir / "out.txt") + " 2>/dev/null";
    const int status = std::system(line.c_str());
    return {Slurp(dir / "out.txt"), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
  }

  TempDir dir;
  std::unique_ptr<ReferenceServer> server_;
};

}  // namespace tarnwick::testing
