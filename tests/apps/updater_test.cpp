#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

#include "Updater.h"
#include "common/TestSupport.h"
#include "support/Files.h"
#include "support/Shell.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "support/SystemCalls.h"
#else
#include <windows.h>
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
  updater::UpdaterOptions quick{0.3, 0.01, {}};

  std::string Read(const std::string& name) {
    return FileExists(folder / name) ? ReadFile(log, folder / name) : std::string("<none>");
  }
  std::string LogText() { return ReadFile(log, log.LogFilePath()); }
  bool Logged(const std::string& text) { return LogText().find(text) != std::string::npos; }
  // twtb.dll, twtb.new, twtb.old
  std::string State() { return Read("twtb.dll") + "|" + Read("twtb.new") + "|" + Read("twtb.old"); }
  void Versions(const std::string& current, const std::string& pending, const std::string& previous) {
    for (const auto& [name, text] : {std::pair{"twtb.dll", current}, {"twtb.new", pending}, {"twtb.old", previous}}) {
      std::filesystem::remove(folder / name);
      if (text != "<none>") WriteFile(log, folder / name, text);
    }
  }
  int Run(const std::vector<std::string>& args) {
    return updater::RunUpdater(
        args, folder, log, [](const std::filesystem::path&) { return false; }, quick);
  }
};

TEST_F(UpdaterTest, WaitsForTheProgramFileThenSwapsTheVersions) {
  WriteFile(log, folder / "twtb.dll", "version 1");
  WriteFile(log, folder / "twtb.new", "version 2");
  int polls = 0;
  const auto busyTwice = [&](const std::filesystem::path&) { return ++polls <= 2; };
  int asked = 0;
  updater::UpdaterOptions options = quick;
  options.onHeld = [&asked] { ++asked; };
  EXPECT_EQ(updater::InstallNewVersion(folder, log, busyTwice, options), 0);
  EXPECT_EQ(polls, 3);
  EXPECT_EQ(asked, 1);  // the person is asked once to close the browser
  EXPECT_NE(LogText().find("(Updater) Waiting for the browser to let go of"), std::string::npos);
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

TEST_F(UpdaterTest, RepairFinishesOrUndoesAnInstallCutShortAndClearsTheProbesCopy) {
  Versions("<none>", "version 2", "version 1");
  std::filesystem::create_directory(folder / "updater.exe.bak");  // what made the probe fail
  WriteFile(log, folder / "updater.exe", "the updater");
  EXPECT_EQ(Run({"/i"}), 0);
  EXPECT_EQ(State(), "version 2|<none>|version 1");
  EXPECT_FALSE(std::filesystem::exists(folder / "updater.exe.bak"));
  EXPECT_TRUE(Logged("(Updater) Repaired an interrupted install: Moved " + (folder / "twtb.new").string()));
  EXPECT_TRUE(Logged("(Updater) Repair finished: 2 change(s), 0 problem(s) left"));

  Versions("<none>", "<none>", "version 1");
  EXPECT_EQ(Run({"/I"}), 0);
  EXPECT_EQ(State(), "version 1|<none>|<none>");

  // A pending version waits for the person's consent; nothing to repair.
  Versions("version 1", "version 2", "<none>");
  EXPECT_EQ(Run({"/i"}), 0);
  EXPECT_EQ(State(), "version 1|version 2|<none>");
  EXPECT_TRUE(Logged("waits to be installed"));
}

TEST_F(UpdaterTest, RepairReportsWhatItCannotMend) {
  // No program file and nothing to bring back; no updater.exe to probe with.
  EXPECT_EQ(Run({"/i"}), 1);
  EXPECT_TRUE(Logged((folder / "twtb.dll").string() + " is missing and nothing can replace it"));
  EXPECT_TRUE(Logged("(Updater) The program folder cannot be written"));
  std::filesystem::create_directories(folder / "updater.exe.bak" / "not ours");
  EXPECT_EQ(Run({"/i"}), 1);
  EXPECT_TRUE(Logged("(Updater) Could not delete " + (folder / "updater.exe.bak").string()));

  EXPECT_EQ(Run({"/x", "more"}), 2);
  EXPECT_TRUE(Logged("(Updater) Unknown arguments: /x more"));
}

// The shell port hands each argument over whole, blanks and quotes included:
// the updater logs what it was given.
TEST_F(UpdaterTest, TheShellPassesEachArgumentWhole) {
  std::filesystem::copy_file(TARNWICK_UPDATER, folder / "updater.exe");
#ifndef _WIN32
  ::setenv("XDG_STATE_HOME", (dir / "state").c_str(), 1);
#endif
  const auto platformPaths = MakePlatformPaths();
  Log platformLog(*platformPaths, clock, debug);
  const std::string marker = "two words " + dir.path().filename().string();
  ASSERT_TRUE(MakePlatformShell()->StartProgram(folder / "updater.exe", {"/x", marker, "say \"hi\\\""}));
  const std::string expected = "(Updater) Unknown arguments: /x " + marker + " say \"hi\\\"";
  std::string logged;
  for (int i = 0; i < 500 && logged.find(expected) == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    logged = ReadFile(log, platformLog.LogFilePath());
  }
  EXPECT_NE(logged.find(expected), std::string::npos) << logged;
#ifndef _WIN32
  ::unsetenv("XDG_STATE_HOME");
#endif
}

#ifndef _WIN32
TEST_F(UpdaterTest, EachFailingMoveKeepsAWorkingProgramAndTheNextRunFinishes) {
  const std::pair<sys::Call, int> failures[] = {{sys::Call::Unlink, 0}, {sys::Call::Rename, 0}, {sys::Call::Rename, 1}};
  for (const auto& [call, skip] : failures) {
    for (const bool undoFails : {false, true}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(call)) + "/" + std::to_string(skip) + "/" +
                   std::to_string(undoFails));
      Versions("version 1", "version 2", "version 0");
      sys::InjectFailure(call, ENOSPC, skip, undoFails);
      EXPECT_EQ(Run({}), 1);
      sys::ClearInjectedFailures();
      const std::string state = State();
      EXPECT_NE(state.find("version 1"), std::string::npos) << state;
      EXPECT_NE(state.find("version 2"), std::string::npos) << state;
      // A second move whose undo failed leaves no program file; repair, or
      // the next install, brings the new one in.
      if (Read("twtb.dll") == "<none>") {
        EXPECT_EQ(Run({"/i"}), 1);  // mended, but no updater.exe to probe the folder with
      }
      EXPECT_EQ(Run({}), Read("twtb.new") == "<none>" ? 1 : 0);
      EXPECT_EQ(Read("twtb.dll"), "version 2");
    }
  }
}

