// `tarnwick update` end to end, laid out as a package installs it: the
// program in bin/ and its program folder lib/tarnwick/ beside it, with no
// TARNWICK_PROGRAM_DIR to help. A newer release published on the reference
// server is fetched, its signature checked, and after the person's Yes the
// updater puts it in place.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

#include "ReferenceServer.h"
#include "UpdatePublicKey.h"
#include "common/TestSupport.h"
#include "support/Files.h"
#include "support/Signatures.h"

namespace tarnwick::testing {
namespace {

class UpdateCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::filesystem::path built = TARNWICK_PROGRAM_OUTPUT;
    const std::filesystem::path bundled = TARNWICK_DATA;
    std::filesystem::create_directories(dir / "bin");
    std::filesystem::create_directories(program);
    std::filesystem::copy_file(TARNWICK_CLI, dir / "bin" / "tarnwick");
    for (const char* file : {"tarnwickrex.dll", "pagefetch.dll", "updater.exe"}) {
      std::filesystem::copy_file(built / file, program / file);
    }
    WriteFile(log, program / "twtb.dll", "installed version");

    std::filesystem::create_directories(data / "server");
    std::filesystem::create_directories(data / "releases" / "9.9.9");
    for (const char* file : {"localblock.dat", "xss.dat", "tarnwick.xml", "menu.xml", "logo.bmp"}) {
      std::filesystem::copy_file(bundled / file, data / file);
    }
    std::filesystem::copy_file(bundled / "server" / "update-signing.key", data / "server" / "update-signing.key");
    WriteFile(log, data / "releases" / "9.9.9" / "twtb.dll", "version 9.9.9");
    server = std::make_unique<ReferenceServer>(dir / "server.db", data);

    // A build that names its own update key does not trust the demo pair the
    // reference server signs with: point it at the demo public key.
    const std::string demoKey = ReadFile(log, bundled / "server" / "update-signing.pub");
    if (PublicKeyFromHex(demoKey) != PublicKeyFromHex(product::kUpdatePublicKey)) {
      ASSERT_EQ(Tarnwick("options set UpdatePublicKeyFile " + Quote(bundled / "server" / "update-signing.pub")), 0);
    }
  }

  int Tarnwick(const std::string& arguments) {
    const std::string command = "XDG_CONFIG_HOME=" + Quote(dir / "config") + " XDG_STATE_HOME=" + Quote(dir / "state") +
                                " " + Quote(dir / "bin" / "tarnwick") + " " + arguments + " > " +
                                Quote(dir / "out.txt") + " 2>&1 < /dev/null";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string Program(const std::string& name) { return ReadFile(log, program / name); }

  TempDir dir;
  std::filesystem::path program = dir / "lib" / "tarnwick";
  std::filesystem::path data = dir / "data";
  TestPaths paths{dir.path()};
  FakeClock clock;
  bool debug = false;
  Log log{paths, clock, debug};
  std::unique_ptr<ReferenceServer> server;
};

TEST_F(UpdateCommandTest, ANewerReleaseIsInstalledAfterYes) {
  ASSERT_FALSE(server->Base().empty());
  EXPECT_EQ(Tarnwick("update --force --answer yes --server " + server->Base()), 0);
  const std::string output = ReadFile(log, dir / "out.txt");
  EXPECT_NE(output.find("menu.xml: fetched"), std::string::npos) << output;
  EXPECT_NE(output.find("program: newer version downloaded to twtb.new"), std::string::npos) << output;

  // The updater runs on its own, without the command waiting for it.
  for (int i = 0; i < 500 && Program("twtb.dll") != "version 9.9.9"; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(Program("twtb.dll"), "version 9.9.9");
  EXPECT_EQ(Program("twtb.old"), "installed version");
  EXPECT_FALSE(FileExists(program / "twtb.new"));
}

}  // namespace
}  // namespace tarnwick::testing
