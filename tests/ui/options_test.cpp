// The options dialog over the real settings store: what it loads, shows,
// writes and leaves alone.
#include <gtest/gtest.h>

#include <set>

#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"
#include "ui/frmOptions.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

// The real store, noting each value written or deleted in order: the
// registry itself lists values in an order of its own.
class RecordingStore final : public SettingsStore {
 public:
  explicit RecordingStore(SettingsStore& store) : store_(store) {}
  long OpenKey(Root root, std::string_view path, Access access, std::unique_ptr<RegistryKey>& key) override {
    return Wrap(store_.OpenKey(root, path, access, key), key);
  }
  long CreateKey(Root root, std::string_view path, std::unique_ptr<RegistryKey>& key) override {
    return Wrap(store_.CreateKey(root, path, key), key);
  }
  std::vector<std::string> writes;

 private:
  class Key final : public RegistryKey {
   public:
    Key(std::unique_ptr<RegistryKey> key, std::vector<std::string>& writes) : key_(std::move(key)), writes_(writes) {}
    long QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) override {
      return key_->QueryValueInfo(name, type, size);
    }
    long QueryValueData(std::string_view name, std::uint32_t size, std::string& data) override {
      return key_->QueryValueData(name, size, data);
    }
    long SetValue(std::string_view name, std::uint32_t type, std::string_view data) override {
      writes_.push_back(std::string(name) + "=" + std::string(data));
      return key_->SetValue(name, type, data);
    }
    long DeleteValue(std::string_view name) override {
      writes_.push_back("delete " + std::string(name));
      return key_->DeleteValue(name);
    }
    long ValueNames(std::vector<std::string>& names) override { return key_->ValueNames(names); }

   private:
    std::unique_ptr<RegistryKey> key_;
    std::vector<std::string>& writes_;
  };

  long Wrap(long status, std::unique_ptr<RegistryKey>& key) {
    if (key) key = std::make_unique<Key>(std::move(key), writes);
    return status;
  }
  SettingsStore& store_;
};

struct OptionsTest : ::testing::Test {
  OptionsTest() { process.LoadOptions(); }

  void Store(std::string_view name, std::string_view value) {
    mdlRegistry::SaveSetting(store, kSettingsKey, name, std::string(value), kRegSz);
  }
  std::string Stored(std::string_view name) {
    return ToText(mdlRegistry::GetSetting(store, kSettingsKey, name, std::string("<absent>")));
  }
  // Every value of the settings key, in stored order, as "name=value".
  std::vector<std::string> Key() {
    std::vector<std::string> values;
    std::unique_ptr<RegistryKey> key;
    if (store.OpenKey(Root::CurrentUser, kSettingsKey, Access::Read, key) != kErrorSuccess) return values;
    std::vector<std::string> names;
    key->ValueNames(names);
    for (const auto& name : names) values.push_back(name + "=" + Stored(name));
    return values;
  }
  frmOptions& Open() {
    form = std::make_unique<frmOptions>(
        OptionsPorts{recorder, process.options, process.DefaultTextWindowWidth, [this] { ++reloads; }});
    form->Form_Load();
    return *form;
  }

  testing::TestProcess t;
  ToolbarProcess& process = t.process;
  SettingsStore& store = *process.settings;
  RecordingStore recorder{store};
  std::unique_ptr<frmOptions> form;
  int reloads = 0;
};

TEST_F(OptionsTest, TheUpdateIntervalShowsDaysFromOneDayAndHoursBelow) {
  const auto shown = [this](const char* seconds) {
    Store("DLLUpdateInterval", seconds);
    frmOptions& f = Open();
    return f.lblValue[3] + "|" + f.lblOption[3] + "|" + std::to_string(f.slOption[3].SmallChange) + "," +
           std::to_string(f.slOption[3].LargeChange);
  };
  EXPECT_EQ(shown("86400"), "1|  days|1440,2880");
  EXPECT_EQ(shown("7200"), "2|  hours|60,120");
  EXPECT_EQ(shown("5400"), "1.5|  hours|60,120");
  EXPECT_EQ(shown("86340"), "24|  hours|60,120");  // 1439 minutes: a minute short of the days
  EXPECT_EQ(shown("129600"), "1.5|  days|1440,2880");
  EXPECT_EQ(shown("3780"), "1|  hours|60,120");  // 63 minutes: 1.05 hours, the half goes to the even tenth

  Store("DLLUpdateInterval", "5400");
  Open().cbOK_Click();
  EXPECT_EQ(Stored("DLLUpdateInterval"), "5400");
}

