#include "Win32BandWindows.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>

#include "Dialogs.h"
#include "Module.h"
#include "ui/cPopupMenu.h"

namespace tarnwick::twtb {
namespace {

constexpr const char* kOwnProcedure = "WinProc";
constexpr const char* kObject = "Object";
constexpr DWORD kToolbarStyle = 0x40019944;  // WS_CHILD | WS_TABSTOP | the toolbar's TBSTYLE_/CCS_ flags
constexpr DWORD kTextStyle = 0x5000408C;     // WS_CHILD | WS_VISIBLE | SS_ENDELLIPSIS | SS_NOPREFIX | ...
constexpr int kBandHeight = 22;
constexpr int kSearchWidth = 160;
constexpr int kRiskBarWidth = 50;

HMENU BuildMenu(const cPopupMenu& menu) {
  HMENU built = CreatePopupMenu();
  for (const cPopupMenu::Entry& entry : menu.Entries()) {
    if (entry.submenu) {
      AppendMenuA(built, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(BuildMenu(*entry.submenu)),
                  entry.caption.c_str());
    } else if (entry.caption == "-") {
      AppendMenuA(built, MF_SEPARATOR, 0, nullptr);
    } else {
      AppendMenuA(built, MF_STRING, static_cast<UINT_PTR>(entry.number), entry.caption.c_str());
    }
  }
  return built;
}

}  // namespace

Win32BandWindows::Win32BandWindows(BandEvents& events, const MenuState& menus) : events_(events), menus_(menus) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_BAR_CLASSES | ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
}

Win32BandWindows::~Win32BandWindows() {
  if (productBitmap_ != nullptr) DeleteObject(productBitmap_);
  if (clientBitmap_ != nullptr) DeleteObject(clientBitmap_);
}

WindowHandle Win32BandWindows::CreateMessageWindow() {
  HWND window = CreateWindowExA(0, "#32770", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr);
  roles_[window] = Role::Message;
  return ToHandle(window);
}

WindowHandle Win32BandWindows::CreateToolbarWindow(WindowHandle messageWindow) {
  HWND toolbar = CreateWindowExA(0, TOOLBARCLASSNAMEA, "", kToolbarStyle, 0, 0, 0, 0, ToHwnd(messageWindow), nullptr,
                                 ThisModule(), nullptr);
  if (toolbar == nullptr) return 0;
  SendMessageA(toolbar, TB_BUTTONSTRUCTSIZE, 20, 0);
  SendMessageA(toolbar, TB_SETBITMAPSIZE, 0, MAKELPARAM(16, 16));
  SendMessageA(toolbar, TB_SETBUTTONSIZE, 0, MAKELPARAM(16, 16));
  const LRESULT extended = SendMessageA(toolbar, TB_GETEXTENDEDSTYLE, 0, 0);
  SendMessageA(toolbar, TB_SETEXTENDEDSTYLE, 0, extended | TBSTYLE_EX_DRAWDDARROWS | TBSTYLE_EX_MIXEDBUTTONS);
  tooltip_ = CreateWindowExA(0, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0, 0, 0, toolbar, nullptr,
                             ThisModule(), nullptr);
  roles_[toolbar] = Role::Other;
  return ToHandle(toolbar);
}

WindowHandle Win32BandWindows::CreateProductMenuWindow(WindowHandle toolbar) {
  productBitmap_ = LoadBitmapA(ThisModule(), MAKEINTRESOURCEA(1));
  BITMAP size{};
  GetObjectA(productBitmap_, sizeof size, &size);
  HWND button = CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE | SS_BITMAP, 0, 3, size.bmWidth, size.bmHeight,
                                ToHwnd(toolbar), nullptr, ThisModule(), nullptr);
  SendMessageA(button, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(productBitmap_));
  SetWindowLongPtrA(button, GWL_STYLE, GetWindowLongPtrA(button, GWL_STYLE) | SS_NOTIFY);
  roles_[button] = Role::ProductButton;
  return ToHandle(button);
}

