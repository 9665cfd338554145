#include "ui/frmOptions.h"

#include <algorithm>
#include <cmath>

#include "ProductInfo.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 1440;
constexpr int kRiskRankOff = 10;

// value / divisor rounded to one decimal, halves to the even digit, shown
// without a trailing ".0": 90 / 60 -> "1.5", 1440 / 1440 -> "1".
std::string Tenths(int value, int divisor) {
  const long long scaled = 10LL * value;
  long long tenths = scaled / divisor;
  const long long twiceRest = 2 * (scaled % divisor);
  if (twiceRest > divisor || (twiceRest == divisor && tenths % 2 != 0)) ++tenths;
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text += "." + std::to_string(tenths % 10);
  return text;
}

std::string SliderId(int index) { return "slOption(" + std::to_string(index) + ")"; }

}  // namespace

frmOptions::frmOptions(OptionsPorts ports)
    : Caption(std::string(product::kFileDescription) + " Options"), ports_(std::move(ports)) {}

const std::array<frmOptions::CheckBox frmOptions::*, 7> frmOptions::kCheckBoxes = {
    &frmOptions::cbToolbar,     &frmOptions::cbStatusbar, &frmOptions::cbMenubar,           &frmOptions::cbResizable,
    &frmOptions::cbBlockPopups, &frmOptions::cbBlockXSS,  &frmOptions::cbAutoFillReportForm};

// A stored number, or `current` when the stored text is no number.
int frmOptions::LoadedNumber(std::string_view name, std::int32_t current) {
  try {
    return ToLong(mdlRegistry::GetSetting(ports_.settings, kSettingsKey, name, current));
  } catch (const ConversionError&) {
    return current;
  }
}

void frmOptions::Form_Load() {
  const ToolbarOptions& options = ports_.options;
  for (const auto member : kCheckBoxes) {
    CheckBox& box = this->*member;
    const bool current = options.*(box.option);
    bool checked = current;
    try {
      checked = ToBoolean(mdlRegistry::GetSetting(ports_.settings, kSettingsKey, box.setting, current ? 1 : 0));
    } catch (const ConversionError&) {
      // A stored text that is no boolean leaves the option as loaded.
    }
    SetCheck(box, checked ? 1 : 0);
  }
  if (cbAutoFillReportForm.Value == 1) {
    for (TextBox* box : {&tbAutoFillName, &tbAutoFillEmail}) {
      box->Text = ToText(mdlRegistry::GetSetting(ports_.settings, kSettingsKey, box->setting, std::string()));
    }
  }
  SetSlider(0, LoadedNumber("TextWindowWidth", options.TextWindowWidth));
  SetSlider(1, LoadedNumber("BarHeight", options.BarHeight));
  SetSlider(2, LoadedNumber("ServerTimeout", options.ServerTimeout));
  double intervalSeconds = options.DLLUpdateInterval;
  try {
    intervalSeconds = ToDouble(
        mdlRegistry::GetSetting(ports_.settings, kSettingsKey, "DLLUpdateInterval", options.DLLUpdateInterval));
  } catch (const ConversionError&) {
    // As for the other numbers: the interval now in force.
  }
  const double minutes = std::nearbyint(intervalSeconds / 60);  // halves to even, as the slider rounds
  SetSlider(kUpdateIntervalSlider, static_cast<int>(std::clamp(minutes, -1e9, 1e9)));
  // Each slider brings its labels up to date as it is set.
  SetSlider(kRiskRankSlider, LoadedNumber("BlockAtRiskRank", options.BlockAtRiskRank));
}

void frmOptions::Form_KeyPress(int KeyAscii) {
  if (KeyAscii == kKeyEnter) cbOK_Click();
  if (KeyAscii == kKeyEscape) cbCancel_Click();
}

void frmOptions::cbOK_Click() {
  SettingsStore& settings = ports_.settings;
  for (int index = 0; index < kSliderCount; ++index) {
    const Slider& slider = slOption[static_cast<std::size_t>(index)];
    const int value = index == kUpdateIntervalSlider ? slider.Value * 60 : slider.Value;
    mdlRegistry::SaveSetting(settings, kSettingsKey, slider.Tag, std::to_string(value), kRegSz);
  }
  for (const CheckBox* box :
       {&cbBlockPopups, &cbBlockXSS, &cbToolbar, &cbStatusbar, &cbMenubar, &cbResizable, &cbAutoFillReportForm}) {
    mdlRegistry::SaveSetting(settings, kSettingsKey, box->setting, std::to_string(box->Value), kRegSz);
  }
  for (const TextBox* box : {&tbAutoFillName, &tbAutoFillEmail}) {
    if (cbAutoFillReportForm.Value == 1) {
      mdlRegistry::SaveSetting(settings, kSettingsKey, box->setting, box->Text, kRegSz);
    } else {
      mdlRegistry::DeleteValue(settings, Root::CurrentUser, kSettingsKey, box->setting);
    }
  }
  if (ports_.LoadOptions) ports_.LoadOptions();
  Saved = Closed = true;
}

