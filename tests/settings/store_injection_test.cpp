// Writing settings while each file-system call fails in turn (a full disk, an
// I/O error, a rename refused): every value written before stays whole, the
// new one is there completely or not at all, and the next start reads the
// file as usual.
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <map>

#include "common/TestSupport.h"
#include "settings/RegFile.h"
#include "settings/mdlRegistry.h"
#include "settings/store_regfile.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

constexpr int kOldValues = 40;

std::string OldValue(int i) {
  return "value " + std::to_string(i) + " " + std::string(300, static_cast<char>('a' + i % 26));
}

struct StoreInjectionTest : ::testing::Test {
  void TearDown() override { sys::ClearInjectedFailures(); }

  std::unique_ptr<SettingsStore> Start() { return MakeRegFileStore(userFile, machineFile, log); }

  std::string Stored(SettingsStore& store, const std::string& name) {
    return ToText(mdlRegistry::GetSetting(store, kSettingsKey, name, std::string("<absent>")));
  }

  // Writes `name` from a freshly started store while `call` fails as armed.
  void WriteWhileFailing(sys::Call call, int error, int skip, const std::string& name, bool alsoUnlink = false) {
    auto store = Start();
    sys::ClearInjectedFailures();
    sys::InjectFailure(call, error, skip);
    if (alsoUnlink) sys::InjectFailure(sys::Call::Unlink, EIO);
    mdlRegistry::SaveSetting(*store, kSettingsKey, name, std::string("new ") + name, kRegSz);
    sys::ClearInjectedFailures();
  }

  // What the next start finds: every old value, and `name` whole or absent.
  void ExpectNothingLost(const std::string& name) {
    auto next = Start();
    for (int i = 0; i < kOldValues; ++i) EXPECT_EQ(Stored(*next, "Old" + std::to_string(i)), OldValue(i));
    const std::string stored = Stored(*next, name);
    EXPECT_TRUE(stored == "<absent>" || stored == "new " + name) << stored;
    std::ifstream in(userFile, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const RegFile file = RegFile::Parse(content);
    EXPECT_TRUE(file.UnreadableLines().empty());
  }

  std::size_t FilesBesideTheSettings() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(userFile.parent_path())) {
      if (entry.path() != userFile && entry.path().filename() != "settings.reg.lock") ++count;
    }
    return count;
  }

  testing::TempDir dir;
  testing::TestPaths paths{dir.path()};
  testing::FakeClock clock;
  bool debug = false;
  Log log{paths, clock, debug};
  std::filesystem::path userFile = dir / "config" / "tarnwick" / "settings.reg";
  std::filesystem::path machineFile = dir / "etc" / "local-machine.reg";
};

TEST_F(StoreInjectionTest, EachCallFailingInTurnLosesNothing) {
  {
    auto store = Start();
    for (int i = 0; i < kOldValues; ++i) {
      mdlRegistry::SaveSetting(*store, kSettingsKey, "Old" + std::to_string(i), OldValue(i), kRegSz);
    }
  }
  const std::map<sys::Call, int> errors = {
      {sys::Call::Open, EMFILE}, {sys::Call::Read, EIO},     {sys::Call::Write, ENOSPC},
      {sys::Call::Fsync, EIO},   {sys::Call::Close, ENOSPC}, {sys::Call::Rename, EACCES},
  };
  // How many calls of each kind one write from a fresh start makes.
  std::map<sys::Call, int> calls;
  {
    auto store = Start();
    sys::ClearInjectedFailures();
    mdlRegistry::SaveSetting(*store, kSettingsKey, "Probe", std::string("again"), kRegSz);
    for (const auto& [call, error] : errors) calls[call] = sys::CallCount(call);
  }
  EXPECT_GE(calls[sys::Call::Open], 2);  // the settings file and the new one
  EXPECT_GE(calls[sys::Call::Read], 1);

  int round = 0;
  for (const auto& [call, error] : errors) {
    for (int skip = 0; skip < calls[call]; ++skip) {
      const std::string name = "New" + std::to_string(round++);
      SCOPED_TRACE(name + ": call " + std::to_string(static_cast<int>(call)) + ", skipping " + std::to_string(skip));
      WriteWhileFailing(call, error, skip, name);
      ExpectNothingLost(name);
      EXPECT_EQ(FilesBesideTheSettings(), 0u);
    }
  }
}

TEST_F(StoreInjectionTest, ATemporaryFileLeftByAFailedCleanUpHarmsNothing) {
  {
    auto store = Start();
    for (int i = 0; i < kOldValues; ++i) {
      mdlRegistry::SaveSetting(*store, kSettingsKey, "Old" + std::to_string(i), OldValue(i), kRegSz);
    }
  }
  WriteWhileFailing(sys::Call::Write, ENOSPC, 0, "Full", true);
  EXPECT_EQ(FilesBesideTheSettings(), 1u);
  ExpectNothingLost("Full");
  EXPECT_EQ(Stored(*Start(), "Full"), "<absent>");

  auto store = Start();
  mdlRegistry::SaveSetting(*store, kSettingsKey, "Later", std::string("new Later"), kRegSz);
  EXPECT_EQ(Stored(*Start(), "Later"), "new Later");
  EXPECT_EQ(FilesBesideTheSettings(), 0u);
  ExpectNothingLost("Later");
}

}  // namespace
}  // namespace tarnwick
