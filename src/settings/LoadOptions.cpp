#include <random>
#include <string>

#include "ProductInfo.h"
#include "settings/ToolbarOptions.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {

using O = ToolbarOptions;

const std::array<OptionField, 16>& OptionTable() {
  static const std::array<OptionField, 16> table = {{
      {"Debug", &O::Debug, 0},
      {"ForceToolbar", &O::ForceToolbar, 1},
      {"ForceStatusBar", &O::ForceStatusBar, 1},
      {"ForceMenuBar", &O::ForceMenuBar, 1},
      {"ForceResizable", &O::ForceResizable, 1},
      {"BlockPopups", &O::BlockPopups, 1},
      {"BlockXSS", &O::BlockXSS, 1},
      {"AutoFillReportForm", &O::AutoFillReportForm, 1},
      {"AutoFillName", &O::AutoFillName, std::string()},
      {"AutoFillEmail", &O::AutoFillEmail, std::string()},
      {"BarHeight", &O::BarHeight, 30},
      {"ServerTimeout", &O::ServerTimeout, 5},
      {"TextWindowWidth", &O::TextWindowWidth, std::nullopt},
      {"DLLUpdateInterval", &O::DLLUpdateInterval, 86400},
      {"BlockAtRiskRank", &O::BlockAtRiskRank, 10},
      {"PatternTimeLimit", &O::PatternTimeLimit, kDefaultPatternTimeLimit},
  }};
  return table;
}

std::string OptionText(const ToolbarOptions& options, const OptionField& field) {
  struct {
    const ToolbarOptions& options;
    std::string operator()(bool O::*member) const { return options.*member ? "True" : "False"; }
    std::string operator()(std::int32_t O::*member) const { return std::to_string(options.*member); }
    std::string operator()(std::string O::*member) const { return options.*member; }
  } text{options};
  return std::visit(text, field.field);
}

std::int32_t ComputeDefaultTextWindowWidth(Ui& ui) { return ui.ScreenWidthPixels() - 200; }

void LoadOptions(SettingsStore& store, Ui& ui, std::int32_t defaultTextWindowWidth, ToolbarOptions& options) {
  try {
    for (const OptionField& entry : OptionTable()) {
      const SettingValue stored = mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, entry.name,
                                                          entry.defaultValue.value_or(defaultTextWindowWidth));
      struct {
        ToolbarOptions& options;
        const SettingValue& stored;
        void operator()(bool O::*member) const { options.*member = ToBoolean(stored); }
        void operator()(std::int32_t O::*member) const { options.*member = ToLong(stored); }
        void operator()(std::string O::*member) const { options.*member = ToText(stored); }
      } assign{options, stored};
      std::visit(assign, entry.field);
    }
  } catch (const ConversionError& error) {
    ui.MessageBox("An error (" + std::string(error.what()) + ": " + std::to_string(error.number()) +
                      ") occurred while loading toolbar options. Please contact technical support for further "
                      "information",
                  product::kFileDescription, vbOKOnly);
    return;
  }
  if (options.ServerTimeout > 300) {
    options.ServerTimeout = 5;
    mdlRegistry::SaveSetting(store, mdlRegistry::kSettingsKey, "ServerTimeout", std::string("5"), kRegSz);
  }
  if (options.PatternTimeLimit < 1 || options.PatternTimeLimit > 60000)
    options.PatternTimeLimit = kDefaultPatternTimeLimit;
}

bool ReadShowLabels(SettingsStore& store) {
  try {
    return ToBoolean(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, "ShowLabels", std::string("True")));
  } catch (const ConversionError&) {
    return true;
  }
}

std::string ReadGUID(SettingsStore& store) {
  return ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, "GUID", std::string()));
}

}  // namespace tarnwick

namespace tarnwick {

std::string EnsureGUID(SettingsStore& store) {
  std::string guid = ReadGUID(store);
  if (!guid.empty()) return guid;
  std::random_device random;
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int i = 0; i < 32; ++i) guid += kDigits[random() % 16];
  mdlRegistry::SaveSetting(store, mdlRegistry::kSettingsKey, "GUID", guid, kRegSz);
  return guid;
}

}  // namespace tarnwick