// The built updater.exe, copied into a program folder of its own, works
// there whatever the environment names as the program folder.
TEST_F(UpdaterTest, TheUpdaterWorksInTheFolderItRunsFrom) {
  std::filesystem::copy_file(TARNWICK_UPDATER, folder / "updater.exe");
  Versions("version 1", "version 2", "<none>");
  const std::string command = "TARNWICK_PROGRAM_DIR='" + (dir / "elsewhere").string() + "' XDG_STATE_HOME='" +
                              (dir / "state").string() + "' '" + (folder / "updater.exe").string() + "'";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(State(), "version 2|<none>|version 1");
}

TEST_F(UpdaterTest, AProgramHoldingItsFileLocksOutTheUpdater) {
  WriteFile(log, folder / "twtb.dll", "version 1");
  const int holder = ::open((folder / "twtb.dll").c_str(), O_RDONLY);
  ASSERT_EQ(::flock(holder, LOCK_SH), 0);
  EXPECT_TRUE(updater::ProgramFileInUse(folder / "twtb.dll"));
  ::close(holder);
  EXPECT_FALSE(updater::ProgramFileInUse(folder / "twtb.dll"));
}
#endif

#ifdef _WIN32
TEST_F(UpdaterTest, ALoadedLibraryIsHeldUntilItIsFreed) {
  // Any module file does: the updater's own, under the band's name.
  std::filesystem::copy_file(TARNWICK_UPDATER, folder / "twtb.dll");
  HMODULE loaded = LoadLibraryExA((folder / "twtb.dll").string().c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  ASSERT_NE(loaded, nullptr);
  EXPECT_TRUE(updater::ProgramFileInUse(folder / "twtb.dll"));
  FreeLibrary(loaded);
  EXPECT_FALSE(updater::ProgramFileInUse(folder / "twtb.dll"));
}
#endif

}  // namespace
}  // namespace tarnwick::testing
