// The tarnwick program and the reference server, each in a process of its
// own, talking over loopback; the server imports the bundled sample feed.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "common/TestSupport.h"

namespace tarnwick::testing {

inline std::string Quote(const std::filesystem::path& path) { return "'" + path.string() + "'"; }

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
    const std::string db = Quote(dir / "server.db");
    ASSERT_EQ(std::system((std::string(TARNWICK_SERVER) + " import --db " + db + " --format lines " +
                           Quote(std::string(TARNWICK_DATA) + "/feeds/tarnwick-lines.txt") + " >/dev/null")
                              .c_str()),
              0);
    StartServer(db);
  }

  void TearDown() override {
    if (serverPid_ > 0) {
      ::kill(serverPid_, SIGTERM);
      int status = 0;
      ::waitpid(serverPid_, &status, 0);
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the server did not stop cleanly";
    }
  }

  // Starts the server and reads its address from the first line it prints.
  void StartServer(const std::string& db) {
    int out[2];
    ASSERT_EQ(::pipe(out), 0);
    serverPid_ = ::fork();
    if (serverPid_ == 0) {
      ::dup2(out[1], STDOUT_FILENO);
      ::close(out[0]);
      ::close(out[1]);
      const std::string command = std::string("exec ") + TARNWICK_SERVER + " serve --listen 127.0.0.1:0 --db " + db +
                                  " --data " + Quote(TARNWICK_DATA) + " 2>/dev/null";
      ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      ::_exit(127);
    }
    ::close(out[1]);
    pollfd ready{out[0], POLLIN, 0};
    char c = 0;
    while (::poll(&ready, 1, 10000) == 1 && ::read(out[0], &c, 1) == 1 && c != '\n') server_ += c;
    ::close(out[0]);
    ASSERT_TRUE(server_.starts_with("http://127.0.0.1:")) << server_;
  }

  // Runs `tarnwick COMMAND --server SERVER ARGS` with `input` on its standard
  // input, in the test's own folders; its output and exit status.
  std::pair<std::string, int> Run(const std::string& command, const std::string& args, const std::string& input) {
    std::ofstream(dir / "input.txt") << input;
    const std::string line = "XDG_CONFIG_HOME=" + Quote(dir / "config") + " XDG_STATE_HOME=" + Quote(dir / "state") +
                             " TARNWICK_PROGRAM_DIR=" + Quote(dir / "program") + " " + TARNWICK_CLI + " " + command +
                             " --server " + server_ + " " + args + " < " + Quote(dir / "input.txt") + " > " +
                             Quote(dir / "out.txt") + " 2>/dev/null";
    const int status = std::system(line.c_str());
    return {Slurp(dir / "out.txt"), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
  }

  TempDir dir;
  std::string server_;
  pid_t serverPid_ = 0;
};

}  // namespace tarnwick::testing
