// Test doubles and fixtures shared by every test: a temporary folder, a clock
// set by hand, folders inside the temporary folder, a user interface that
// answers from a script, and a whole process-wide object over all of them
// with the platform's real settings store.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "band/ToolbarProcess.h"
#include "support/Clock.h"
#include "support/Paths.h"
#include "ui/DownloadDialog.h"
#include "ui/Ui.h"

namespace tarnwick::testing {

// A fresh folder, removed with everything in it at the end of the test.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

class FakeClock final : public Clock {
 public:
  double Now() override { return now; }
  double now = 46000.5;  // 2025-12-09 12:00:00
};

class TestPaths final : public Paths {
 public:
  explicit TestPaths(const std::filesystem::path& root) : program(root / "program"), localAppData(root / "local") {
    std::filesystem::create_directories(program);
  }
  std::filesystem::path ProgramFolder() override { return program; }
  std::filesystem::path LocalAppDataFolder() override { return localAppData; }
  std::filesystem::path program;
  std::filesystem::path localAppData;
};

struct ShownMessage {
  std::string text;
  std::string title;
  int style;
};

// Answers message boxes from `answers` in order (vbOK once they run out) and
// records what was shown.
class ScriptedUi final : public Ui {
 public:
  int MessageBox(std::string_view text, std::string_view title, int style) override {
    shown.push_back({std::string(text), std::string(title), style});
    if (answers.empty()) return vbOK;
    const int answer = answers.front();
    answers.pop_front();
    return answer;
  }
  int ScreenWidthPixels() override { return screenWidth; }
  void DoEvents() override {
    ++events;
    if (onDoEvents) onDoEvents();
  }
  bool CtrlKeyDown() override { return ctrlDown; }

  std::function<void()> onDoEvents;
  int events = 0;
  bool ctrlDown = false;
  std::deque<int> answers;
  std::vector<ShownMessage> shown;
  int screenWidth = 1280;
};

// The platform's real settings store, emptied of the toolbar's keys: a
// registry-format file in `folder` on POSIX, the registry on Windows.
std::unique_ptr<SettingsStore> MakeCleanTestStore(const std::filesystem::path& folder, Log& log);

// The download dialog as a person would see it: what it showed, whether it
// is up, which frames it drew.
class ScriptedDialog final : public DownloadDialog {
 public:
  void Show(std::string_view message) override {
    messages.emplace_back(message);
    visible = true;
  }
  void Hide() override { visible = false; }
  bool Visible() const override { return visible; }
  void DrawFrame(int frame) override { frames.push_back(frame); }

  std::vector<std::string> messages;
  std::vector<int> frames;
  bool visible = false;
};

// The system clock, moved on by hand where a test needs time to pass.
class SteppingClock final : public Clock {
 public:
  double Now() override { return system_->Now() + offsetSeconds / 86400.0; }
  double offsetSeconds = 0;

 private:
  std::unique_ptr<Clock> system_ = MakeSystemClock();
};

// A process-wide object in a temporary folder.
struct TestProcess {
  TestProcess();
  TempDir dir;
  FakeClock clock;
  TestPaths paths{dir.path()};
  ScriptedUi ui;
  ScriptedDialog dialog;
  std::unique_ptr<Shell> shell = MakePlatformShell();
  ToolbarProcess process{{paths, clock, ui, dialog, *shell},
                         [this](Log& log) { return MakeCleanTestStore(dir.path(), log); },
                         Endpoints{"http://127.0.0.1:9", "http://127.0.0.1:9"}};
};

}  // namespace tarnwick::testing
