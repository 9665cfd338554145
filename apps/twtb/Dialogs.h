// The options and about dialogs as Win32 dialogs over their models: every
// control the model lists becomes a window, the person's changes go to the
// model, and what the model then shows (labels, enabled state) comes back.
#pragma once

#include <windows.h>

namespace tarnwick {
class frmAbout;
class frmOptions;
}  // namespace tarnwick

namespace tarnwick::twtb {

// Control identifiers: the model's controls in order from kFirstControlId;
// OK and Cancel keep the dialog manager's own identifiers, so Enter and
// Escape press them.
inline constexpr int kFirstControlId = 100;

void RunOptionsDialog(HWND owner, frmOptions& form);
void RunAboutDialog(HWND owner, frmAbout& form);

}  // namespace tarnwick::twtb
