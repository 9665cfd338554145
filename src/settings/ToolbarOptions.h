// ToolbarOptions: the process-wide record of settings, and LoadOptions which
// fills it from the settings key.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "settings/SettingValue.h"
#include "settings/SettingsStore.h"
#include "ui/Ui.h"

namespace tarnwick {

inline constexpr std::int32_t kDefaultPatternTimeLimit = 200;

// Before the first load every field is false, zero or empty, but
// PatternTimeLimit, which starts at its default.
struct ToolbarOptions {
  bool Debug = false;
  bool ForceToolbar = false;
  bool ForceStatusBar = false;
  bool ForceMenuBar = false;
  bool ForceResizable = false;
  bool BlockPopups = false;
  bool BlockXSS = false;
  bool AutoFillReportForm = false;
  std::string AutoFillName;
  std::string AutoFillEmail;
  std::int32_t BarHeight = 0;
  std::int32_t ServerTimeout = 0;
  std::int32_t TextWindowWidth = 0;
  std::int32_t DLLUpdateInterval = 0;
  std::int32_t BlockAtRiskRank = 0;
  // Milliseconds one check may spend on patterns in all; never zero, so a
  // record loaded only in part still lets patterns run.
  std::int32_t PatternTimeLimit = kDefaultPatternTimeLimit;
};

// One setting of the table LoadOptions reads, in the order it reads them.
struct OptionField {
  std::string_view name;
  std::variant<bool ToolbarOptions::*, std::int32_t ToolbarOptions::*, std::string ToolbarOptions::*> field;
  // nullopt: the default is DefaultTextWindowWidth at the time of loading.
  std::optional<SettingValue> defaultValue;
};

const std::array<OptionField, 16>& OptionTable();

// The field's current value as text: booleans "True"/"False", numbers in
// decimal, strings as they are.
std::string OptionText(const ToolbarOptions& options, const OptionField& field);

// The screen width in pixels minus 200: the default width of the text window.
std::int32_t ComputeDefaultTextWindowWidth(Ui& ui);

// Reads every setting of the table into `options`. A stored value that does
// not convert stops the loading there with a message box; the fields from
// that one on keep what they held. A ServerTimeout over 300 is reset to 5 and
// written back; a PatternTimeLimit outside 1 to 60000 counts as 200.
void LoadOptions(SettingsStore& store, Ui& ui, std::int32_t defaultTextWindowWidth, ToolbarOptions& options);

// Two more values of the same key, read where they are used.
bool ReadShowLabels(SettingsStore& store);
std::string ReadGUID(SettingsStore& store);
// The installation's identifier: 32 upper-case hexadecimal digits, made from
// the system's random source and stored the first time it is asked for.
std::string EnsureGUID(SettingsStore& store);

}  // namespace tarnwick
