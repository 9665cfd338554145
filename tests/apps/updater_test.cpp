#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "Updater.h"
#include "common/TestSupport.h"
#include "support/Files.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace tarnwick::testing {
namespace {

struct UpdaterTest : ::testing::Test {
  TempDir dir;
  TestPaths paths{dir.path()};
  FakeClock clock;
  bool debug = false;
  Log log{paths, clock, debug};
  std::filesystem::path folder = paths.program;
  updater::UpdaterOptions quick{0.3, 0.01};

  std::string Read(const std::string& name) { return ReadFile(log, folder / name); }
  std::string LogText() { return ReadFile(log, log.LogFilePath()); }
};

TEST_F(UpdaterTest, WaitsForTheProgramFileThenSwapsTheVersions) {
  WriteFile(log, folder / "twtb.dll", "version 1");
  WriteFile(log, folder / "twtb.new", "version 2");
  int polls = 0;
  const auto busyTwice = [&](const std::filesystem::path&) { return ++polls <= 2; };
  EXPECT_EQ(updater::InstallNewVersion(folder, log, busyTwice, quick), 0);
  EXPECT_EQ(polls, 3);
  EXPECT_EQ(Read("twtb.dll"), "version 2");
  EXPECT_EQ(Read("twtb.old"), "version 1");
  EXPECT_FALSE(FileExists(folder / "twtb.new"));
  EXPECT_NE(LogText().find("(Updater) Moved " + (folder / "twtb.new").string()), std::string::npos);
}

TEST_F(UpdaterTest, GivesUpWhileTheProgramStaysInUseAndTouchesNothing) {
  WriteFile(log, folder / "twtb.dll", "version 1");
  WriteFile(log, folder / "twtb.new", "version 2");
  EXPECT_EQ(updater::InstallNewVersion(
                folder, log, [](const std::filesystem::path&) { return true; }, quick),
            1);
  EXPECT_EQ(Read("twtb.dll"), "version 1");
  EXPECT_EQ(Read("twtb.new"), "version 2");
  EXPECT_NE(LogText().find("is still in use"), std::string::npos);
}

TEST_F(UpdaterTest, MissingOrBlockedFilesEndWithAReasonAndTheOldProgramKept) {
  const auto never = [](const std::filesystem::path&) { return false; };
  EXPECT_EQ(updater::InstallNewVersion(folder, log, never, quick), 1);
  EXPECT_NE(LogText().find("Nothing to install"), std::string::npos);

  WriteFile(log, folder / "twtb.dll", "version 1");
  WriteFile(log, folder / "twtb.new", "version 2");
  // A folder where the old version should go: it cannot be moved aside.
  std::filesystem::create_directories(folder / "twtb.old" / "taken");
  EXPECT_EQ(updater::InstallNewVersion(folder, log, never, quick), 1);
  EXPECT_EQ(Read("twtb.dll"), "version 1");
  EXPECT_NE(LogText().find("Could not move"), std::string::npos);
}

#ifndef _WIN32
TEST_F(UpdaterTest, AProgramHoldingItsFileLocksOutTheUpdater) {
  WriteFile(log, folder / "twtb.dll", "version 1");
  const int holder = ::open((folder / "twtb.dll").c_str(), O_RDONLY);
  ASSERT_EQ(::flock(holder, LOCK_SH), 0);
  EXPECT_TRUE(updater::ProgramFileInUse(folder / "twtb.dll"));
  ::close(holder);
  EXPECT_FALSE(updater::ProgramFileInUse(folder / "twtb.dll"));
}
#endif

}  // namespace
}  // namespace tarnwick::testing
