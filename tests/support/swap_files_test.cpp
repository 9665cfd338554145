// Swapping a new version of a file in by renames, and repairing a swap that
// was cut short. On POSIX every rename and delete fails in turn: no version
// is ever lost, and the repair (or the next swap) always ends in place.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "common/TestSupport.h"
#include "support/SwapFiles.h"

#ifndef _WIN32
#include <cerrno>

#include "support/SystemCalls.h"
#endif

namespace tarnwick {
namespace {

using testing::TempDir;

struct SwapFilesTest : ::testing::Test {
  void Write(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return "<none>";
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  // current, pending, previous
  std::string State() { return Read(file.current) + "|" + Read(file.pending) + "|" + Read(file.previous); }

  TempDir dir;
  VersionedFile file = VersionedFile::In(dir.path(), "pagefetch.dll");
  std::vector<std::string> steps;
  SwapObserver observe = [this](const SwapStep& step) {
    steps.push_back(step.from.filename().string() + ">" + step.to.filename().string());
  };
};

TEST_F(SwapFilesTest, TheNewVersionGoesInAndTheCurrentOneIsKept) {
  EXPECT_EQ(file.pending.filename(), "pagefetch.new");
  EXPECT_EQ(file.previous.filename(), "pagefetch.old");
  Write(file.current, "v1");
  Write(file.pending, "v2");
  Write(file.previous, "v0");
  EXPECT_FALSE(SwapInPending(file, observe));
  EXPECT_EQ(State(), "v2|<none>|v1");
  EXPECT_EQ(steps,
            (std::vector<std::string>{"pagefetch.old>", "pagefetch.dll>pagefetch.old", "pagefetch.new>pagefetch.dll"}));
}

TEST_F(SwapFilesTest, RecoveryFinishesOrUndoesOnlyASwapCutShort) {
  Write(file.previous, "v1");
  Write(file.pending, "v2");
  EXPECT_FALSE(RecoverSwap(file, observe));
  EXPECT_EQ(State(), "v2|<none>|v1");  // finished

  std::filesystem::remove(file.current);
  EXPECT_FALSE(RecoverSwap(file, observe));
  EXPECT_EQ(State(), "v1|<none>|<none>");  // nothing to finish with: undone

  Write(file.pending, "v2");
  steps.clear();
  EXPECT_FALSE(RecoverSwap(file, observe));  // in place: a pending file waits for its swap
  std::filesystem::remove(file.current);
  EXPECT_FALSE(RecoverSwap(file, observe));  // no previous version: no swap was under way
  EXPECT_TRUE(steps.empty());
  EXPECT_EQ(State(), "<none>|v2|<none>");
}

#ifndef _WIN32
struct InjectedSwapTest : SwapFilesTest {
  void SetUp() override {
    Write(file.current, "v1");
    Write(file.pending, "v2");
    Write(file.previous, "v0");
  }
  void TearDown() override { sys::ClearInjectedFailures(); }
  // Neither the version in use nor the new one is ever lost.
  void ExpectBothVersionsKept() {
    const std::string state = State();
    EXPECT_NE(state.find("v1"), std::string::npos) << state;
    EXPECT_NE(state.find("v2"), std::string::npos) << state;
  }
};

TEST_F(InjectedSwapTest, EachFailingStepLeavesTheCurrentVersionInPlace) {
  const std::pair<sys::Call, int> failures[] = {{sys::Call::Unlink, 0}, {sys::Call::Rename, 0}, {sys::Call::Rename, 1}};
  for (const auto& [call, skip] : failures) {
    for (const int error : {ENOSPC, EIO, EACCES}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(call)) + "/" + std::to_string(skip) + "/" + std::to_string(error));
      SetUp();
      sys::InjectFailure(call, error, skip);
      const auto failure = SwapInPending(file, observe);
      ASSERT_TRUE(failure);
      EXPECT_EQ(failure->error.value(), error);
      EXPECT_EQ(Read(file.current), "v1");
      ExpectBothVersionsKept();
      sys::ClearInjectedFailures();
      EXPECT_FALSE(SwapInPending(file, observe));
      EXPECT_EQ(Read(file.current), "v2");
    }
  }
}

TEST_F(InjectedSwapTest, AFailedUndoIsRepairedAtTheNextStart) {
  sys::InjectFailure(sys::Call::Rename, EIO, 1, true);  // the second move and its undo
  ASSERT_TRUE(SwapInPending(file, observe));
  EXPECT_EQ(State(), "<none>|v2|v1");
  ExpectBothVersionsKept();

  sys::InjectFailure(sys::Call::Rename, ENOSPC, 0, true);
  EXPECT_TRUE(RecoverSwap(file, observe));  // still failing: nothing changes
  EXPECT_EQ(State(), "<none>|v2|v1");
  sys::ClearInjectedFailures();
  EXPECT_FALSE(RecoverSwap(file, observe));
  EXPECT_EQ(State(), "v2|<none>|v1");
}
#endif

}  // namespace
}  // namespace tarnwick
