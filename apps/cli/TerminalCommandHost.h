// The toolbar commands' host on a terminal: the "browser" is the address
// given on the command line and what it would open is printed; the about
// dialog prints its texts, the options dialog runs as a terminal form.
#pragma once

#include <string>

#include "band/ToolbarProcess.h"
#include "ui/CommandHost.h"

namespace tarnwick::cli {

class TerminalCommandHost final : public CommandHost {
 public:
  TerminalCommandHost(ToolbarProcess& process, std::string currentUrl)
      : process_(process), currentUrl_(std::move(currentUrl)) {}

  std::string LocationURL() override { return currentUrl_; }
  bool Navigate(std::string_view url, std::string_view targetFrame) override;
  // A link is acted on as given: no menu drops down here.
  int Popup(const cPopupMenu&) override { return 0; }
  void RedrawProductButton() override {}
  void OpenAbout() override;
  void OpenOptions() override;
  void Uninstall(std::string_view commandLine) override;

 private:
  ToolbarProcess& process_;
  std::string currentUrl_;
};

}  // namespace tarnwick::cli
