#include <gtest/gtest.h>

#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

struct LoadOptionsTest : ::testing::Test {
  testing::TestProcess t;
  ToolbarProcess& process = t.process;
  SettingsStore& store = *process.settings;

  void SetText(std::string_view name, std::string_view value) {
    mdlRegistry::SaveSetting(store, kSettingsKey, name, std::string(value), kRegSz);
  }
  void SetRaw(std::string_view name, std::uint32_t type, std::string_view data) {
    std::unique_ptr<RegistryKey> key;
    ASSERT_EQ(store.CreateKey(Root::CurrentUser, kSettingsKey, key), kErrorSuccess);
    ASSERT_EQ(key->SetValue(name, type, data), kErrorSuccess);
  }
  std::string Stored(std::string_view name) {
    return ToText(mdlRegistry::GetSetting(store, kSettingsKey, name, std::string("<absent>")));
  }
};

TEST_F(LoadOptionsTest, AnEmptyKeyGivesTheDefaults) {
  t.ui.screenWidth = 1600;
  process.LoadOptions();
  const ToolbarOptions& o = process.options;
  EXPECT_FALSE(o.Debug);
  EXPECT_TRUE(o.ForceToolbar && o.ForceStatusBar && o.ForceMenuBar && o.ForceResizable);
  EXPECT_TRUE(o.BlockPopups && o.BlockXSS && o.AutoFillReportForm);
  EXPECT_EQ(o.AutoFillName, "");
  EXPECT_EQ(o.BarHeight, 30);
  EXPECT_EQ(o.ServerTimeout, 5);
  EXPECT_EQ(o.TextWindowWidth, 1400);
  EXPECT_EQ(process.DefaultTextWindowWidth, 1400);
  EXPECT_EQ(o.DLLUpdateInterval, 86400);
  EXPECT_EQ(o.BlockAtRiskRank, 10);
  EXPECT_EQ(o.PatternTimeLimit, 200);
  EXPECT_TRUE(ReadShowLabels(store));
  EXPECT_EQ(ReadGUID(store), "");
  EXPECT_TRUE(t.ui.shown.empty());
}

TEST_F(LoadOptionsTest, APatternTimeLimitOutsideOneTo60000MillisecondsCountsAsTheDefault) {
  for (const auto& [stored, used] : {std::pair{"50", 50}, {"60000", 60000}, {"0", 200}, {"-5", 200}, {"60001", 200}}) {
    SetText("PatternTimeLimit", stored);
    process.LoadOptions();
    EXPECT_EQ(process.options.PatternTimeLimit, used) << stored;
    EXPECT_EQ(Stored("PatternTimeLimit"), stored);  // not written back
  }
}

TEST_F(LoadOptionsTest, ServerTimeoutOver300IsResetAndWrittenBackAsText) {
  SetText("ServerTimeout", "301");
  process.LoadOptions();
  EXPECT_EQ(process.options.ServerTimeout, 5);
  EXPECT_EQ(Stored("ServerTimeout"), "5");

  for (const char* kept : {"300", "0", "-7"}) {
    SetText("ServerTimeout", kept);
    process.LoadOptions();
    EXPECT_EQ(std::to_string(process.options.ServerTimeout), kept);
    EXPECT_EQ(Stored("ServerTimeout"), kept);
  }
}

TEST_F(LoadOptionsTest, NumbersAndTextsAreBothAcceptedOtherTypesCountAsAbsent) {
  SetRaw("BarHeight", kRegDword, std::string("\x28\0\0\0", 4));
  SetRaw("DLLUpdateInterval", kRegBinary, "\x01\x02");
  SetRaw("AutoFillEmail", kRegDword, std::string("\x07\0\0\0", 4));
  SetText("TextWindowWidth", " 2.5 ");
  SetText("BlockAtRiskRank", "&H7");
  process.LoadOptions();
  EXPECT_EQ(process.options.BarHeight, 40);
  EXPECT_EQ(process.options.DLLUpdateInterval, 86400);
  EXPECT_EQ(process.options.AutoFillEmail, "7");
  EXPECT_EQ(process.options.TextWindowWidth, 2);  // halves round to even
  EXPECT_EQ(process.options.BlockAtRiskRank, 7);
}