WindowHandle Win32BandWindows::CreateClientMenuWindow(WindowHandle toolbar, int left) {
  clientBitmap_ = static_cast<HBITMAP>(LoadImageA(nullptr, menus_.clientLogoFile.string().c_str(), IMAGE_BITMAP, 0, 0,
                                                  LR_LOADFROMFILE | LR_CREATEDIBSECTION));
  BITMAP size{};
  if (clientBitmap_ != nullptr) GetObjectA(clientBitmap_, sizeof size, &size);
  HWND button = CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE | SS_BITMAP, left, 3, size.bmWidth,
                                size.bmHeight, ToHwnd(toolbar), nullptr, ThisModule(), nullptr);
  SendMessageA(button, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(clientBitmap_));
  SetWindowLongPtrA(button, GWL_STYLE, GetWindowLongPtrA(button, GWL_STYLE) | SS_NOTIFY);
  roles_[button] = Role::ClientButton;
  return ToHandle(button);
}

void Win32BandWindows::SetIndent(WindowHandle toolbar, int indent) {
  SendMessageA(ToHwnd(toolbar), TB_SETINDENT, static_cast<WPARAM>(indent), 0);
}

bool Win32BandWindows::AddToolbarIcons(WindowHandle toolbar, std::string& error) {
  TBADDBITMAP bitmaps{HINST_COMMCTRL, IDB_STD_SMALL_COLOR};
  if (SendMessageA(ToHwnd(toolbar), TB_ADDBITMAP, 0, reinterpret_cast<LPARAM>(&bitmaps)) < 0) {
    error = "the toolbar took no bitmaps";
    return false;
  }
  return true;
}

void Win32BandWindows::AddButtons(WindowHandle toolbar, bool showLabels) {
  static const wchar_t kLabel[] = L"Site info:\0";
  TBBUTTON button{};
  button.iBitmap = STD_PROPERTIES;
  button.idCommand = 0;
  button.fsState = TBSTATE_ENABLED;
  button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | (showLabels ? BTNS_SHOWTEXT : 0);
  button.iString = showLabels ? reinterpret_cast<INT_PTR>(kLabel) : -1;
  SendMessageW(ToHwnd(toolbar), TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
}

int Win32BandWindows::ButtonRight(WindowHandle toolbar, int commandId) {
  RECT area{};
  SendMessageA(ToHwnd(toolbar), TB_GETRECT, static_cast<WPARAM>(commandId), reinterpret_cast<LPARAM>(&area));
  return area.right;
}

WindowHandle Win32BandWindows::CreateTextWindow(WindowHandle toolbar, int left, int width) {
  HWND text = CreateWindowExA(0, "Static", "", kTextStyle, left, 4, width, kBandHeight, ToHwnd(toolbar),
                              reinterpret_cast<HMENU>(1), ThisModule(), nullptr);
  SetWindowLongPtrA(text, GWL_STYLE, GetWindowLongPtrA(text, GWL_STYLE) | SS_NOTIFY);
  roles_[text] = Role::Text;
  return ToHandle(text);
}

SearchBoxWindows Win32BandWindows::CreateSearchBox(WindowHandle toolbar) {
  RECT text{};
  HWND parent = ToHwnd(toolbar);
  for (const auto& [window, role] : roles_) {
    if (role == Role::Text) {
      GetWindowRect(window, &text);
      MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&text), 2);
    }
  }
  HWND combo =
      CreateWindowExA(0, "ComboBox", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | CBS_DROPDOWN | CBS_AUTOHSCROLL,
                      text.right + 8, 1, kSearchWidth, 200, parent, reinterpret_cast<HMENU>(2), ThisModule(), nullptr);
  HWND edit = combo != nullptr ? FindWindowExA(combo, nullptr, "Edit", nullptr) : nullptr;
  roles_[combo] = Role::Other;
  if (edit != nullptr) roles_[edit] = Role::SearchEdit;
  return {ToHandle(combo), ToHandle(edit)};
}

void Win32BandWindows::Subclass(WindowHandle handle) {
  HWND window = ToHwnd(handle);
  if (window == nullptr || GetPropA(window, kOwnProcedure) != nullptr) return;
  SetPropA(window, kObject, this);
  SetPropA(window, kOwnProcedure,
           reinterpret_cast<HANDLE>(SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure))));
  SendMessageA(window, WM_CREATE, 0, 0);
}

