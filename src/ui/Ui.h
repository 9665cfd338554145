// User-interface port: what the core asks of the person in front of the
// browser. The host decides how: a terminal prompt or a flag in the command
// line, a page in the extension, a scripted fake in tests.
#pragma once

#include <string_view>

namespace tarnwick {

// Message box styles and answers, numbered as Windows numbers them.
enum MsgBoxStyle : int {
  vbOKOnly = 0,
  vbYesNo = 4,
  vbCritical = 16,
  vbQuestion = 32,
  vbExclamation = 48,
  vbInformation = 64,
  vbDefaultButton2 = 256,
};
enum MsgBoxResult : int { vbOK = 1, vbCancel = 2, vbYes = 6, vbNo = 7 };

class Ui {
 public:
  virtual ~Ui() = default;
  // Shows a message and returns the button chosen.
  virtual int MessageBox(std::string_view text, std::string_view title, int style) = 0;
  // Width of the screen in pixels.
  virtual int ScreenWidthPixels() = 0;
  // Lets the host's pending events run (painting, input, a dialog's Cancel)
  // while the program waits on the user-interface thread.
  virtual void DoEvents() {}
  // Whether the Ctrl key is held down at this moment.
  virtual bool CtrlKeyDown() { return false; }
};

}  // namespace tarnwick
