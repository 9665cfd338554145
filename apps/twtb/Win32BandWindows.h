// The band's windows on Win32: the message-only window, the common-controls
// toolbar the browser hosts, the menu buttons, the painted information strip
// and the search box, made in the order the band core decides. Subclassed
// windows keep their own procedure in the "WinProc" property and this object
// in "Object"; what the person does in them goes to the band as events.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "band/BandWindows.h"
#include "band/SiteInformation.h"
#include "ui/MenuState.h"

namespace tarnwick::twtb {

// What the person did in the band's windows.
class BandEvents {
 public:
  virtual ~BandEvents() = default;
  virtual void MenuButtonClicked(bool client) = 0;
  virtual void LinkClicked(const std::string& url) = 0;
  virtual void SearchEntered(const std::string& query) = 0;
  // A window of the band gained or lost the keyboard focus.
  virtual void FocusChanged(bool focused) = 0;
};

inline HWND ToHwnd(WindowHandle window) { return reinterpret_cast<HWND>(static_cast<UINT_PTR>(window)); }
inline WindowHandle ToHandle(HWND window) { return static_cast<WindowHandle>(reinterpret_cast<UINT_PTR>(window)); }

class Win32BandWindows final : public BandWindows {
 public:
  // The client button shows the logo `menus` names when the toolbar is built.
  Win32BandWindows(BandEvents& events, const MenuState& menus);
  ~Win32BandWindows() override;

  WindowHandle CreateMessageWindow() override;
  WindowHandle CreateToolbarWindow(WindowHandle messageWindow) override;
  WindowHandle CreateProductMenuWindow(WindowHandle toolbar) override;
  WindowHandle CreateClientMenuWindow(WindowHandle toolbar, int left) override;
  void SetIndent(WindowHandle toolbar, int indent) override;
  bool AddToolbarIcons(WindowHandle toolbar, std::string& error) override;
  void AddButtons(WindowHandle toolbar, bool showLabels) override;
  int ButtonRight(WindowHandle toolbar, int commandId) override;
  WindowHandle CreateTextWindow(WindowHandle toolbar, int left, int width) override;
  SearchBoxWindows CreateSearchBox(WindowHandle toolbar) override;
  void Subclass(WindowHandle window) override;
  void Unsubclass(WindowHandle window) override;
  void Destroy(WindowHandle window) override;
  void Show(WindowHandle window, bool show) override;
  void AutoSize(WindowHandle toolbar) override;
  void ShowSiteInformation(WindowHandle textWindow, const SiteInformation& information) override;
  int Popup(WindowHandle button, const cPopupMenu& menu) override;
  void RedrawButton(WindowHandle button, bool pressed) override;
  void OpenAbout(frmAbout& form) override;
  void OpenOptions(frmOptions& form) override;
  void Uninstall(std::string_view commandLine) override;

  // Where each part of the strip was painted: the links (a click opens them)
  // and the flag (its tooltip names the country).
  struct Hotspot {
    RECT area;
    std::string target;
  };
  const std::vector<Hotspot>& links() const { return links_; }

 private:
  enum class Role { Message, ProductButton, ClientButton, Text, SearchEdit, Other };
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Handle(HWND window, Role role, WNDPROC own, UINT message, WPARAM wParam, LPARAM lParam);
  void PaintStrip(HWND window);
  int PaintFlag(HDC dc, HWND window, int x, const std::string& code, const std::string& name);

  BandEvents& events_;
  const MenuState& menus_;
  std::map<HWND, Role> roles_;
  HBITMAP productBitmap_ = nullptr;
  HBITMAP clientBitmap_ = nullptr;
  HWND tooltip_ = nullptr;
  SiteInformation strip_;
  std::vector<Hotspot> links_;
  RECT flagArea_{};
  std::string tooltipText_;
};

}  // namespace tarnwick::twtb
