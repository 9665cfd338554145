// Replacing a file while each file-system call fails in turn: the old file
// stays whole, no temporary file is left, and the next attempt succeeds.
#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "common/TestSupport.h"
#include "support/ReplaceFile.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

using testing::TempDir;

std::string Content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

struct ReplaceFileTest : ::testing::Test {
  void SetUp() override {
    std::ofstream(file, std::ios::binary) << "old content";
    ::chmod(file.c_str(), 0640);
  }
  void TearDown() override { sys::ClearInjectedFailures(); }

  bool OnlyTheFileIsLeft() const {
    return std::distance(std::filesystem::directory_iterator(dir.path()), std::filesystem::directory_iterator()) == 1;
  }

  TempDir dir;
  std::filesystem::path file = dir / "settings.reg";
};

TEST_F(ReplaceFileTest, EachFailingCallKeepsTheOldFileWholeAndLeavesNoTemporary) {
  const std::string big(300000, 'x');  // more than one write on a full pipe of a disk
  for (const auto call : {sys::Call::Open, sys::Call::Write, sys::Call::Fsync, sys::Call::Close, sys::Call::Rename}) {
    SCOPED_TRACE(static_cast<int>(call));
    sys::InjectFailure(call, ENOSPC);
    const auto failure = ReplaceFile(file, big, ".tmp");
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->error.value(), ENOSPC);
    EXPECT_EQ(failure->stage == ReplaceFailure::Stage::Renaming, call == sys::Call::Rename);
    EXPECT_EQ(Content(file), "old content");
    EXPECT_TRUE(OnlyTheFileIsLeft());
    sys::ClearInjectedFailures();
  }
  EXPECT_FALSE(ReplaceFile(file, big, ".tmp").has_value());
  EXPECT_EQ(Content(file), big);
}

TEST_F(ReplaceFileTest, AShortWriteIsContinuedAndAFailureAfterItKeepsTheOldFile) {
  sys::InjectFailure(sys::Call::Write, EINTR);
  EXPECT_FALSE(ReplaceFile(file, "new", ".tmp").has_value());
  EXPECT_EQ(Content(file), "new");

  sys::InjectFailure(sys::Call::Write, EIO, 0, true);
  EXPECT_TRUE(ReplaceFile(file, "newer", ".tmp").has_value());
  EXPECT_EQ(Content(file), "new");
  EXPECT_TRUE(OnlyTheFileIsLeft());
}

TEST_F(ReplaceFileTest, TheNewFileKeepsTheModeOfTheOneItReplaces) {
  ASSERT_FALSE(ReplaceFile(file, "new", ".tmp").has_value());
  struct stat info {};
  ASSERT_EQ(::stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);

  const auto fresh = dir / "fresh";
  ASSERT_FALSE(ReplaceFile(fresh, "x", ".tmp", std::filesystem::perms::owner_read | std::filesystem::perms::owner_write)
                   .has_value());
  ASSERT_EQ(::stat(fresh.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
}

}  // namespace
}  // namespace tarnwick
