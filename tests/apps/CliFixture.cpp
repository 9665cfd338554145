#include "CliFixture.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tarnwick::testing {
namespace {

std::string Quote(const std::filesystem::path& path) { return "'" + path.string() + "'"; }

}  // namespace

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

CliFixture::CliFixture() {
  std::filesystem::copy(TARNWICK_PROGRAM_OUTPUT, program, std::filesystem::copy_options::recursive);
}

CliFixture::~CliFixture() {
  if (serverPid_ <= 0) return;
  ::kill(serverPid_, SIGTERM);
  int status = 0;
  ::waitpid(serverPid_, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the server did not stop cleanly";
}

// Reads the server's address from the first line it prints.
void CliFixture::StartServer(const std::filesystem::path& data) {
  const std::string db = Quote(dir / "server.db");
  ASSERT_EQ(std::system((std::string(TARNWICK_SERVER) + " import --db " + db + " --format lines " +
                         Quote(std::string(TARNWICK_DATA) + "/feeds/tarnwick-lines.txt") + " >/dev/null")
                            .c_str()),
            0);
  int out[2];
  ASSERT_EQ(::pipe(out), 0);
  serverPid_ = ::fork();
  if (serverPid_ == 0) {
    ::dup2(out[1], STDOUT_FILENO);
    ::close(out[0]);
    ::close(out[1]);
    const std::string command = std::string("exec ") + TARNWICK_SERVER + " serve --listen 127.0.0.1:0 --db " + db +
                                " --data " + Quote(data) + " 2>/dev/null";
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(out[1]);
  pollfd ready{out[0], POLLIN, 0};
  char c = 0;
  while (::poll(&ready, 1, 10000) == 1 && ::read(out[0], &c, 1) == 1 && c != '\n') server += c;
  ::close(out[0]);
  ASSERT_TRUE(server.starts_with("http://127.0.0.1:")) << server;
}

CliRun CliFixture::Run(const std::string& args, const std::string& input) {
  std::ofstream(dir / "input.txt") << input;
  const std::string command = "XDG_CONFIG_HOME=" + Quote(dir / "config") + " XDG_STATE_HOME=" + Quote(dir / "state") +
                              " TARNWICK_PROGRAM_DIR=" + Quote(program) + " " + TARNWICK_CLI + " " + args + " < " +
                              Quote(dir / "input.txt") + " > " + Quote(dir / "out.txt") + " 2> " +
                              Quote(dir / "err.txt");
  const int status = std::system(command.c_str());
  return {Slurp(dir / "out.txt"), Slurp(dir / "err.txt"), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

}  // namespace tarnwick::testing
