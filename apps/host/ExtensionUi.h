// The user-interface port of the native host. The host cannot wait for a
// page while it works, so a message box is not shown but handed to the
// extension with the reply to the message during which it came:
// - the "Page Blocked" question is answered as the person has not (yet)
//   agreed, No; the record carries its text, and the extension asks on its
//   question page; the message that brings the person's Yes from there
//   answers it Yes;
// - every other message becomes a notice the extension shows; a question
//   among them is answered No.
// Whether Ctrl is held comes with each message from the page.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "ui/DownloadDialog.h"
#include "ui/Ui.h"

namespace tarnwick::host {

struct Notice {
  std::string title;
  std::string text;
  int style = 0;
  int answer = 0;
};

class ExtensionUi final : public Ui {
 public:
  int MessageBox(std::string_view text, std::string_view title, int style) override;
  int ScreenWidthPixels() override { return screenWidth; }
  bool CtrlKeyDown() override { return ctrlDown; }

  // The notices since the last call, as JSON (UTF-8).
  nlohmann::json TakeNotices();

  bool ctrlDown = false;
  bool agreed = false;  // the person said Yes to the "Page Blocked" question
  int screenWidth = 1280;
  std::vector<Notice> notices;
};

// Transfers run without a dialog: nobody watches the host's windows.
class NoDownloadDialog final : public DownloadDialog {
 public:
  void Show(std::string_view) override {}
  void Hide() override {}
  bool Visible() const override { return false; }
  void DrawFrame(int) override {}
};

}  // namespace tarnwick::host