void Win32BandWindows::Unsubclass(WindowHandle handle) {
  HWND window = ToHwnd(handle);
  HANDLE own = GetPropA(window, kOwnProcedure);
  if (own == nullptr) return;
  SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own));
  RemovePropA(window, kOwnProcedure);
  RemovePropA(window, kObject);
}

void Win32BandWindows::Destroy(WindowHandle handle) {
  HWND window = ToHwnd(handle);
  // Windows below it go with it.
  for (auto it = roles_.begin(); it != roles_.end();) {
    it = it->first == window || IsChild(window, it->first) ? roles_.erase(it) : std::next(it);
  }
  DestroyWindow(window);
}

void Win32BandWindows::Show(WindowHandle window, bool show) { ShowWindow(ToHwnd(window), show ? SW_SHOW : SW_HIDE); }

void Win32BandWindows::AutoSize(WindowHandle toolbar) { SendMessageA(ToHwnd(toolbar), TB_AUTOSIZE, 0, 0); }

void Win32BandWindows::ShowSiteInformation(WindowHandle textWindow, const SiteInformation& information) {
  strip_ = information;
  std::string plain;
  for (const StripRun& run : information.runs) plain += run.text;
  SetWindowTextA(ToHwnd(textWindow), plain.c_str());
  PaintStrip(ToHwnd(textWindow));
  InvalidateRect(ToHwnd(textWindow), nullptr, TRUE);
}

