#include "CliFixture.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tarnwick::testing {
std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

CliFixture::CliFixture() {
  std::filesystem::copy(TARNWICK_PROGRAM_OUTPUT, program, std::filesystem::copy_options::recursive);
}

CliFixture::~CliFixture() = default;

void CliFixture::StartServer(const std::filesystem::path& data) {
  ASSERT_EQ(
      std::system((std::string(TARNWICK_SERVER) + " import --db " + Quote(dir / "server.db") + " --format lines " +
                   Quote(std::string(TARNWICK_DATA) + "/feeds/tarnwick-lines.txt") + " >/dev/null")
                      .c_str()),
      0);
  server_ = std::make_unique<ReferenceServer>(dir / "server.db", data);
  server = server_->Base();
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