TEST_F(LoadOptionsTest, BooleansTakeNumbersAndTrueFalseTexts) {
  const std::pair<const char*, bool> cases[] = {{"0", false},   {"1", true},      {"-1", true},
                                                {"True", true}, {"false", false}, {" 0.0 ", false}};
  for (const auto& [text, expected] : cases) {
    SetText("ForceToolbar", text);
    process.LoadOptions();
    EXPECT_EQ(process.options.ForceToolbar, expected) << text;
  }
  SetText("ShowLabels", "0");
  EXPECT_FALSE(ReadShowLabels(store));
}

TEST_F(LoadOptionsTest, AnUnconvertibleValueStopsLoadingThereWithTheMessage) {
  process.LoadOptions();  // the fields now hold the defaults
  SetText("AutoFillName", "abc");
  SetText("Debug", "1");
  SetText("BarHeight", "55");
  SetText("ServerTimeout", "999");
  SetText("BlockAtRiskRank", "abc");
  process.options.TextWindowWidth = 777;

  process.LoadOptions();
  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text,
            "An error (Type mismatch: 13) occurred while loading toolbar options. Please contact technical support "
            "for further information");
  EXPECT_EQ(t.ui.shown[0].style, vbOKOnly);
  // Fields before the failing value took their new values...
  EXPECT_TRUE(process.options.Debug);
  EXPECT_EQ(process.options.AutoFillName, "abc");
  EXPECT_EQ(process.options.BarHeight, 55);
  EXPECT_EQ(process.options.TextWindowWidth, process.DefaultTextWindowWidth);
  // ...the failing one kept its old value, and the ServerTimeout reset was skipped.
  EXPECT_EQ(process.options.BlockAtRiskRank, 10);
  EXPECT_EQ(process.options.ServerTimeout, 999);
  EXPECT_EQ(Stored("ServerTimeout"), "999");
}

TEST_F(LoadOptionsTest, OnTheFirstLoadTheFieldsFromTheFailureOnStayEmpty) {
  SetText("BarHeight", "99999999999");
  process.LoadOptions();
  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text,
            "An error (Overflow: 6) occurred while loading toolbar options. Please contact technical support for "
            "further information");
  EXPECT_TRUE(process.options.ForceToolbar);
  EXPECT_EQ(process.options.BarHeight, 0);
  EXPECT_EQ(process.options.ServerTimeout, 0);
  EXPECT_EQ(process.options.BlockAtRiskRank, 0);
}

TEST_F(LoadOptionsTest, RegistryOperations) {
  EXPECT_FALSE(mdlRegistry::DeleteValue(store, Root::CurrentUser, kSettingsKey, "GUID"));  // no key yet
  SetText("GUID", "0123456789ABCDEF0123456789ABCDEF");
  EXPECT_FALSE(mdlRegistry::DeleteValue(store, Root::CurrentUser, kSettingsKey, "Missing"));
  EXPECT_TRUE(mdlRegistry::DeleteValue(store, Root::CurrentUser, kSettingsKey, "GUID"));
  EXPECT_EQ(Stored("GUID"), "<absent>");

  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(store.CreateKey(Root::CurrentUser, kSettingsKey, key), kErrorSuccess);
  // A number written as a 32-bit value reads back as a number; text that is
  // no number writes nothing.
  EXPECT_EQ(mdlRegistry::WriteValue(*key, "BarHeight", kRegDword, std::string("44")), kErrorSuccess);
  EXPECT_EQ(mdlRegistry::GetSetting(store, kSettingsKey, "BarHeight", 0), SettingValue(44));
  EXPECT_NE(mdlRegistry::WriteValue(*key, "BarHeight", kRegDword, std::string("abc")), kErrorSuccess);
  EXPECT_EQ(mdlRegistry::GetSetting(store, kSettingsKey, "BarHeight", 0), SettingValue(44));
  // Other types write nothing.
  EXPECT_EQ(mdlRegistry::WriteValue(*key, "Blob", kRegBinary, std::string("x")), kErrorSuccess);
  EXPECT_EQ(Stored("Blob"), "<absent>");
  // Text comes back whole (the terminator the store reports is the one dropped).
  SetText("AutoFillName", "Jos\xE9");
  EXPECT_EQ(Stored("AutoFillName"), "Jos\xE9");
  SetText("AutoFillName", "");
  EXPECT_EQ(Stored("AutoFillName"), "");
}

}  // namespace
}  // namespace tarnwick
