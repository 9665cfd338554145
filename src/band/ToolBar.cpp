#include "band/ToolBar.h"

#include <cctype>
#include <functional>

#include "band/ComponentFactory.h"
#include "band/ComponentFailed.h"
#include "band/Components.h"
#include "band/StartUp.h"
#include "settings/ToolbarOptions.h"
#include "support/RoutineError.h"
#include "ui/frmAbout.h"
#include "ui/frmOptions.h"
#include "ui/mdlBitmapMenu.h"
#include "ui/mdlClientBitmapMenu.h"

namespace tarnwick {
namespace {

// A form field as a browser posts it (application/x-www-form-urlencoded).
std::string FormField(std::string_view name, std::string_view value) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string field = std::string(name) + "=";
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '-' || c == '_' || c == '.' || c == '*') {
      field += c;
    } else if (c == ' ') {
      field += '+';
    } else {
      field += {'%', kHex[byte >> 4], kHex[byte & 0xF]};
    }
  }
  return field;
}

}  // namespace

ToolBar::ToolBar(ToolbarProcess& process, BandWindows& windows) : process_(process), windows_(windows) {}

ToolBar::~ToolBar() { DisconnectBrowser(); }

void ToolBar::ConnectBrowser() { browser_ = site_ != nullptr ? site_->ConnectBrowser() : nullptr; }

void ToolBar::DisconnectBrowser() {
  if (browser_ != nullptr && site_ != nullptr) site_->DisconnectBrowser();
  browser_ = nullptr;
}

StartUpRecord ToolBar::IObjectWithSite_SetSite(BandSite* site) {
  StartUpRecord record;
  DisconnectBrowser();
  site_ = site;
  if (site == nullptr) return record;
  Log& log = process_.log;
  // The process-wide steps run for the first band of a process; a band that
  // joins one already running (another tab of the same browser) finds them
  // done.
  record.processStartUp = process_.openBands == 0;
  const auto processStep = [&](const std::function<void()>& step) {
    if (record.processStartUp) StartUpStep(log, step);
  };

  processStep([&] { RunUpdaterHousekeeping(process_); });
  StartUpStep(log, [&] { ConnectBrowser(); });
  if (record.processStartUp) StartTransfers(process_);
  if (!process_.http.pageFetch) {
    ComponentFailed(kPageFetchComponent.name);
    record.failedComponent = kPageFetchComponent.name;
    return record;
  }
  processStep([&] { RequestFileHashes(process_); });
  record.serverHashes = process_.updates.FileHashes.size();
  processStep([&] { RefreshComponents(); });
  if (!CreateChecker()) {
    ComponentFailed("CheckURL");
    record.failedComponent = "CheckURL";
    return record;
  }
  processStep([&] {
    process_.updates.UpdateToolbarDLL(false);
    record.updateCheckStatus = process_.updates.LastUpdateCheckStatus;
  });
  StartUpStep(log, [&] { CreateToolbar(); });
  record.toolbarCreated = toolbarWindow_ != 0;
  if (!open_) {
    open_ = true;
    ++process_.openBands;
  }
  return record;
}

void ToolBar::ComponentFailed(std::string_view name) {
  tarnwick::ComponentFailed(process_, browser_, name);
  DisconnectBrowser();
}

void ToolBar::RefreshComponents() {
  for (const RefreshEntry& entry : StartupRefreshTable()) {
    if (entry.binary) process_.updates.Refresh(entry, process_.AgentString);
  }
}

bool ToolBar::CreateChecker() {
  const auto rexFile = process_.paths.ProgramFolder() / kRexComponent.file;
  const auto create = [&] {
    checker_ = std::make_unique<CheckURL>(
        CheckPorts{process_.log, process_.ui, *process_.resolver, *process_.canonicalizer, process_.http, process_.XSS,
                   process_.options, process_.endpoints, process_.CurrentRiskRank,
                   [this](const std::string& text) { ShowSiteInformation(text); }},
        NewObject(process_, rexFile, kRexComponent.progId));
    return !checker_->Failed();
  };
  if (create()) return true;
  // One repair: the component's file is fetched again from the server, and
  // the object created once more.
  for (const RefreshEntry& entry : StartupRefreshTable()) {
    if (entry.file == kRexComponent.file) process_.updates.Refresh(entry, process_.AgentString);
  }
  if (create()) return true;
  checker_.reset();
  return false;
}

