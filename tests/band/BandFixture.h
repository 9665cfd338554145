// A band over a recording browser and recording windows, in a process of its
// own (program folder, settings, log), talking to the reference toolbar
// server on a loopback port with the real component libraries. Host names
// resolve from a table; the public addresses in it let the server tell the
// hosting country.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "RecordingBrowser.h"
#include "RecordingWindows.h"
#include "band/ClassRegistry.h"
#include "band/ToolBar.h"
#include "common/TableResolver.h"
#include "components/ComponentTest.h"
#include "server/ServerFixture.h"
#include "settings/mdlRegistry.h"
#include "support/Files.h"

namespace tarnwick::testing {

inline const std::filesystem::path kBuiltPageFetch = TARNWICK_PAGEFETCH_FILE;
inline const std::filesystem::path kSourceData = TARNWICK_SOURCE_DATA;
inline constexpr const char* kPageFetchProgId = "Tarnwick.PageFetch.1";
inline constexpr const char* kPageFetchClassId = "{6B1F2C9E-4D7A-4E83-9C25-0A7E3B5D8F41}";

class BandFixture : public ComponentTest {
 protected:
  BandFixture() {
    RemoveClassRegistration(*process.settings, kPageFetchProgId, kPageFetchClassId);
    Install(kBuiltRex);
    Install(kBuiltPageFetch);
    for (const char* file :
         {"localblock.dat", "xss.dat", "tarnwick.xml", "menu.xml", "logo.bmp", "server/update-signing.key"}) {
      std::filesystem::create_directories((server.data / file).parent_path());
      std::filesystem::copy_file(kSourceData / file, server.data / file);
    }
    // The menu files come with the installation.
    for (const char* file : {"tarnwick.xml", "menu.xml", "logo.bmp"}) {
      std::filesystem::copy_file(kSourceData / file, process.paths.ProgramFolder() / file);
    }
    server::testing::ImportLines(server.database, {"phish.example", "http://shop.example/cart/login.php"});
    server.Start();
    process.endpoints = {server.Url(""), server.Url("")};
    auto table = std::make_unique<TableResolver>();
    table->names = {{"www.news.example", {8, 8, 8, 8}}, {"shop.example", {1, 1, 1, 1}}};
    process.resolver = std::move(table);
    Set("Debug", "1");
  }
  ~BandFixture() override { RemoveClassRegistration(*process.settings, kPageFetchProgId, kPageFetchClassId); }

  void Set(const char* name, const std::string& value) {
    mdlRegistry::SaveSetting(*process.settings, mdlRegistry::kSettingsKey, name, value, kRegSz);
  }
  std::string Setting(const char* name) {
    return ToText(mdlRegistry::GetSetting(*process.settings, mdlRegistry::kSettingsKey, name, std::string("-")));
  }
  StartUpRecord Start() { return band.IObjectWithSite_SetSite(&browser); }
  // How many times the band asked the server about a URL so far.
  int ServerQuestions() {
    int count = 0;
    for (const auto& line : ProgramLog()) count += line.starts_with("(debug) (URL_Blocked_Remotely) Getting ");
    return count;
  }
  // The navigation as the browser reports it: before, then (unless cancelled)
  // completed at `arrival` (a redirect when it differs). The record of the
  // check that decided: the one after a redirect, else the one before.
  NavigationRecord Navigate(const std::string& url, const std::string& arrival = {}) {
    bool cancel = false;
    NavigationRecord before = band.guard().m_oIE_BeforeNavigate2(true, url, 0, "", {}, "", cancel);
    if (cancel) return before;
    browser.location = arrival.empty() ? url : arrival;
    browser.document.emplace();
    NavigationRecord after = band.guard().m_oIE_NavigateComplete2(true, browser.location);
    return arrival.empty() || arrival == url ? before : after;
  }

  server::testing::ServerFixture server;
  RecordingBrowser browser;
  RecordingWindows windows;
  ToolBar band{process, windows};
};

}  // namespace tarnwick::testing
