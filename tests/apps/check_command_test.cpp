// `tarnwick check` end to end: the real program and the real reference
// server, each in a process of its own, talking over loopback.
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
namespace {

std::string Quote(const std::filesystem::path& path) { return "'" + path.string() + "'"; }

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class CheckCommandTest : public ::testing::Test {
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

  // Runs `tarnwick check` over `urls` with `flags`; its output and exit status.
  std::pair<std::string, int> Check(const std::string& urls, const std::string& flags) {
    std::ofstream(dir / "urls.txt") << urls;
    const std::string command = "XDG_CONFIG_HOME=" + Quote(dir / "config") + " XDG_STATE_HOME=" + Quote(dir / "state") +
                                " TARNWICK_PROGRAM_DIR=" + Quote(dir / "program") + " " + TARNWICK_CLI +
                                " check --server " + server_ + " " + flags + " < " + Quote(dir / "urls.txt") + " > " +
                                Quote(dir / "out.txt") + " 2>/dev/null";
    const int status = std::system(command.c_str());
    return {Slurp(dir / "out.txt"), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
  }

  TempDir dir;
  std::string server_;
  pid_t serverPid_ = 0;
};

TEST_F(CheckCommandTest, EachKindOfVerdictAsJsonLines) {
  const auto [output, status] = Check(
      "mailto:someone@tarnwick.example\n"
      "http://intranet/\n"
      "http://shop.example/?q=%3Cscript%3Ealert(1)%3C/script%3E\n"
      "http://www.bank.example@evil.example/\n"
      "http://paypal-resolution-center.example/signin\n"
      "http://florist.example.org/spring.html\n",
      "--json");
  EXPECT_EQ(status, 1);
  const std::string lines[] = {
      R"({"url":"mailto:someone@tarnwick.example","checked":false,"blocked":false,"step":"scheme",)",
      R"({"url":"http://intranet/","checked":false,"blocked":false,"step":"zone","risk_rank":-1,)"
      R"("last_response":"This site is in your Local Intranet zone.","message":null})",
      R"({"url":"http://shop.example/?q=%3Cscript%3Ealert(1)%3C/script%3E","checked":true,"blocked":true,"step":"xss",)",
      R"({"url":"http://www.bank.example@evil.example/","checked":true,"blocked":true,"step":"local",)",
      R"({"url":"http://paypal-resolution-center.example/signin","checked":true,"blocked":true,"step":"remote",)",
      R"({"url":"http://florist.example.org/spring.html","checked":true,"blocked":false,"step":null,)",
  };
  for (const auto& line : lines) EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
}

TEST_F(CheckCommandTest, TextOutputEscapesControlCharacters) {
  const auto [output, status] = Check("http://florist.example.org/\x1B]0;owned\x07\xC2\x9Dpage.html\n", "");
  EXPECT_EQ(status, 0);
  EXPECT_NE(output.find("http://florist.example.org/\\x1B]0;owned\\x07\\x9Dpage.html\n  allowed"), std::string::npos)
      << output;
  EXPECT_EQ(output.find_first_of("\x1B\x07"), std::string::npos) << output;
}

TEST_F(CheckCommandTest, AnsweringYesAllowsAndBadFlagsAreErrors) {
  const auto [output, status] = Check("http://www.bank.example@evil.example/\n", "--answer yes");
  EXPECT_EQ(status, 0);
  EXPECT_NE(output.find("allowed, checked, step: local"), std::string::npos) << output;
  EXPECT_EQ(Check("", "--answer maybe").second, 2);
  EXPECT_EQ(Check("", "--post-data /nonexistent/file").second, 2);
}

}  // namespace
}  // namespace tarnwick::testing
