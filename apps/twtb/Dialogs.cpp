#include "Dialogs.h"

#include <commctrl.h>

#include <string>
#include <vector>

#include "Module.h"
#include "support/com_win32.h"
#include "ui/frmAbout.h"
#include "ui/frmOptions.h"

namespace tarnwick::twtb {
namespace {

constexpr int kWidth = 420;
constexpr int kRow = 24;
constexpr int kMargin = 10;

// An empty dialog of that caption and height in pixels; the controls are made
// when it opens.
std::vector<WORD> EmptyTemplate(const std::string& caption, int height) {
  std::vector<WORD> words(sizeof(DLGTEMPLATE) / sizeof(WORD), 0);
  auto* dialog = reinterpret_cast<DLGTEMPLATE*>(words.data());
  dialog->style = DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;
  // Dialog units: about twice the pixels across, and 8/13 of them down.
  dialog->cx = static_cast<short>(kWidth * 4 / 7);
  dialog->cy = static_cast<short>(height * 8 / 13);
  words.push_back(0);  // no menu
  words.push_back(0);  // the standard class
  for (const wchar_t c : WideFromAnsi(caption)) words.push_back(static_cast<WORD>(c));
  words.push_back(0);
  return words;
}

HWND Make(HWND dialog, const char* windowClass, const std::string& text, DWORD style, int id, int x, int y, int width,
          int height) {
  HWND control = CreateWindowExA(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                                 dialog, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ThisModule(), nullptr);
  SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
  return control;
}

int ButtonId(const std::string& id, int index) {
  if (id == "cbOK") return IDOK;
  if (id == "cbCancel") return IDCANCEL;
  return kFirstControlId + index;
}

class OptionsDialog {
 public:
  explicit OptionsDialog(frmOptions& form) : form_(form), controls_(form.Controls()) {}

  void Run(HWND owner) {
    int height = kMargin * 2;
    for (const ControlView& control : controls_) height += control.kind == ControlKind::Slider ? kRow * 2 : kRow;
    auto dialog = EmptyTemplate(form_.Caption, height + 30);
    DialogBoxIndirectParamA(ThisModule(), reinterpret_cast<DLGTEMPLATE*>(dialog.data()), owner, &Procedure,
                            reinterpret_cast<LPARAM>(this));
  }

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrA(window, DWLP_USER, lParam);
      reinterpret_cast<OptionsDialog*>(lParam)->Build(window);
      return TRUE;
    }
    auto* self = reinterpret_cast<OptionsDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    if (self == nullptr) return FALSE;
    if (message == WM_COMMAND) return self->Command(window, LOWORD(wParam), HIWORD(wParam));
    if (message == WM_HSCROLL) return self->Scrolled(window, reinterpret_cast<HWND>(lParam));
    if (message == WM_CLOSE) {
      self->Press(window, "cbCancel");
      return TRUE;
    }
    return FALSE;
  }

  void Build(HWND window) {
    int y = kMargin;
    const int width = kWidth - 2 * kMargin;
    for (std::size_t i = 0; i < controls_.size(); ++i) {
      const ControlView& control = controls_[i];
      const int id = kFirstControlId + static_cast<int>(i);
      switch (control.kind) {
        case ControlKind::Label:
          Make(window, "Static", control.caption, SS_LEFT, id, kMargin, y, width, kRow - 4);
          break;
        case ControlKind::CheckBox:
          Make(window, "Button", control.caption, BS_AUTOCHECKBOX | WS_TABSTOP, id, kMargin, y, width, kRow - 4);
          break;
        case ControlKind::TextBox:
          Make(window, "Static", control.caption, SS_LEFT, 0, kMargin + 20, y + 3, 60, kRow - 6);
          Make(window, "Edit", control.text, WS_BORDER | ES_AUTOHSCROLL | WS_TABSTOP, id, kMargin + 80, y, width - 80,
               kRow - 4);
          break;
        case ControlKind::Slider: {
          Make(window, "Static", control.caption, SS_LEFT, 0, kMargin, y, width, kRow - 6);
          y += kRow;
          HWND slider = Make(window, TRACKBAR_CLASSA, "", TBS_HORZ | TBS_AUTOTICKS | WS_TABSTOP, id, kMargin, y,
                             width - 110, kRow - 2);
          SendMessageA(slider, TBM_SETRANGEMIN, FALSE, control.min);
          SendMessageA(slider, TBM_SETRANGEMAX, FALSE, control.max);
          SendMessageA(slider, TBM_SETLINESIZE, 0, control.smallStep);
          SendMessageA(slider, TBM_SETPAGESIZE, 0, control.largeStep);
          SendMessageA(slider, TBM_SETTICFREQ, static_cast<WPARAM>(control.tickFrequency), 0);
          Make(window, "Static", "", SS_LEFT, id + kValueLabelOffset, kMargin + width - 100, y + 3, 100, kRow - 6);
          break;
        }
        case ControlKind::Button: {
          Make(window, "Button", control.caption, BS_PUSHBUTTON | WS_TABSTOP, ButtonId(control.id, static_cast<int>(i)),
               kMargin + buttons_ * 130, y + 4, 120, kRow);
          ++buttons_;
          continue;  // the buttons share one row
        }
      }
      y += kRow;
    }
    Refresh(window);
  }