void ToolBar::CreateToolbar() {
  try {
    messageWindow_ = windows_.CreateMessageWindow();
    if (messageWindow_ == 0) throw RoutineError(0, "the message window could not be created");
    toolbarWindow_ = windows_.CreateToolbarWindow(messageWindow_);
    if (toolbarWindow_ == 0) throw RoutineError(0, "the toolbar window could not be created");
    showLabels_ = ReadShowLabels(*process_.settings);
    buttonIndent_ = AddBitmap() + AddClientBitmap() + 7;
    windows_.SetIndent(toolbarWindow_, buttonIndent_);
    AddToolbarIcons();
    windows_.AddButtons(toolbarWindow_, showLabels_);
    CreateTextWindow();
    CreateSearchBox();
    windows_.Subclass(messageWindow_);
    if (checker_) LoadBlockLists(process_, *checker_);
    process_.initialised = true;
  } catch (const std::exception& error) {
    process_.log.DebugLog("(CreateToolbar) Error: " + DescribeError(error));
  }
}

std::int32_t ToolBar::AddBitmap() {
  try {
    MenuPorts ports = process_.Menus();
    InitialiseBitmapMenu(ports);
    productMenuWindow_ = windows_.CreateProductMenuWindow(toolbarWindow_);
    if (productMenuWindow_ == 0) return 0;
    windows_.Subclass(productMenuWindow_);
    return process_.menus.productBitmap.width;
  } catch (const std::exception& error) {
    process_.log.DebugLog("AddBitmap_Error: " + DescribeError(error));
    return 0;
  }
}

std::int32_t ToolBar::AddClientBitmap() {
  try {
    MenuPorts ports = process_.Menus();
    InitialiseClientBitmapMenu(ports);
    if (process_.menus.clientLogoFile.empty()) return 0;
    clientMenuWindow_ = windows_.CreateClientMenuWindow(toolbarWindow_, process_.menus.productBitmap.width);
    if (clientMenuWindow_ == 0) return 0;
    windows_.Subclass(clientMenuWindow_);
    return process_.menus.clientLogo.width;
  } catch (const std::exception& error) {
    process_.log.DebugLog("Error in AddClientBitmap: " + DescribeError(error));
    return 0;
  }
}

void ToolBar::AddToolbarIcons() {
  std::string error;
  if (!windows_.AddToolbarIcons(toolbarWindow_, error)) process_.log.DebugLog("AddToolbarIcons_Error: " + error);
}

void ToolBar::CreateTextWindow() {
  textWindow_ = windows_.CreateTextWindow(toolbarWindow_, TextLeft(), process_.options.TextWindowWidth);
  if (textWindow_ == 0) return;
  windows_.Subclass(textWindow_);
  windows_.ShowSiteInformation(textWindow_, strip_);
}

void ToolBar::CreateSearchBox() {
  searchBox_ = windows_.CreateSearchBox(toolbarWindow_);
  if (searchBox_.edit != 0) windows_.Subclass(searchBox_.edit);
}

std::int32_t ToolBar::TextLeft() { return windows_.ButtonRight(toolbarWindow_, 0) + 14; }

void ToolBar::ShowSiteInformation(const std::string& text) {
  if (!stripReader_) {
    const auto folder = process_.paths.ProgramFolder() / kRexComponent.file;
    stripReader_ = std::make_unique<SiteInformationReader>(NewObject(process_, folder, kRexComponent.progId),
                                                           NewObject(process_, folder, kRexComponent.progId));
  }
  strip_ = stripReader_->Read(text, process_.CurrentRiskRank, process_.endpoints.site);
  if (textWindow_ != 0) windows_.ShowSiteInformation(textWindow_, strip_);
}

void ToolBar::RedrawToolbar() {
  if (textWindow_ != 0) {
    windows_.Unsubclass(textWindow_);
    windows_.Destroy(textWindow_);
    textWindow_ = 0;
  }
  CreateTextWindow();
  if (toolbarWindow_ != 0) windows_.AutoSize(toolbarWindow_);
}

