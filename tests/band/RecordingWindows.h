// The band's windows as a host would make them, recording every call in
// order so that tests can read the window tree's life from it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "band/BandWindows.h"
#include "band/SiteInformation.h"
#include "ui/cPopupMenu.h"
#include "ui/frmAbout.h"
#include "ui/frmOptions.h"

namespace tarnwick::testing {

class RecordingWindows final : public BandWindows {
 public:
  WindowHandle CreateMessageWindow() override { return Made("message"); }
  WindowHandle CreateToolbarWindow(WindowHandle parent) override { return refuseToolbar ? 0 : Made("toolbar", parent); }
  WindowHandle CreateProductMenuWindow(WindowHandle parent) override { return Made("product menu", parent); }
  WindowHandle CreateClientMenuWindow(WindowHandle parent, int left) override {
    return Made("client menu at " + std::to_string(left), parent);
  }
  void SetIndent(WindowHandle, int value) override {
    indent = value;
    calls.push_back("indent " + std::to_string(value));
  }
  bool AddToolbarIcons(WindowHandle, std::string& error) override {
    calls.push_back("icons");
    error = iconsError;
    return iconsError.empty();
  }
  void AddButtons(WindowHandle, bool showLabels) override {
    calls.push_back(std::string("buttons") + (showLabels ? " with labels" : ""));
  }
  int ButtonRight(WindowHandle, int) override { return buttonRight; }
  WindowHandle CreateTextWindow(WindowHandle parent, int left, int width) override {
    return Made("text at " + std::to_string(left) + " width " + std::to_string(width), parent);
  }
  SearchBoxWindows CreateSearchBox(WindowHandle parent) override {
    const WindowHandle box = Made("search box", parent);
    return {box, Made("search edit", box)};
  }
  void Subclass(WindowHandle window) override { calls.push_back("subclass " + std::to_string(window)); }
  void Unsubclass(WindowHandle window) override { calls.push_back("unsubclass " + std::to_string(window)); }
  void Destroy(WindowHandle window) override { calls.push_back("destroy " + std::to_string(window)); }
  void Show(WindowHandle window, bool show) override {
    calls.push_back((show ? "show " : "hide ") + std::to_string(window));
  }
  void AutoSize(WindowHandle window) override { calls.push_back("autosize " + std::to_string(window)); }
  void ShowSiteInformation(WindowHandle, const SiteInformation& information) override { shown.push_back(information); }
  int Popup(WindowHandle button, const cPopupMenu& menu) override {
    calls.push_back("popup from " + std::to_string(button));
    popped = &menu;
    return choice;
  }
  void RedrawButton(WindowHandle button, bool pressed) override {
    calls.push_back("redraw " + std::to_string(button) + (pressed ? " pressed" : ""));
  }
  void OpenAbout(frmAbout& form) override {
    calls.push_back("about");
    aboutVersion = form.lblVersion;
  }
  void OpenOptions(frmOptions& form) override {
    calls.push_back("options");
    if (optionsAction) optionsAction(form);
  }
  void Uninstall(std::string_view commandLine) override { calls.push_back("uninstall " + std::string(commandLine)); }

  std::vector<std::string> calls;
  std::vector<SiteInformation> shown;
  int choice = 0;  // what the person chooses from the next menu
  const cPopupMenu* popped = nullptr;
  std::string aboutVersion;
  std::function<void(frmOptions&)> optionsAction;  // what the person does in the options dialog
  std::string iconsError;
  bool refuseToolbar = false;
  int buttonRight = 40;
  int indent = -1;

 private:
  WindowHandle Made(const std::string& what, WindowHandle parent = 0) {
    calls.push_back("create " + std::to_string(next_) + " " + what +
                    (parent != 0 ? " in " + std::to_string(parent) : ""));
    return next_++;
  }
  WindowHandle next_ = 1;
};

}  // namespace tarnwick::testing
