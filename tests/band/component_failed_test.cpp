// What the user is told about a broken component, and where the browser goes.
#include <gtest/gtest.h>

#include "band/ComponentFailed.h"
#include "band/RecordingBrowser.h"
#include "common/TestSupport.h"

namespace tarnwick::testing {
namespace {

TEST(ComponentFailedTest, TheToolbarApologisesAndSendsTheBrowserToTheInstallPage) {
  TestProcess t;
  RecordingBrowser browser;
  ComponentFailed(t.process, &browser, "PageFetch");

  ASSERT_EQ(t.ui.shown.size(), 2u);
  EXPECT_EQ(t.ui.shown[0].text, "Your Tarnwick Toolbar has become corrupted (PageFetch component).");
  EXPECT_EQ(t.ui.shown[1].text,
            " You will now be redirected to the Tarnwick website, where you can reinstall the toolbar.");
  for (const auto& message : t.ui.shown) {
    EXPECT_EQ(message.style & 0xF, vbOKOnly);
    EXPECT_EQ(message.title, "Tarnwick Toolbar");
  }
  EXPECT_EQ(browser.calls, (std::vector<std::string>{"Stop", "Navigate http://127.0.0.1:9/install"}));
}

TEST(ComponentFailedTest, AnotherProductOnlySaysSo) {
  TestProcess t;
  t.process.FileDescription = "Example Shield";
  RecordingBrowser browser;
  ComponentFailed(t.process, &browser, "CheckURL");

  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text, "Your Example Shield has become corrupted (CheckURL component).");
  EXPECT_TRUE(browser.calls.empty());
}

}  // namespace
}  // namespace tarnwick::testing
