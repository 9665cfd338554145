// The command line's user interface: messages go to standard error; a Yes/No
// question is asked at the terminal when standard input is one, and otherwise
// answered from the command line's --answer choice.
#pragma once

#include "TerminalDialog.h"
#include "ui/Ui.h"

namespace tarnwick::cli {

class TerminalUi final : public Ui {
 public:
  explicit TerminalUi(int unattendedAnswer = vbNo) : unattendedAnswer_(unattendedAnswer) {}

  int MessageBox(std::string_view text, std::string_view title, int style) override;
  // A terminal has no screen width in pixels: the common 1024.
  int ScreenWidthPixels() override { return 1024; }
  void DoEvents() override { dialog.PollCancel(); }
  // A terminal cannot tell whether Ctrl is down: the command line says so.
  bool CtrlKeyDown() override { return ctrlHeld; }

  TerminalDialog dialog;
  bool ctrlHeld = false;

 private:
  int unattendedAnswer_;
};

}  // namespace tarnwick::cli
