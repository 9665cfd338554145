// Band windows for a host that draws no windows of its own (the command line,
// the extension's native host): handles are numbers handed out in order and
// the window tree's calls do nothing. Such a host says what it does show: the
// menus, the dialogs and uninstalling.
#pragma once

#include "band/BandWindows.h"

namespace tarnwick {

class WindowlessBandWindows : public BandWindows {
 public:
  WindowHandle CreateMessageWindow() override { return ++last_; }
  WindowHandle CreateToolbarWindow(WindowHandle) override { return ++last_; }
  WindowHandle CreateProductMenuWindow(WindowHandle) override { return ++last_; }
  WindowHandle CreateClientMenuWindow(WindowHandle, int) override { return ++last_; }
  void SetIndent(WindowHandle, int) override {}
  bool AddToolbarIcons(WindowHandle, std::string&) override { return true; }
  void AddButtons(WindowHandle, bool) override {}
  int ButtonRight(WindowHandle, int) override { return 0; }
  WindowHandle CreateTextWindow(WindowHandle, int, int) override { return ++last_; }
  SearchBoxWindows CreateSearchBox(WindowHandle) override { return {++last_, ++last_}; }
  void Subclass(WindowHandle) override {}
  void Unsubclass(WindowHandle) override {}
  void Destroy(WindowHandle) override {}
  void Show(WindowHandle, bool) override {}
  void AutoSize(WindowHandle) override {}
  // The strip goes out with the host's report of the navigation.
  void ShowSiteInformation(WindowHandle, const SiteInformation&) override {}
  void RedrawButton(WindowHandle, bool) override {}

 private:
  WindowHandle last_ = 0;
};

}  // namespace tarnwick
