// ToolBar: the band a browser window hosts. It starts up in a fixed order
// when it is given its site, builds its windows, guards every navigation of
// its browser (NavigationGuard), keeps the site information strip, and tears
// everything down when it is closed. Hosts turn their platform's calls into
// these members and render what they decide.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "band/BandSite.h"
#include "band/BandWindows.h"
#include "band/Browser.h"
#include "band/NavigationGuard.h"
#include "band/SiteInformation.h"
#include "band/ToolbarProcess.h"
#include "check/CheckURL.h"
#include "ui/CommandHost.h"

namespace tarnwick {

// Band information the browser asks for; only the members named in `mask`
// are filled.
inline constexpr std::uint32_t DBIM_MINSIZE = 0x1;
inline constexpr std::uint32_t DBIM_MAXSIZE = 0x2;
inline constexpr std::uint32_t DBIM_INTEGRAL = 0x4;
inline constexpr std::uint32_t DBIM_ACTUAL = 0x8;
inline constexpr std::uint32_t DBIM_TITLE = 0x10;
inline constexpr std::uint32_t DBIM_MODEFLAGS = 0x20;

struct BandInfo {
  struct Size {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const Size&) const = default;
  };
  std::uint32_t mask = 0;
  Size minSize;
  Size maxSize;
  Size integral;
  Size actual;
  std::string title;
  bool titleSet = false;
  std::uint32_t modeFlags = 0;
};

// How far a start-up went.
struct StartUpRecord {
  // The process-wide steps ran: this was the process's first open band.
  bool processStartUp = false;
  bool toolbarCreated = false;
  // "PageFetch" or "CheckURL" when a broken component stopped the start-up.
  std::string failedComponent;
  // Files the server gave hashes for.
  std::size_t serverHashes = 0;
  // The self-update check's status (0: not due, no request made).
  std::int16_t updateCheckStatus = 0;
};

// The band is also the host of the toolbar commands its menus run: their
// browser is the band's, their menus drop from its buttons, their dialogs
// open through its windows.
class ToolBar : private CommandHost {
 public:
  static constexpr std::int32_t kBandHeight = 22;

  ToolBar(ToolbarProcess& process, BandWindows& windows);
  ~ToolBar();
  ToolBar(const ToolBar&) = delete;
  ToolBar& operator=(const ToolBar&) = delete;

  // With a site: the whole start-up, ending in CreateToolbar. With null: the
  // browser is let go (its events stop); the windows stay until CloseDW.
  StartUpRecord IObjectWithSite_SetSite(BandSite* site);
  BandSite* IObjectWithSite_GetSite() const { return site_; }
  WindowHandle IOleWindow_GetWindow() const { return toolbarWindow_; }
  void IDeskBand_ShowDW(bool show);
  // Tears the windows down; the lines DestroyToolbar logged, in order.
  std::vector<std::string> IDeskBand_CloseDW();
  void IDeskBand_GetBandInfo(BandInfo& info);
  // The band keeps nothing between sessions: neither reads nor writes a byte.
  void IPersistStream_Load(std::istream& stream);
  void IPersistStream_Save(std::ostream& stream, bool clearDirty);

  std::int32_t TextLeft();
  void RedrawToolbar();
  std::vector<std::string> DestroyToolbar();

  NavigationGuard& guard() { return guard_; }
  ToolbarProcess& process() { return process_; }
  Browser* browser() const { return browser_; }
  CheckURL* checker() const { return checker_.get(); }
  // A menu button was pressed: its menu drops down and the item chosen is
  // opened or, for a toolbar command, run.
  void ProductMenuClicked();
  void ClientMenuClicked();
  // The search box's query, posted as the form field q to the web site's
  // /search/ page in the top frame.
  void Search(std::string_view query);
  // Hands a new text to the site information strip, with a repaint.
  void ShowSiteInformation(const std::string& text);
  const SiteInformation& strip() const { return strip_; }

 private:
  void ConnectBrowser();
  void DisconnectBrowser();
  void RefreshComponents();
  bool CreateChecker();
  void CreateToolbar();
  std::int32_t AddBitmap();
  std::int32_t AddClientBitmap();
  void AddToolbarIcons();
  void CreateTextWindow();
  void CreateSearchBox();
  void ComponentFailed(std::string_view name);

  std::string LocationURL() override;
  bool Navigate(std::string_view url, std::string_view targetFrame) override;
  int Popup(const cPopupMenu& menu) override;
  void RedrawProductButton() override;
  void OpenAbout() override;
  void OpenOptions() override;
  void Uninstall(std::string_view commandLine) override;

  ToolbarProcess& process_;
  BandWindows& windows_;
  NavigationGuard guard_{*this};

  BandSite* site_ = nullptr;
  Browser* browser_ = nullptr;
  std::unique_ptr<CheckURL> checker_;
  WindowHandle messageWindow_ = 0;
  WindowHandle toolbarWindow_ = 0;
  WindowHandle productMenuWindow_ = 0;
  WindowHandle clientMenuWindow_ = 0;
  WindowHandle textWindow_ = 0;
  SearchBoxWindows searchBox_;
  bool showLabels_ = true;
  bool open_ = false;  // counted among the process's open bands
  std::int32_t buttonIndent_ = 0;

  std::unique_ptr<SiteInformationReader> stripReader_;
  SiteInformation strip_;
};

}  // namespace tarnwick