  // Shows what the model now holds.
  void Refresh(HWND window) {
    controls_ = form_.Controls();
    refreshing_ = true;
    for (std::size_t i = 0; i < controls_.size(); ++i) {
      const ControlView& control = controls_[i];
      HWND item = GetDlgItem(window, control.kind == ControlKind::Button ? ButtonId(control.id, static_cast<int>(i))
                                                                         : kFirstControlId + static_cast<int>(i));
      if (item == nullptr) continue;
      EnableWindow(item, control.enabled ? TRUE : FALSE);
      if (control.kind == ControlKind::CheckBox) {
        SendMessageA(item, BM_SETCHECK, control.value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
      } else if (control.kind == ControlKind::Slider) {
        SendMessageA(item, TBM_SETPOS, TRUE, control.value);
        SetDlgItemTextA(window, kFirstControlId + static_cast<int>(i) + kValueLabelOffset,
                        (control.valueLabel + " " + control.unitLabel).c_str());
      } else if (control.kind == ControlKind::TextBox) {
        char text[1024] = {};
        GetWindowTextA(item, text, sizeof text);
        if (control.text != text) SetWindowTextA(item, control.text.c_str());
      }
    }
    refreshing_ = false;
  }

  const ControlView* At(int id) const {
    const int index = id - kFirstControlId;
    if (index < 0 || index >= static_cast<int>(controls_.size())) return nullptr;
    return &controls_[static_cast<std::size_t>(index)];
  }

  INT_PTR Command(HWND window, int id, int notification) {
    if (id == IDOK) return Press(window, "cbOK");
    if (id == IDCANCEL) return Press(window, "cbCancel");
    const ControlView* control = At(id);
    if (control == nullptr || refreshing_) return FALSE;
    const std::string controlId = control->id;
    if (control->kind == ControlKind::Button) return Press(window, controlId);
    if (control->kind == ControlKind::CheckBox && notification == BN_CLICKED) {
      form_.SetValue(controlId, SendMessageA(GetDlgItem(window, id), BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0);
      Refresh(window);
      return TRUE;
    }
    if (control->kind == ControlKind::TextBox && notification == EN_CHANGE) {
      char text[1024] = {};
      GetDlgItemTextA(window, id, text, sizeof text);
      form_.SetText(controlId, text);
      return TRUE;
    }
    return FALSE;
  }

  INT_PTR Scrolled(HWND window, HWND slider) {
    const ControlView* control = At(GetDlgCtrlID(slider));
    if (control == nullptr || refreshing_) return FALSE;
    form_.SetValue(control->id, static_cast<int>(SendMessageA(slider, TBM_GETPOS, 0, 0)));
    Refresh(window);
    return TRUE;
  }

  INT_PTR Press(HWND window, const std::string& id) {
    form_.Press(id);
    if (form_.Closed) {
      EndDialog(window, form_.Saved ? IDOK : IDCANCEL);
    } else {
      Refresh(window);
    }
    return TRUE;
  }

  static constexpr int kValueLabelOffset = 500;
  frmOptions& form_;
  std::vector<ControlView> controls_;
  int buttons_ = 0;
  bool refreshing_ = false;
};

constexpr int kSysInfoId = kFirstControlId + 10;

INT_PTR CALLBACK AboutProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(window, DWLP_USER, lParam);
    auto& form = *reinterpret_cast<frmAbout*>(lParam);
    int y = kMargin;
    int id = kFirstControlId;
    for (const std::string* text : {&form.lblTitle, &form.lblVersion, &form.lblDescription, &form.lblDisclaimer}) {
      const int height = text == &form.lblDisclaimer || text == &form.lblDescription ? kRow * 3 : kRow;
      Make(window, "Static", *text, SS_LEFT, id++, kMargin, y, kWidth - 2 * kMargin, height - 4);
      y += height;
    }
    Make(window, "Button", form.cmdOK, BS_DEFPUSHBUTTON | WS_TABSTOP, IDOK, kWidth - 2 * 130, y, 120, kRow);
    Make(window, "Button", form.cmdSysInfo, BS_PUSHBUTTON | WS_TABSTOP, kSysInfoId, kWidth - 130, y, 120, kRow);
    return TRUE;
  }
  if (message == WM_COMMAND) {
    auto* form = reinterpret_cast<frmAbout*>(GetWindowLongPtrA(window, DWLP_USER));
    if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
      EndDialog(window, IDOK);
      return TRUE;
    }
    if (LOWORD(wParam) == kSysInfoId && form != nullptr) {
      form->cmdSysInfo_Click();
      return TRUE;
    }
  }
  if (message == WM_CLOSE) {
    EndDialog(window, IDCANCEL);
    return TRUE;
  }
  return FALSE;
}

}  // namespace

void RunOptionsDialog(HWND owner, frmOptions& form) { OptionsDialog(form).Run(owner); }

void RunAboutDialog(HWND owner, frmAbout& form) {
  auto dialog = EmptyTemplate(form.Caption, kRow * 9 + 3 * kMargin + 30);
  DialogBoxIndirectParamA(ThisModule(), reinterpret_cast<DLGTEMPLATE*>(dialog.data()), owner, &AboutProcedure,
                          reinterpret_cast<LPARAM>(&form));
}

}  // namespace tarnwick::twtb
