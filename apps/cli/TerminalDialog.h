// The download dialog on a terminal: the caption and a turning mark on one
// line of standard error (only when it is a terminal), and Ctrl-C as the
// Cancel button while it is up.
#pragma once

#include "ui/DownloadDialog.h"

namespace tarnwick::cli {

class TerminalDialog final : public DownloadDialog {
 public:
  void Show(std::string_view message) override;
  void Hide() override;
  bool Visible() const override { return visible_; }
  void DrawFrame(int frame) override;

  // Presses Cancel when Ctrl-C came while the dialog was up.
  void PollCancel();

 private:
  bool visible_ = false;
  bool drawn_ = false;
};

}  // namespace tarnwick::cli
