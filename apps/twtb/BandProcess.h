// The toolbar's process-wide state for the band: one per apartment (browser
// user-interface thread), made by the first band that thread creates, with
// the Win32 answers to the core's questions about the person.
#pragma once

#include "band/ToolbarProcess.h"
//
#include <windows.h>
// The core's Ui::MessageBox, not the system's macro of that name.
#undef MessageBox

#include <memory>

namespace tarnwick::twtb {

// Message boxes, the Ctrl key, the screen, and the pending window messages.
class Win32Ui final : public Ui {
 public:
  int MessageBox(std::string_view text, std::string_view title, int style) override;
  int ScreenWidthPixels() override { return GetSystemMetrics(SM_CXSCREEN); }
  void DoEvents() override;
  bool CtrlKeyDown() override { return GetKeyState(VK_CONTROL) < 0; }
};

// A small window with the message, a moving strip of dots and Cancel.
class Win32DownloadDialog final : public DownloadDialog {
 public:
  ~Win32DownloadDialog() override { Hide(); }
  void Show(std::string_view message) override;
  void Hide() override;
  bool Visible() const override { return window_ != nullptr; }
  void DrawFrame(int frame) override;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  HWND window_ = nullptr;
  HWND strip_ = nullptr;
};

class BandProcess {
 public:
  BandProcess();
  ToolbarProcess& process() { return *process_; }

 private:
  std::unique_ptr<Clock> clock_;
  std::unique_ptr<Paths> paths_;
  std::unique_ptr<Shell> shell_;
  Win32Ui ui_;
  Win32DownloadDialog dialog_;
  std::unique_ptr<ToolbarProcess> process_;
};

// This thread's process-wide state, made on first use.
BandProcess& ThisApartment();

}  // namespace tarnwick::twtb
