#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "common/TestSupport.h"
#include "support/DateTime.h"
#include "support/Log.h"

namespace tarnwick {
namespace {

using testing::FakeClock;
using testing::TempDir;
using testing::TestPaths;

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Lines end as the platform's text files end them.
#ifdef _WIN32
constexpr const char* kEol = "\r\n";
#else
constexpr const char* kEol = "\n";
#endif

struct LogTest : ::testing::Test {
  TempDir dir;
  TestPaths paths{dir.path()};
  FakeClock clock;
  bool debug = false;
  Log log{paths, clock, debug};
};

TEST_F(LogTest, LineCarriesDateTimeHundredthsAndMessage) {
  clock.now = JoinDate({2026, 11, 22, 14, 5, 9}) + 0.07 / kSecondsPerDay;
  log.WriteLog("(CheckURL) Blocked");
  EXPECT_EQ(log.LogFilePath(), paths.localAppData / "Tarnwick" / "Toolbar" / "blocked.log");
  EXPECT_EQ(Slurp(log.LogFilePath()), std::string("2026-11-22 14:05:09.07: (CheckURL) Blocked") + kEol);
}

TEST_F(LogTest, HundredthsAreBuiltFromTheRoundedFraction) {
  EXPECT_EQ(LogHundredths(3661.5), "50");
  EXPECT_EQ(LogHundredths(3661.07), "07");
  EXPECT_EQ(LogHundredths(3661.1), "10");
  EXPECT_EQ(LogHundredths(3661.123), "12");
  // Nothing after the point: "0" alone, as the log always wrote it.
  EXPECT_EQ(LogHundredths(3661.0), "0");
  EXPECT_EQ(LogHundredths(3661.999), "0");
}

TEST_F(LogTest, StartsAfreshOnlyOnceTheFileExceedsTheLimit) {
  std::filesystem::create_directories(log.LogFilePath().parent_path());
  std::ofstream(log.LogFilePath(), std::ios::binary) << std::string(Log::kMaxLogBytes, 'x');
  log.WriteLog("kept");
  EXPECT_GT(std::filesystem::file_size(log.LogFilePath()), Log::kMaxLogBytes);

  std::ofstream(log.LogFilePath(), std::ios::binary | std::ios::trunc) << std::string(Log::kMaxLogBytes + 1, 'x');
  log.WriteLog("fresh");
  const std::string content = Slurp(log.LogFilePath());
  EXPECT_EQ(content.find('x'), std::string::npos);
  EXPECT_NE(content.find(": fresh"), std::string::npos);
}

TEST_F(LogTest, DebugLogFollowsTheLiveSetting) {
  log.DebugLog("hidden");
  EXPECT_FALSE(std::filesystem::exists(log.LogFilePath()));
  debug = true;
  log.DebugLog("(WriteFile) Writing x");
  EXPECT_NE(Slurp(log.LogFilePath()).find(": (debug) (WriteFile) Writing x"), std::string::npos);
}

TEST_F(LogTest, AnUnwritableFolderIsIgnoredSilently) {
  std::ofstream(dir / "blocker") << "a file where the folder should be";
  paths.localAppData = dir / "blocker";
  log.WriteLog("lost");  // must neither throw nor crash
  EXPECT_FALSE(std::filesystem::exists(log.LogFilePath()));
}

}  // namespace
}  // namespace tarnwick