// The hosting country's flag where the text names the country: its code in a
// box, its name in the tooltip. Returns where the text goes on.
int Win32BandWindows::PaintFlag(HDC dc, HWND window, int x, const std::string& code, const std::string& name) {
  SIZE size{};
  GetTextExtentPoint32A(dc, code.c_str(), static_cast<int>(code.size()), &size);
  flagArea_ = {x + 2, 2, x + size.cx + 8, 18};
  FrameRect(dc, &flagArea_, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
  TextOutA(dc, x + 5, 3, code.c_str(), static_cast<int>(code.size()));
  if (tooltip_ != nullptr) {
    TOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    // The strip relays its mouse moves itself (WM_MOUSEMOVE below): the
    // tooltip's own subclassing would stack on the band's.
    tool.hwnd = window;
    tool.rect = flagArea_;
    tooltipText_ = name;
    tool.lpszText = tooltipText_.data();
    SendMessageA(tooltip_, TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageA(tooltip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
  }
  return flagArea_.right + 4;
}

// The strip, left to right: the risk bar (red up to the rank out of 10),
// then the words, links underlined in blue, and the flag where the text names
// the country. Painting also records where the links and the flag went.
void Win32BandWindows::PaintStrip(HWND window) {
  PAINTSTRUCT paint{};
  const bool painting = GetUpdateRect(window, nullptr, FALSE) != FALSE;
  HDC dc = painting ? BeginPaint(window, &paint) : GetDC(window);
  RECT client{};
  GetClientRect(window, &client);
  FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
  SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
  SetBkMode(dc, TRANSPARENT);
  int x = 2;
  links_.clear();
  flagArea_ = {};
  if (strip_.riskRank >= 0) {
    RECT bar{x, 6, x + kRiskBarWidth, 14};
    FrameRect(dc, &bar, static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH)));
    RECT filled{x + 1, 7, x + 1 + (kRiskBarWidth - 2) * std::min<int>(strip_.riskRank, 10) / 10, 13};
    HBRUSH red = CreateSolidBrush(RGB(220, 0, 0));
    FillRect(dc, &filled, red);
    DeleteObject(red);
    if (!strip_.riskLink.empty()) links_.push_back({bar, strip_.riskLink});
    x += kRiskBarWidth + 6;
  }
  for (const StripRun& run : strip_.runs) {
    if (run.kind == StripRun::Kind::Country) {
      x = PaintFlag(dc, window, x, run.target, run.text);
      continue;
    }
    SIZE size{};
    GetTextExtentPoint32A(dc, run.text.c_str(), static_cast<int>(run.text.size()), &size);
    const bool link = run.kind == StripRun::Kind::Link;
    SetTextColor(dc, link ? RGB(0, 0, 204) : GetSysColor(COLOR_BTNTEXT));
    TextOutA(dc, x, 3, run.text.c_str(), static_cast<int>(run.text.size()));
    if (link) {
      RECT underline{x, 3 + size.cy, x + size.cx, 4 + size.cy};
      HBRUSH blue = CreateSolidBrush(RGB(0, 0, 204));
      FillRect(dc, &underline, blue);
      DeleteObject(blue);
      links_.push_back({{x, 3, x + size.cx, 3 + size.cy}, run.target});
    }
    x += size.cx;
  }
  if (painting) {
    EndPaint(window, &paint);
  } else {
    ReleaseDC(window, dc);
  }
}

int Win32BandWindows::Popup(WindowHandle button, const cPopupMenu& menu) {
  HWND window = ToHwnd(button);
  RECT area{};
  GetWindowRect(window, &area);
  HMENU built = BuildMenu(menu);
  const int chosen = static_cast<int>(
      TrackPopupMenu(built, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_TOPALIGN, area.left, area.bottom, 0, window, nullptr));
  DestroyMenu(built);
  return chosen;
}

void Win32BandWindows::RedrawButton(WindowHandle button, bool pressed) {
  HWND window = ToHwnd(button);
  const LONG_PTR extended = GetWindowLongPtrA(window, GWL_EXSTYLE);
  SetWindowLongPtrA(window, GWL_EXSTYLE,
                    pressed ? (extended | WS_EX_STATICEDGE) : (extended & ~static_cast<LONG_PTR>(WS_EX_STATICEDGE)));
  SetWindowPos(window, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
}

void Win32BandWindows::OpenAbout(frmAbout& form) { RunAboutDialog(GetActiveWindow(), form); }

void Win32BandWindows::OpenOptions(frmOptions& form) { RunOptionsDialog(GetActiveWindow(), form); }

void Win32BandWindows::Uninstall(std::string_view commandLine) {
  const std::string line(commandLine);
  const auto blank = line.find(' ');
  ShellExecuteA(nullptr, "open", line.substr(0, blank).c_str(),
                blank == std::string::npos ? nullptr : line.substr(blank + 1).c_str(), nullptr, SW_SHOWNORMAL);
}

LRESULT CALLBACK Win32BandWindows::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = static_cast<Win32BandWindows*>(GetPropA(window, kObject));
  auto own = reinterpret_cast<WNDPROC>(GetPropA(window, kOwnProcedure));
  if (self == nullptr || own == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  const auto role = self->roles_.find(window);
  return self->Handle(window, role == self->roles_.end() ? Role::Other : role->second, own, message, wParam, lParam);
}

LRESULT Win32BandWindows::Handle(HWND window, Role role, WNDPROC own, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    // Subclass's own creation message: the window's own procedure met its
    // real one long ago, and would read a creation record this one lacks.
    case WM_CREATE:
      if (lParam == 0) return 0;
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: events_.FocusChanged(message == WM_SETFOCUS); break;
    case WM_LBUTTONDOWN:
      if (role == Role::ProductButton || role == Role::ClientButton) {
        events_.MenuButtonClicked(role == Role::ClientButton);
        return 0;
      }
      break;
    case WM_LBUTTONUP:
      if (role == Role::Text) {
        const POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        for (const Hotspot& link : links_) {
          if (PtInRect(&link.area, at)) {
            const std::string target = link.target;
            events_.LinkClicked(target);
            return 0;
          }
        }
      }
      break;
    case WM_MOUSEMOVE:
      if (role == Role::Text && tooltip_ != nullptr) {
        MSG moved{window, message, wParam, lParam, 0, {}};
        SendMessageA(tooltip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&moved));
      }
      break;
    case WM_PAINT:
      if (role == Role::Text) {
        PaintStrip(window);
        return 0;
      }
      break;
    case WM_KEYDOWN:
      if (role == Role::SearchEdit && wParam == VK_RETURN) {
        char query[1024] = {};
        GetWindowTextA(window, query, sizeof query);
        events_.SearchEntered(query);
        return 0;
      }
      break;
    default: break;
  }
  return CallWindowProcA(own, window, message, wParam, lParam);
}

}  // namespace tarnwick::twtb