void frmOptions::cbCancel_Click() { Closed = true; }

void frmOptions::cbReset_Click() {
  for (const auto member : kCheckBoxes) SetCheck(this->*member, 1);
  // 86400 is the interval's default in seconds, given to a slider that holds
  // minutes: it stops at the slider's maximum.
  const std::array<int, kSliderCount> defaults = {ports_.DefaultTextWindowWidth, 30, 5, 86400, kRiskRankOff};
  for (int index = 0; index < kSliderCount; ++index) SetSlider(index, defaults[static_cast<std::size_t>(index)]);
}

void frmOptions::SetCheck(CheckBox& box, int value) {
  box.Value = value != 0 ? 1 : 0;
  if (&box == &cbToolbar) cbToolbar_Click();
  if (&box == &cbAutoFillReportForm) cbAutoFillReportForm_Click();
}

void frmOptions::SetSlider(int index, int value) {
  Slider& slider = slOption[static_cast<std::size_t>(index)];
  slider.Value = std::clamp(value, slider.Min, slider.Max);
  slOption_Change(index);
}

void frmOptions::slOption_Change(int Index) {
  const auto at = static_cast<std::size_t>(Index);
  Slider& slider = slOption[at];
  if (Index == kUpdateIntervalSlider) {
    // Whole days above one day, whole hours below.
    const bool days = slider.Value >= kMinutesPerDay;
    const int unit = days ? kMinutesPerDay : kMinutesPerHour;
    lblOption[at] = days ? "  days" : "  hours";
    lblValue[at] = Tenths(slider.Value, unit);
    slider.TickFrequency = unit;
    slider.SmallChange = unit;
    slider.LargeChange = 2 * unit;
    return;
  }
  lblValue[at] = std::to_string(slider.Value);
  // No site rates over 10: at 10 automatic blocking is off.
  if (Index == kRiskRankSlider) lblOption[at] = slider.Value == kRiskRankOff ? "(off)" : "";
}

void frmOptions::cbToolbar_Click() { cbMenubar.Enabled = cbToolbar.Value == 1; }

void frmOptions::cbAutoFillReportForm_Click() {
  tbAutoFillName.Enabled = tbAutoFillEmail.Enabled = cbAutoFillReportForm.Value == 1;
}

std::vector<ControlView> frmOptions::Controls() const {
  std::vector<ControlView> views;
  const auto add = [&views](std::string_view id, ControlKind kind, std::string_view caption) -> ControlView& {
    ControlView& view = views.emplace_back();
    view.id = id;
    view.kind = kind;
    view.caption = caption;
    return view;
  };
  add("lblDisplay", ControlKind::Label, kDisplayHeading);
  for (const auto member : kCheckBoxes) {
    const CheckBox& box = this->*member;
    ControlView& view = add(box.id, ControlKind::CheckBox, box.caption);
    view.setting = box.setting;
    view.value = box.Value;
    view.max = 1;
    view.enabled = box.Enabled;
  }
  for (const TextBox* box : {&tbAutoFillName, &tbAutoFillEmail}) {
    ControlView& view = add(box->id, ControlKind::TextBox, box->label);
    view.setting = box->setting;
    view.text = box->Text;
    view.enabled = box->Enabled;
  }
  for (std::size_t index = 0; index < slOption.size(); ++index) {
    const Slider& slider = slOption[index];
    ControlView& view = add(SliderId(static_cast<int>(index)), ControlKind::Slider, slider.heading);
    view.setting = slider.Tag;
    view.value = slider.Value;
    view.min = slider.Min;
    view.max = slider.Max;
    view.smallStep = slider.SmallChange;
    view.largeStep = slider.LargeChange;
    view.tickFrequency = slider.TickFrequency;
    view.valueLabel = lblValue[index];
    view.unitLabel = lblOption[index];
  }
  add("cbOK", ControlKind::Button, "OK");
  add("cbCancel", ControlKind::Button, "Cancel");
  add("cbReset", ControlKind::Button, "Restore Defaults");
  return views;
}

bool frmOptions::SetValue(std::string_view id, int value) {
  for (const auto member : kCheckBoxes) {
    CheckBox& box = this->*member;
    if (box.id != id) continue;
    if (!box.Enabled || (value != 0 && value != 1)) return false;
    SetCheck(box, value);
    return true;
  }
  for (int index = 0; index < kSliderCount; ++index) {
    if (SliderId(index) != id) continue;
    SetSlider(index, value);
    return true;
  }
  return false;
}

bool frmOptions::SetText(std::string_view id, std::string_view text) {
  for (TextBox* box : {&tbAutoFillName, &tbAutoFillEmail}) {
    if (box->id != id) continue;
    if (!box->Enabled) return false;
    box->Text = text;
    return true;
  }
  return false;
}

bool frmOptions::Press(std::string_view id) {
  if (id == "cbOK")
    cbOK_Click();
  else if (id == "cbCancel")
    cbCancel_Click();
  else if (id == "cbReset")
    cbReset_Click();
  else
    return false;
  return true;
}

}  // namespace tarnwick
