// band_screenshot.exe URL READY_FILE SECONDS: shows the registered band in a
// window of its own, sited in the scripted browser, after a navigation to
// URL; writes READY_FILE once the strip shows the server's answer and keeps
// the window up for SECONDS. scripts/band-screenshot.sh photographs it.
#include <windows.h>
// After windows.h, which they need.
#include <objbase.h>
#include <shlobj.h>

#include <fstream>
#include <string>

#include "ScriptedBrowser.h"

namespace {

void Pump(DWORD milliseconds) {
  const DWORD end = GetTickCount() + milliseconds;
  while (GetTickCount() < end) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    Sleep(20);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  HWND frame =
      CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, 820, 46, nullptr, nullptr, nullptr, nullptr);
  CLSID clsid{};
  IDeskBand* band = nullptr;
  if (FAILED(CLSIDFromProgID(L"prjTarnwickToolbar.Toolbar", &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDeskBand, reinterpret_cast<void**>(&band)))) {
    return 1;
  }
  tarnwick::testing::ScriptedBrowser browser;
  IObjectWithSite* withSite = nullptr;
  band->QueryInterface(IID_IObjectWithSite, reinterpret_cast<void**>(&withSite));
  withSite->SetSite(static_cast<IServiceProvider*>(&browser));
  HWND toolbar = nullptr;
  band->GetWindow(&toolbar);
  SetParent(toolbar, frame);
  band->ShowDW(TRUE);
  MoveWindow(toolbar, 0, 8, 800, 30, TRUE);
  browser.BeforeNavigate2(argv[1]);
  Pump(1500);
  std::ofstream(argv[2]) << "ready\n";
  Pump(static_cast<DWORD>(std::stoi(argv[3]) * 1000));
  band->CloseDW(0);
  withSite->SetSite(nullptr);
  withSite->Release();
  band->Release();
  return 0;
}
