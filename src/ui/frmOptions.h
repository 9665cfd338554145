// frmOptions: the options dialog as a model. It loads its controls from the
// settings, follows the person's changes (labels, steps, which controls are
// enabled) and on OK writes every control back as text and reloads the
// options. A host renders it from Controls() and feeds the person's actions
// to SetValue, SetText, Press and Form_KeyPress, or to the named handlers.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/SettingsStore.h"
#include "settings/ToolbarOptions.h"

namespace tarnwick {

struct OptionsPorts {
  SettingsStore& settings;
  // The options now in force: the defaults of every control at load.
  const ToolbarOptions& options;
  std::int32_t DefaultTextWindowWidth;
  // The process's LoadOptions, run after OK has written the settings.
  std::function<void()> LoadOptions;
};

enum class ControlKind { Label, CheckBox, TextBox, Slider, Button };

// One control as a host draws it.
struct ControlView {
  std::string id;  // "cbToolbar", "tbAutoFillName", "slOption(3)", "cbOK"...
  ControlKind kind = ControlKind::Label;
  std::string caption;  // a label's text, a box's or button's caption, a slider's heading
  std::string setting;  // the value name it is saved under; empty for none
  int value = 0;        // check box 0 or 1; slider position
  std::string text;     // text box contents
  int min = 0;
  int max = 0;
  int smallStep = 0;
  int largeStep = 0;
  int tickFrequency = 0;
  std::string valueLabel;  // the slider's value as shown (lblValue)
  std::string unitLabel;   // its unit (lblOption)
  bool enabled = true;
};

class frmOptions {
 public:
  struct CheckBox {
    std::string_view id;
    std::string_view caption;
    std::string_view setting;
    bool ToolbarOptions::*option;
    int Value = 0;  // 0 unchecked, 1 checked
    bool Enabled = true;
  };
  struct TextBox {
    std::string_view id;
    std::string_view label;
    std::string_view setting;
    std::string Text;
    bool Enabled = true;
  };
  struct Slider {
    std::string_view Tag;  // the value name the slider is saved under
    std::string_view heading;
    int Min;
    int Max;
    int SmallChange;
    int LargeChange;
    int TickFrequency;
    int Value = 0;
  };

  static constexpr int kSliderCount = 5;
  static constexpr int kUpdateIntervalSlider = 3;
  static constexpr int kRiskRankSlider = 4;
  static constexpr int kKeyEnter = 13;
  static constexpr int kKeyEscape = 27;

  explicit frmOptions(OptionsPorts ports);

  void Form_Load();
  // Enter presses OK, Escape Cancel.
  void Form_KeyPress(int KeyAscii);
  void cbOK_Click();
  void cbCancel_Click();
  void cbReset_Click();

  // Changes a box or slider as the person would, running its handlers. A
  // slider takes the value nearest to `value` within its range.
  void SetCheck(CheckBox& box, int value);
  void SetSlider(int index, int value);

  // The controls in the order the dialog shows them.
  std::vector<ControlView> Controls() const;
  // By control id, for hosts that render Controls(): false for an unknown or
  // disabled control, a check box value other than 0 or 1, or a button id.
  bool SetValue(std::string_view id, int value);
  bool SetText(std::string_view id, std::string_view text);
  // Presses cbOK, cbCancel or cbReset; false for any other id.
  bool Press(std::string_view id);

  CheckBox cbToolbar{"cbToolbar", "Toolbar", "ForceToolbar", &ToolbarOptions::ForceToolbar};
  CheckBox cbStatusbar{"cbStatusbar", "Status bar", "ForceStatusBar", &ToolbarOptions::ForceStatusBar};
  CheckBox cbMenubar{"cbMenubar", "Menu bar (requires toolbar)", "ForceMenuBar", &ToolbarOptions::ForceMenuBar};
  CheckBox cbResizable{"cbResizable", "Resizable", "ForceResizable", &ToolbarOptions::ForceResizable};
  CheckBox cbBlockPopups{"cbBlockPopups", "Block unrequested popup windows", "BlockPopups",
                         &ToolbarOptions::BlockPopups};
  CheckBox cbBlockXSS{"cbBlockXSS", "Block Cross-Site Scripting (XSS) attacks", "BlockXSS", &ToolbarOptions::BlockXSS};
  CheckBox cbAutoFillReportForm{"cbAutoFillReportForm", "Remember Details for Report URL Form", "AutoFillReportForm",
                                &ToolbarOptions::AutoFillReportForm};
  TextBox tbAutoFillName{"tbAutoFillName", "Name:", "AutoFillName", {}};
  TextBox tbAutoFillEmail{"tbAutoFillEmail", "Email:", "AutoFillEmail", {}};
  std::array<Slider, kSliderCount> slOption{{
      {"TextWindowWidth", "Toolbar display width (requires browser restart)", 300, 2048, 1, 5, 1},
      {"BarHeight", "Height of a browser bar (e.g. toolbar/menu bar)", 10, 120, 1, 5, 1},
      {"ServerTimeout", "Timeout for contacting central toolbar server", 1, 300, 1, 5, 1},
      {"DLLUpdateInterval", "Check for a newer version of the toolbar every", 60, 10080, 60, 5, 60},
      {"BlockAtRiskRank", "Automatically block sites with risk rating over", 1, 10, 1, 5, 1},
  }};
  std::array<std::string, kSliderCount> lblOption{"pixels", "pixels", "seconds", "  hours", ""};
  std::array<std::string, kSliderCount> lblValue;
  std::string Caption;  // "Tarnwick Toolbar Options"
  // True once OK or Cancel has closed the dialog; Saved once OK has.
  bool Closed = false;
  bool Saved = false;

  static constexpr std::string_view kDisplayHeading = "Always force display of these browser elements:";

 private:
  void slOption_Change(int Index);
  // The enabled state of the controls that depend on a box.
  void cbToolbar_Click();
  void cbAutoFillReportForm_Click();
  // The check boxes in the order the dialog shows them.
  static const std::array<CheckBox frmOptions::*, 7> kCheckBoxes;
  int LoadedNumber(std::string_view name, std::int32_t current);

  OptionsPorts ports_;
};

}  // namespace tarnwick
