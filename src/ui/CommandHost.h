// What the toolbar commands need of the browser window and of the host that
// draws the toolbar: the Windows band over IWebBrowser2 and TrackPopupMenu,
// the extension over its tab and pages, the command line over its terminal.
#pragma once

#include <string>
#include <string_view>

#include "ui/cPopupMenu.h"

namespace tarnwick {

class CommandHost {
 public:
  virtual ~CommandHost() = default;
  // The address of the page on show.
  virtual std::string LocationURL() = 0;
  // Opens `url` in the frame named `targetFrame` ("_top": the whole window).
  // False when the browser refused.
  virtual bool Navigate(std::string_view url, std::string_view targetFrame) = 0;
  // Drops `menu` down under the product button and waits for a choice: the
  // number of the item chosen, 0 when none was.
  virtual int Popup(const cPopupMenu& menu) = 0;
  // Draws the product button again (pressed or not, as the menu state says).
  virtual void RedrawProductButton() = 0;
  virtual void OpenAbout() = 0;
  virtual void OpenOptions() = 0;
  // Removes the toolbar: the Windows band starts `commandLine` (the
  // installer's maintenance), the extension removes itself, the command line
  // says what it would run.
  virtual void Uninstall(std::string_view commandLine) = 0;
};

}  // namespace tarnwick