TEST_F(OptionsTest, TheRiskSliderIsOffAtTenOnly) {
  frmOptions& f = Open();
  EXPECT_EQ(f.slOption[4].Value, 10);
  EXPECT_EQ(f.lblValue[4], "10");
  EXPECT_EQ(f.lblOption[4], "(off)");
  f.SetSlider(4, 9);
  EXPECT_EQ(f.lblValue[4], "9");
  EXPECT_EQ(f.lblOption[4], "");
}

TEST_F(OptionsTest, OkWritesEveryControlAsTextInOrderAndReloads) {
  frmOptions& f = Open();
  f.SetCheck(f.cbAutoFillReportForm, 0);
  f.SetCheck(f.cbResizable, 0);
  f.SetSlider(1, 44);
  f.Form_KeyPress(frmOptions::kKeyEnter);
  EXPECT_TRUE(f.Closed && f.Saved);
  EXPECT_EQ(reloads, 1);
  EXPECT_EQ(recorder.writes,
            (std::vector<std::string>{"TextWindowWidth=1080", "BarHeight=44", "ServerTimeout=5",
                                      "DLLUpdateInterval=86400", "BlockAtRiskRank=10", "BlockPopups=1", "BlockXSS=1",
                                      "ForceToolbar=1", "ForceStatusBar=1", "ForceMenuBar=1", "ForceResizable=0",
                                      "AutoFillReportForm=0", "delete AutoFillName", "delete AutoFillEmail"}));
  EXPECT_EQ(Stored("BarHeight"), "44");
}

TEST_F(OptionsTest, OkWithAutoFillOffRemovesTheRememberedDetails) {
  Store("AutoFillName", "Alice");
  Store("AutoFillEmail", "alice@mail.test");
  frmOptions& f = Open();
  EXPECT_EQ(f.tbAutoFillName.Text, "Alice");
  EXPECT_EQ(f.tbAutoFillEmail.Text, "alice@mail.test");
  f.SetCheck(f.cbAutoFillReportForm, 0);
  f.cbOK_Click();
  EXPECT_EQ(Stored("AutoFillName"), "<absent>");
  EXPECT_EQ(Stored("AutoFillEmail"), "<absent>");
}

TEST_F(OptionsTest, WithAutoFillOnTheTextsAreWrittenAsTyped) {
  frmOptions& f = Open();
  EXPECT_TRUE(f.SetText("tbAutoFillName", "Bob \xe9"));
  f.cbOK_Click();
  EXPECT_EQ(Stored("AutoFillName"), "Bob \xe9");
  EXPECT_EQ(Stored("AutoFillEmail"), "");
}

TEST_F(OptionsTest, RestoreDefaultsThenCancelWritesNothing) {
  Store("BarHeight", "50");
  Store("ForceToolbar", "0");
  Store("DLLUpdateInterval", "7200");
  const auto before = Key();
  frmOptions& f = Open();
  EXPECT_FALSE(f.cbMenubar.Enabled);
  f.cbReset_Click();
  EXPECT_EQ(f.slOption[0].Value, process.DefaultTextWindowWidth);
  EXPECT_EQ(f.slOption[1].Value, 30);
  EXPECT_EQ(f.slOption[3].Value, 10080);  // 86400 given to a slider of minutes stops at its maximum
  EXPECT_EQ(f.lblValue[3] + f.lblOption[3], "7  days");
  EXPECT_EQ(f.lblOption[4], "(off)");
  EXPECT_EQ(f.cbToolbar.Value, 1);
  EXPECT_TRUE(f.cbMenubar.Enabled && f.tbAutoFillEmail.Enabled);
  f.Form_KeyPress(frmOptions::kKeyEscape);
  EXPECT_TRUE(f.Closed);
  EXPECT_FALSE(f.Saved);
  EXPECT_EQ(reloads, 0);
  EXPECT_TRUE(recorder.writes.empty());
  EXPECT_EQ(Key(), before);
}

