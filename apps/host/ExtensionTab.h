// One tab of the browser as a band sees it: the browser window (Browser,
// BandSite), the page on show (Document, as far as the content script
// described it) and the band's windows, which are the extension's button,
// popup and pages. What the band asks of them is kept as actions the
// extension carries out when it gets the reply.
#pragma once

#include <map>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "band/BandSite.h"
#include "band/Browser.h"
#include "band/ToolBar.h"
#include "band/WindowlessBandWindows.h"

namespace tarnwick::host {

// Fields by name, of forms by name.
using Forms = std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>>;

class TabDocument final : public Document {
 public:
  TabDocument(Forms forms, nlohmann::json& actions) : forms_(std::move(forms)), actions_(actions) {}

  bool HasForm(std::string_view form) override;
  std::optional<std::string> FieldValue(std::string_view form, std::string_view field) override;
  bool SetFieldValue(std::string_view form, std::string_view field, std::string_view value) override;
  bool FocusField(std::string_view form, std::string_view field) override;
  void WatchSubmit(std::string_view form) override;
  std::optional<std::string> CurrentEventType() override { return eventType; }
  // The fields of a form as the page has them now (the person typed).
  void Describe(std::string_view form, std::map<std::string, std::string, std::less<>> fields);
  bool HasActiveElement() override { return activeElement; }

  // What the page was doing when it opened a window.
  std::optional<std::string> eventType;
  bool activeElement = false;

 private:
  std::map<std::string, std::string, std::less<>>* Field(std::string_view form, std::string_view field);

  Forms forms_;
  nlohmann::json& actions_;
};

class TabBrowser final : public Browser, public BandSite {
 public:
  explicit TabBrowser(nlohmann::json& actions) : actions_(actions) {}

  Browser* ConnectBrowser() override { return this; }
  void DisconnectBrowser() override {}
  void Stop() override;
  void Navigate(const NavigateRequest& request) override;
  std::string LocationURL() override { return location; }
  bool Offline() override { return false; }
  // A tab has no bars of its own to force and no size to set.
  void SetResizable(bool) override {}
  void ShowBar(BrowserBar, bool) override {}
  int Height() override { return 0; }
  void SetHeight(int) override {}
  Document* CurrentDocument() override { return document ? &*document : nullptr; }

  // A page arrived at `url`: an empty document until the content script
  // describes it.
  void Arrive(const std::string& url);

  std::string location;
  std::optional<TabDocument> document;

 private:
  nlohmann::json& actions_;
};

class TabWindows final : public WindowlessBandWindows {
 public:
  explicit TabWindows(nlohmann::json& actions) : actions_(actions) {}

  // The popup showed the menu already: the person's choice came with the
  // message.
  int Popup(WindowHandle, const cPopupMenu&) override { return choice; }
  // The dialogs are pages of the extension with forms of their own.
  void OpenAbout(frmAbout&) override;
  void OpenOptions(frmOptions&) override;
  void Uninstall(std::string_view commandLine) override;

  int choice = 0;

 private:
  nlohmann::json& actions_;
};

// A tab's band with its browser and windows.
struct ExtensionTab {
  explicit ExtensionTab(ToolbarProcess& process) : band(process, windows) {}
  ExtensionTab(const ExtensionTab&) = delete;
  ExtensionTab& operator=(const ExtensionTab&) = delete;

  nlohmann::json actions = nlohmann::json::array();
  TabBrowser browser{actions};
  TabWindows windows{actions};
  ToolBar band;
  StartUpRecord startUp;
};

}  // namespace tarnwick::host
