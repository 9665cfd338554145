#include "BandHost.h"

#include <iostream>

#include "band/NavigationGuard.h"
#include "ui/frmAbout.h"
#include "ui/frmOptions.h"

namespace tarnwick::cli {
namespace {

bool IsReportForm(std::string_view form) { return form == kReportFormName; }

}  // namespace

ScriptedDocument::ScriptedDocument(bool hasReportForm) : hasReportForm_(hasReportForm) {
  if (hasReportForm_) fields = {{"name", ""}, {"email", ""}, {"reason", ""}};
}

bool ScriptedDocument::HasForm(std::string_view form) { return hasReportForm_ && IsReportForm(form); }

std::optional<std::string> ScriptedDocument::FieldValue(std::string_view form, std::string_view field) {
  if (!HasForm(form)) return std::nullopt;
  const auto it = fields.find(field);
  return it == fields.end() ? std::nullopt : std::optional<std::string>(it->second);
}

bool ScriptedDocument::SetFieldValue(std::string_view form, std::string_view field, std::string_view value) {
  if (!HasForm(form)) return false;
  const auto it = fields.find(field);
  if (it == fields.end()) return false;
  it->second = std::string(value);
  return true;
}

bool ScriptedDocument::FocusField(std::string_view form, std::string_view field) {
  if (!HasForm(form) || !fields.contains(field)) return false;
  focused = std::string(field);
  return true;
}

void ScriptedDocument::WatchSubmit(std::string_view form) { submitWatched = HasForm(form); }

int TextBandWindows::Popup(WindowHandle, const cPopupMenu& menu) {
  popped = &menu;
  return choice;
}

void TextBandWindows::OpenAbout(frmAbout& form) {
  for (const std::string* text :
       {&form.Caption, &form.lblTitle, &form.lblVersion, &form.lblDescription, &form.lblDisclaimer}) {
    shown.push_back(*text);
  }
}

void TextBandWindows::OpenOptions(frmOptions& form) {
  shown.push_back(form.Caption);
  for (const ControlView& control : form.Controls()) {
    if (control.kind == ControlKind::Slider) {
      shown.push_back(control.caption + ": " + control.valueLabel + control.unitLabel);
    } else if (control.kind == ControlKind::CheckBox) {
      shown.push_back(std::string(control.value != 0 ? "[x] " : "[ ] ") + control.caption);
    }
  }
  form.Press("cbCancel");
}

BandHost::BandHost(const std::string& serverFlag, int unattendedAnswer) : host(serverFlag, unattendedAnswer) {}

bool BandHost::Start() {
  startUp = band.IObjectWithSite_SetSite(&browser);
  if (startUp.failedComponent.empty()) return true;
  std::cerr << "tarnwick: the " << startUp.failedComponent << " component could not be created (see the log)\n";
  return false;
}

}  // namespace tarnwick::cli