TEST_F(OptionsTest, LoadedValuesOutsideASliderAreClampedAndBadTextsKeepTheOptions) {
  Store("BarHeight", "500");
  Store("BlockAtRiskRank", "0");
  Store("DLLUpdateInterval", "60");
  Store("ServerTimeout", "abc");
  Store("BlockXSS", "maybe");
  process.options.BlockXSS = false;
  process.options.ServerTimeout = 7;
  frmOptions& f = Open();
  EXPECT_EQ(f.slOption[1].Value, 120);
  EXPECT_EQ(f.slOption[4].Value, 1);
  EXPECT_EQ(f.slOption[3].Value, 60);
  EXPECT_EQ(f.slOption[2].Value, 7);
  EXPECT_EQ(f.cbBlockXSS.Value, 0);
}

TEST_F(OptionsTest, DependentControlsFollowTheirBoxes) {
  Store("AutoFillReportForm", "0");
  Store("AutoFillName", "kept out");
  frmOptions& f = Open();
  EXPECT_EQ(f.tbAutoFillName.Text, "");  // not loaded while the box is off
  EXPECT_FALSE(f.tbAutoFillName.Enabled);
  EXPECT_FALSE(f.SetText("tbAutoFillName", "x"));
  EXPECT_TRUE(f.SetValue("cbAutoFillReportForm", 1));
  EXPECT_TRUE(f.SetText("tbAutoFillName", "x"));
  EXPECT_TRUE(f.SetValue("cbToolbar", 0));
  EXPECT_FALSE(f.SetValue("cbMenubar", 0));
  EXPECT_FALSE(f.SetValue("cbStatusbar", 2));
  EXPECT_FALSE(f.SetValue("cbOK", 1));
  EXPECT_FALSE(f.Press("cbToolbar"));
}

TEST_F(OptionsTest, ControlsDescribeEveryControlForAnyHost) {
  frmOptions& f = Open();
  f.SetCheck(f.cbToolbar, 0);
  const auto controls = f.Controls();
  ASSERT_EQ(controls.size(), 18u);
  std::set<std::string> ids;
  for (const auto& control : controls) ids.insert(control.id);
  EXPECT_EQ(ids.size(), controls.size());

  EXPECT_EQ(controls[0].caption, "Always force display of these browser elements:");
  const ControlView& menuBar = controls[3];
  EXPECT_EQ(menuBar.id, "cbMenubar");
  EXPECT_EQ(menuBar.caption, "Menu bar (requires toolbar)");
  EXPECT_EQ(menuBar.setting, "ForceMenuBar");
  EXPECT_FALSE(menuBar.enabled);
  const ControlView& interval = controls[13];
  EXPECT_EQ(interval.id, "slOption(3)");
  EXPECT_EQ(interval.kind, ControlKind::Slider);
  EXPECT_EQ(interval.caption, "Check for a newer version of the toolbar every");
  EXPECT_EQ(interval.setting, "DLLUpdateInterval");
  EXPECT_EQ(interval.value, 1440);
  EXPECT_EQ(interval.min, 60);
  EXPECT_EQ(interval.max, 10080);
  EXPECT_EQ(interval.tickFrequency, 1440);
  EXPECT_EQ(interval.valueLabel + interval.unitLabel, "1  days");
  EXPECT_EQ(controls[17].caption, "Restore Defaults");

  EXPECT_TRUE(f.SetValue("slOption(3)", 100000));
  EXPECT_EQ(f.slOption[3].Value, 10080);
  EXPECT_TRUE(f.Press("cbCancel"));
  EXPECT_TRUE(f.Closed);
}

}  // namespace
}  // namespace tarnwick
