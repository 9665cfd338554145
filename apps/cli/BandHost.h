// The command line as a host of the band: a browser window played from a
// script (`tarnwick browse`, `tarnwick check`), and band windows that keep
// what the strip would show. The band decides everything; this only answers
// its questions about the window and records what it asked the window to do.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Cli.h"
#include "band/BandSite.h"
#include "band/Browser.h"
#include "band/SiteInformation.h"
#include "band/ToolBar.h"
#include "band/WindowlessBandWindows.h"

namespace tarnwick::cli {

// The page on show. The toolbar server's report page holds its report form;
// no other page has forms. Whether a pop-up comes from the person is set by
// the script.
class ScriptedDocument final : public Document {
 public:
  explicit ScriptedDocument(bool hasReportForm);

  bool HasForm(std::string_view form) override;
  std::optional<std::string> FieldValue(std::string_view form, std::string_view field) override;
  bool SetFieldValue(std::string_view form, std::string_view field, std::string_view value) override;
  bool FocusField(std::string_view form, std::string_view field) override;
  void WatchSubmit(std::string_view form) override;
  std::optional<std::string> CurrentEventType() override { return eventType; }
  bool HasActiveElement() override { return activeElement; }

  std::map<std::string, std::string, std::less<>> fields;  // of the report form
  std::string focused;
  bool submitWatched = false;
  std::optional<std::string> eventType;
  bool activeElement = false;

 private:
  bool hasReportForm_;
};

class ScriptedBrowser final : public Browser, public BandSite {
 public:
  Browser* ConnectBrowser() override { return this; }
  void DisconnectBrowser() override {}

  void Stop() override { pending.clear(); }
  void Navigate(const NavigateRequest& request) override { requested.push_back(request); }
  std::string LocationURL() override { return location; }
  bool Offline() override { return false; }
  void SetResizable(bool) override {}
  void ShowBar(BrowserBar, bool) override {}
  int Height() override { return height; }
  void SetHeight(int value) override { height = value; }
  Document* CurrentDocument() override { return document ? &*document : nullptr; }

  std::string location;
  std::string pending;  // the navigation under way, after its check let it go
  std::optional<ScriptedDocument> document;
  // Navigations the band asked for (the block page, the install page), in order.
  std::deque<NavigateRequest> requested;
  int height = 600;
};

// A menu's choice comes from the script, and what the menus and dialogs
// showed is kept for the report.
class TextBandWindows final : public WindowlessBandWindows {
 public:
  int Popup(WindowHandle, const cPopupMenu& menu) override;
  void OpenAbout(frmAbout& form) override;
  // A script cannot fill in the form: it is shown and closed unchanged.
  void OpenOptions(frmOptions& form) override;
  void Uninstall(std::string_view commandLine) override { shown.push_back("uninstall: " + std::string(commandLine)); }

  int choice = 0;  // the item the next menu's person chooses
  const cPopupMenu* popped = nullptr;
  std::vector<std::string> shown;  // what the dialogs showed, a line each
};

// A band over the command line's process, browser and windows.
class BandHost {
 public:
  explicit BandHost(const std::string& serverFlag = {}, int unattendedAnswer = vbNo);
  // The band's start-up; false, with the reason on standard error, when a
  // broken component stopped it.
  bool Start();

  Host host;
  ScriptedBrowser browser;
  TextBandWindows windows;
  ToolBar band{host.process(), windows};
  StartUpRecord startUp;
};

}  // namespace tarnwick::cli
