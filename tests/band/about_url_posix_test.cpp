// Without rights on the machine-wide store (here: its folder does not exist),
// or without the browser's key in it, about:PhishingSite stays unregistered,
// and nobody is told.
#include <gtest/gtest.h>

#include "band/BlockPage.h"
#include "common/TestSupport.h"
#include "settings/store_regfile.h"

namespace tarnwick::testing {
namespace {

TEST(AboutURLTest, AMachineStoreThatCannotBeWrittenIsLeftAloneSilently) {
  TempDir dir;
  const auto machine = dir / "no-such-folder" / "local-machine.reg";
  FakeClock clock;
  TestPaths paths(dir.path());
  ScriptedUi ui;
  ScriptedDialog dialog;
  auto shell = MakePlatformShell();
  ToolbarProcess process(
      {paths, clock, ui, dialog, *shell}, [&](Log& log) { return MakeRegFileStore(dir / "user.reg", machine, log); },
      Endpoints{});
  process.options.Debug = true;

  RegisterAboutURL(process);

  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(process.settings->OpenKey(Root::LocalMachine, kAboutURLsKey, Access::Read, key), kErrorFileNotFound);
  EXPECT_FALSE(std::filesystem::exists(machine.parent_path()));
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_FALSE(std::filesystem::exists(process.log.LogFilePath()));
}

TEST(AboutURLTest, TheBrowsersKeyIsNeverCreated) {
  TestProcess t;
  RegisterAboutURL(t.process);
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(t.process.settings->OpenKey(Root::LocalMachine, kAboutURLsKey, Access::Read, key), kErrorFileNotFound);
  EXPECT_TRUE(t.ui.shown.empty());
}

}  // namespace
}  // namespace tarnwick::testing
