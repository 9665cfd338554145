// The updater housekeeping step at start: a program folder that the probe
// cannot write to gets `updater.exe /i` started in it; a sound one nothing.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "band/StartUp.h"
#include "common/TestSupport.h"
#include "support/Files.h"

namespace tarnwick::testing {
namespace {

struct HousekeepingTest : ::testing::Test, TestProcess {
  HousekeepingTest() {
    // An updater that records how it was started.
    std::ofstream(paths.program / "updater.exe") << "#!/bin/sh\necho \"$@\" > '" << record.string() << "'\n";
    std::filesystem::permissions(paths.program / "updater.exe", std::filesystem::perms::owner_all);
  }
  std::string Recorded() {
    for (int i = 0; i < 300 && !FileExists(record); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return ReadFile(process.log, record);
  }
  std::filesystem::path record = dir / "updater-started";
};

TEST_F(HousekeepingTest, ASoundFolderStartsNothing) {
  RunUpdaterHousekeeping(process);
  EXPECT_FALSE(std::filesystem::exists(paths.program / "updater.exe.bak"));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(FileExists(record));
}

TEST_F(HousekeepingTest, AFailedProbeStartsTheUpdaterToRepairTheFolder) {
  std::filesystem::create_directories(paths.program / "updater.exe.bak" / "in the way");
  RunUpdaterHousekeeping(process);
  EXPECT_EQ(Recorded(), "/i\n");
  EXPECT_NE(ReadFile(process.log, process.log.LogFilePath())
                .find("(RunUpdaterHousekeeping) The program folder probe failed; started " +
                      (paths.program / "updater.exe").string() + " /i"),
            std::string::npos);
}

}  // namespace
}  // namespace tarnwick::testing