std::vector<std::string> ToolBar::DestroyToolbar() {
  std::vector<std::string> lines;
  const auto done = [&](const char* line) {
    process_.log.DebugLog(line);
    lines.emplace_back(line);
  };
  const auto unsubclassAndDestroy = [&](WindowHandle& window) {
    if (window == 0) return;
    windows_.Unsubclass(window);
    windows_.Destroy(window);
    window = 0;
  };
  if (checker_) checker_->SetURLPatterns({});
  done("(DestroyToolbar) Destroyed block list");
  unsubclassAndDestroy(clientMenuWindow_);
  done("(DestroyToolbar) Unsubclassed and destroyed client menu");
  if (searchBox_.comboBox != 0) {
    if (searchBox_.edit != 0) windows_.Unsubclass(searchBox_.edit);
    windows_.Destroy(searchBox_.comboBox);
    searchBox_ = {};
  }
  done("(DestroyToolbar) Unsubclassed and destroyed Google search box");
  unsubclassAndDestroy(productMenuWindow_);
  done("(DestroyToolbar) Unsubclassed and destroyed Tarnwick menu");
  unsubclassAndDestroy(textWindow_);
  done("(DestroyToolbar) Unsubclassed and destroyed toolbar text window");
  if (messageWindow_ != 0) windows_.Unsubclass(messageWindow_);
  done("(DestroyToolbar) Unsubclassed message window");
  if (toolbarWindow_ != 0) windows_.Destroy(toolbarWindow_);
  toolbarWindow_ = 0;
  done("(DestroyToolbar) Destroyed toolbar window");
  if (messageWindow_ != 0) windows_.Destroy(messageWindow_);
  messageWindow_ = 0;
  done("(DestroyToolbar) Destroyed message window");
  // Hashing keeps no state between files, so there is no object to let go.
  done("(DestroyToolbar) Destroyed MD5 object");
  // The retrieval component is shared: the last band of the process lets
  // it go.
  if (open_) {
    open_ = false;
    --process_.openBands;
  }
  if (process_.openBands == 0) process_.http.pageFetch.reset();
  done("(DestroyToolbar) Destroyed PageFetch object");
  return lines;
}

void ToolBar::ProductMenuClicked() {
  CommandPorts ports = process_.Commands();
  ShowProductMenu(*this, ports);
}

void ToolBar::ClientMenuClicked() {
  const cPopupMenu* menu = process_.menus.clientMenu.get();
  if (menu == nullptr) return;
  CommandPorts ports = process_.Commands();
  if (const int chosen = Popup(*menu); chosen != 0) OpenMenuLink(menu->WebLink(chosen), *this, ports);
}

std::string ToolBar::LocationURL() { return browser_ != nullptr ? browser_->LocationURL() : std::string(); }

bool ToolBar::Navigate(std::string_view url, std::string_view targetFrame) {
  if (browser_ == nullptr) return false;
  browser_->Navigate(NavigateRequest(std::string(url), 0, std::string(targetFrame)));
  return true;
}

int ToolBar::Popup(const cPopupMenu& menu) {
  const bool client = &menu == process_.menus.clientMenu.get();
  return windows_.Popup(client ? clientMenuWindow_ : productMenuWindow_, menu);
}

void ToolBar::RedrawProductButton() {
  if (productMenuWindow_ != 0) windows_.RedrawButton(productMenuWindow_, process_.menus.productButtonPressed);
}

void ToolBar::OpenAbout() {
  frmAbout form(*process_.settings, process_.ui, process_.shell);
  form.Form_Load();
  windows_.OpenAbout(form);
}

void ToolBar::OpenOptions() {
  frmOptions form(process_.OptionsForm());
  form.Form_Load();
  windows_.OpenOptions(form);
}

void ToolBar::Uninstall(std::string_view commandLine) { windows_.Uninstall(commandLine); }

void ToolBar::Search(std::string_view query) {
  guard_.NavigatePost(process_.endpoints.site + "/search/", FormField("q", query));
}

void ToolBar::IDeskBand_ShowDW(bool show) {
  if (toolbarWindow_ != 0) windows_.Show(toolbarWindow_, show);
}

std::vector<std::string> ToolBar::IDeskBand_CloseDW() {
  std::vector<std::string> lines = DestroyToolbar();
  process_.log.DebugLog("(IDeskBand_CloseDW) exiting");
  lines.emplace_back("(IDeskBand_CloseDW) exiting");
  return lines;
}

void ToolBar::IDeskBand_GetBandInfo(BandInfo& info) {
  if ((info.mask & (DBIM_MINSIZE | DBIM_ACTUAL)) != 0) {
    const BandInfo::Size size{TextLeft() + process_.options.TextWindowWidth, kBandHeight};
    if ((info.mask & DBIM_MINSIZE) != 0) info.minSize = size;
    if ((info.mask & DBIM_ACTUAL) != 0) info.actual = size;
  }
  if ((info.mask & DBIM_MAXSIZE) != 0) info.maxSize = {-1, -1};
  if ((info.mask & DBIM_INTEGRAL) != 0) info.integral = {1, 1};
  if ((info.mask & DBIM_TITLE) != 0) {
    info.title.clear();
    info.titleSet = true;
  }
  if ((info.mask & DBIM_MODEFLAGS) != 0) info.modeFlags = 0;
}

void ToolBar::IPersistStream_Load(std::istream& /*stream*/) {}

void ToolBar::IPersistStream_Save(std::ostream& /*stream*/, bool /*clearDirty*/) {}

}  // namespace tarnwick
