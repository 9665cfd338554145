// The browser a band is sited in, and the page it shows, recording what the
// core asks of them. The page's report form and whether a pop-up comes from
// the person are set by each test.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "band/BandSite.h"
#include "band/Browser.h"

namespace tarnwick::testing {

class RecordingDocument final : public Document {
 public:
  bool HasForm(std::string_view form) override { return form == formName; }
  std::optional<std::string> FieldValue(std::string_view form, std::string_view field) override {
    const auto it = fields.find(std::string(field));
    if (!HasForm(form) || it == fields.end()) return std::nullopt;
    return it->second;
  }
  bool SetFieldValue(std::string_view form, std::string_view field, std::string_view value) override {
    const auto it = fields.find(std::string(field));
    if (!HasForm(form) || it == fields.end()) return false;
    it->second = std::string(value);
    return true;
  }
  bool FocusField(std::string_view form, std::string_view field) override {
    if (!HasForm(form) || !fields.contains(std::string(field))) return false;
    focused = std::string(field);
    return true;
  }
  void WatchSubmit(std::string_view form) override { watched = std::string(form); }
  std::optional<std::string> CurrentEventType() override { return eventType; }
  bool HasActiveElement() override { return activeElement; }

  std::string formName;
  std::map<std::string, std::string> fields;
  std::string focused;
  std::string watched;
  std::optional<std::string> eventType;
  bool activeElement = false;
};

class RecordingBrowser final : public Browser, public BandSite {
 public:
  Browser* ConnectBrowser() override {
    calls.push_back("Connect");
    return this;
  }
  void DisconnectBrowser() override { calls.push_back("Disconnect"); }

  void Stop() override { calls.push_back("Stop"); }
  void Navigate(const NavigateRequest& request) override {
    calls.push_back("Navigate " + request.url + (request.flags != 0 ? " flags " + std::to_string(request.flags) : "") +
                    (request.targetFrame.empty() ? "" : " target " + request.targetFrame));
    navigations.push_back(request);
  }
  std::string LocationURL() override { return location; }
  bool Offline() override { return offline; }
  void SetResizable(bool resizable) override {
    calls.push_back(std::string("Resizable ") + (resizable ? "on" : "off"));
  }
  void ShowBar(BrowserBar bar, bool show) override {
    static constexpr const char* kNames[] = {"MenuBar", "StatusBar", "ToolBar", "AddressBar"};
    calls.push_back(std::string(kNames[static_cast<int>(bar)]) + (show ? " on" : " off"));
  }
  int Height() override { return height; }
  void SetHeight(int value) override { height = value; }
  Document* CurrentDocument() override { return document ? &*document : nullptr; }

  std::vector<std::string> calls;
  std::vector<NavigateRequest> navigations;
  std::string location;
  bool offline = false;
  int height = 600;
  std::optional<RecordingDocument> document;
};

}  // namespace tarnwick::testing
