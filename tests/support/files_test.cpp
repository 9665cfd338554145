#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "common/TestSupport.h"
#include "support/Files.h"
#include "support/UBound.h"

namespace tarnwick {
namespace {

struct FilesTest : ::testing::Test {
  testing::TempDir dir;
  testing::TestPaths paths{dir.path()};
  testing::FakeClock clock;
  bool debug = true;
  Log log{paths, clock, debug};

  std::string LogText() {
    std::ifstream in(log.LogFilePath(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
};

TEST_F(FilesTest, MissingEmptyAndFolderPathsReadAsEmptyWithoutLogging) {
  std::ofstream(dir / "empty");
  std::filesystem::create_directory(dir / "folder");
  for (const char* name : {"missing", "empty", "folder"}) {
    EXPECT_EQ(ReadFile(log, dir / name), "") << name;
    EXPECT_TRUE(ReadBinaryFile(log, dir / name).empty()) << name;
  }
  EXPECT_FALSE(FileExists(dir / "missing"));
  EXPECT_TRUE(FileExists(dir / "empty"));
  EXPECT_FALSE(FileExists(dir / "folder"));
  EXPECT_EQ(LogText(), "");
}

TEST_F(FilesTest, WriteReplacesTheFileWithExactlyTheText) {
  const auto path = dir / "localblock.dat";
  std::string text("first\r\nsecond\0third\x80\xFF", 22);
  ASSERT_TRUE(WriteFile(log, path, "a much longer old content that must not survive"));
  ASSERT_TRUE(WriteFile(log, path, text));
  EXPECT_EQ(ReadFile(log, path), text);
  const auto bytes = ReadBinaryFile(log, path);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), text);
  EXPECT_NE(LogText().find("(debug) (WriteFile) Writing " + path.string()), std::string::npos);
}

TEST_F(FilesTest, WriteBelowAFileFailsWithItsErrorLine) {
  std::ofstream(dir / "plain") << "x";
  const auto path = dir / "plain" / "child.dat";
  EXPECT_FALSE(WriteFile(log, path, "text"));
  EXPECT_NE(LogText().find("(WriteFile) Error writing " + path.string() + ": "), std::string::npos);
}

TEST_F(FilesTest, AFailedReplacementKeepsTheOldFileWhole) {
  const auto path = dir / "xss.dat";
  ASSERT_TRUE(WriteFile(log, path, "old content"));
  // The new content cannot be written: its partial file's name is taken.
  std::filesystem::create_directory(path.string() + kPartialSuffix);
  EXPECT_FALSE(WriteFile(log, path, "new"));
  EXPECT_EQ(ReadFile(log, path), "old content");
  EXPECT_NE(LogText().find("(WriteFile) Error writing " + path.string() + ": "), std::string::npos);
  std::filesystem::remove(path.string() + kPartialSuffix);

  // The old file cannot be replaced: a folder stands in its place.
  std::filesystem::create_directories(dir / "taken" / "inside");
  EXPECT_FALSE(WriteFile(log, dir / "taken", "new"));
  EXPECT_NE(LogText().find("(WriteFile) Error deleting " + (dir / "taken").string() + ": "), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists((dir / "taken").string() + kPartialSuffix));
}

#ifndef _WIN32
// A file the kernel owns: it exists, yet even root cannot read it.
TEST_F(FilesTest, AnUnreadableFileReportsItsError) {
  EXPECT_EQ(ReadFile(log, "/proc/self/mem"), "");
  EXPECT_TRUE(ReadBinaryFile(log, "/proc/self/mem").empty());
  EXPECT_NE(LogText().find("(ReadFile) Error reading /proc/self/mem: "), std::string::npos);
  EXPECT_NE(LogText().find("(ReadBinaryFile) Error reading /proc/self/mem: "), std::string::npos);
}
#endif

TEST(UBound, EmptyArraysGiveMinusOne) {
  EXPECT_EQ(GetUBoundString({}), -1);
  EXPECT_EQ(GetUBoundString({"a", "b"}), 1);
  EXPECT_EQ(GetUBoundByteArray({}), -1);
  EXPECT_EQ(GetUBoundByteArray({1, 2, 3}), 2);
}

}  // namespace
}  // namespace tarnwick
