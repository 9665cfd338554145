#include "BandProcess.h"

#include <string>

#include "Module.h"
#include "settings/Endpoints.h"

namespace tarnwick::twtb {
namespace {

constexpr int kCancelId = IDCANCEL;
constexpr const char* kDialogClass = "TarnwickDownloadDialog";

}  // namespace

int Win32Ui::MessageBox(std::string_view text, std::string_view title, int style) {
  return ::MessageBoxA(GetActiveWindow(), std::string(text).c_str(), std::string(title).c_str(),
                       static_cast<UINT>(style) | MB_SETFOREGROUND);
}

void Win32Ui::DoEvents() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

void Win32DownloadDialog::Show(std::string_view message) {
  if (window_ == nullptr) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = &Procedure;
    windowClass.hInstance = ThisModule();
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kDialogClass;
    RegisterClassA(&windowClass);
    window_ = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kDialogClass, "Tarnwick Toolbar",
                              WS_POPUP | WS_CAPTION | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT, 320, 120, nullptr,
                              nullptr, ThisModule(), this);
    CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE, 10, 10, 290, 20, window_, reinterpret_cast<HMENU>(1),
                    ThisModule(), nullptr);
    strip_ = CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE, 10, 34, 290, 16, window_,
                             reinterpret_cast<HMENU>(2), ThisModule(), nullptr);
    CreateWindowExA(0, "Button", "Cancel", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 220, 58, 80, 24, window_,
                    reinterpret_cast<HMENU>(kCancelId), ThisModule(), nullptr);
  }
  SetDlgItemTextA(window_, 1, std::string(message).c_str());
}

void Win32DownloadDialog::Hide() {
  if (window_ != nullptr) DestroyWindow(window_);
  window_ = nullptr;
  strip_ = nullptr;
}

void Win32DownloadDialog::DrawFrame(int frame) {
  if (strip_ == nullptr) return;
  std::string dots(static_cast<std::size_t>(frame % 20), ' ');
  dots += "...";
  SetWindowTextA(strip_, dots.c_str());
}

LRESULT CALLBACK Win32DownloadDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    SetWindowLongPtrA(window, GWLP_USERDATA,
                      reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
  }
  auto* self = reinterpret_cast<Win32DownloadDialog*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (self != nullptr && ((message == WM_COMMAND && LOWORD(wParam) == kCancelId) || message == WM_CLOSE)) {
    if (self->onCancel) self->onCancel();
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

BandProcess::BandProcess() : clock_(MakeSystemClock()), paths_(MakePlatformPaths()), shell_(MakePlatformShell()) {
  process_ = std::make_unique<ToolbarProcess>(HostPorts{*paths_, *clock_, ui_, dialog_, *shell_},
                                              MakePlatformSettingsStore, ResolveEndpoints({}));
}

BandProcess& ThisApartment() {
  thread_local std::unique_ptr<BandProcess> apartment;
  if (!apartment) apartment = std::make_unique<BandProcess>();
  return *apartment;
}

}  // namespace tarnwick::twtb
