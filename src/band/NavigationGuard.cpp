#include "band/NavigationGuard.h"

#include "band/ComponentFailed.h"
#include "band/ToolBar.h"
#include "net/PageFetch.h"
#include "settings/mdlRegistry.h"
#include "support/RoutineError.h"

namespace tarnwick {
namespace {

constexpr std::int32_t kTrustedSitesZone = 2;

// "(Routine) Error: number - description", as the guard's traps log them.
std::string ErrorLine(std::string_view routine, const std::exception& error) {
  const auto* own = dynamic_cast<const RoutineError*>(&error);
  return "(" + std::string(routine) + ") Error: " + std::to_string(own != nullptr ? own->number() : 0) + " - " +
         error.what();
}

}  // namespace

const char* NotCheckedName(NotChecked reason) {
  switch (reason) {
    case NotChecked::Frame: return "frame";
    case NotChecked::SamePage: return "same page";
    case NotChecked::Offline: return "offline";
    case NotChecked::Unchanged: return "unchanged";
    case NotChecked::NotStarted: return "not started";
    case NotChecked::No: break;
  }
  return nullptr;
}

const char* PopupDecisionName(PopupDecision decision) {
  switch (decision) {
    case PopupDecision::Allowed: return "allowed: pop-up blocking is off";
    case PopupDecision::AllowedCtrl: return "allowed: Ctrl held";
    case PopupDecision::AllowedTrusted: return "allowed: Trusted Sites zone";
    case PopupDecision::AllowedUserEvent: return "allowed: opened by the person";
    case PopupDecision::AllowedActive: return "allowed: an element had the focus";
    case PopupDecision::RefusedNoDocument: return "refused: no document";
    case PopupDecision::RefusedScript: return "refused: opened by a script";
    case PopupDecision::NotGuarded: return "allowed: not guarded";
  }
  return "";
}

bool PopupAllowed(PopupDecision decision) {
  return decision != PopupDecision::RefusedNoDocument && decision != PopupDecision::RefusedScript;
}

NavigationRecord NavigationGuard::Judge(const std::string& URL, const std::vector<std::uint8_t>& postData,
                                        bool& Cancel) {
  NavigationRecord record;
  record.url = URL;
  CheckURL* checker = band_.checker();
  if (checker == nullptr) {
    record.notChecked = NotChecked::NotStarted;
  } else {
    checker->Check(URL, postData, Cancel);
    record.outcome = checker->LastOutcome();
    record.lastResponse = checker->GetLastResponse();
  }
  record.cancel = Cancel;
  record.riskRank = band_.process().CurrentRiskRank;
  return record;
}

NavigationRecord NavigationGuard::m_oIE_BeforeNavigate2(bool topLevel, const std::string& URL, int /*Flags*/,
                                                        const std::string& /*TargetFrameName*/,
                                                        const std::vector<std::uint8_t>& PostData,
                                                        const std::string& /*Headers*/, bool& Cancel) {
  NavigationRecord record;
  record.url = URL;
  try {
    Browser* browser = band_.browser();
    if (browser == nullptr) {
      record.notChecked = NotChecked::NotStarted;
    } else if (!topLevel) {
      record.notChecked = NotChecked::Frame;
    } else if (const std::string page = StripHashFromURL(URL); page == lastURL_) {
      record.notChecked = NotChecked::SamePage;
    } else {
      lastURL_ = page;
      if (browser->Offline()) {
        record.notChecked = NotChecked::Offline;
      } else {
        record = Judge(URL, PostData, Cancel);
      }
    }
  } catch (const std::exception& error) {
    band_.process().log.DebugLog(ErrorLine("m_oIE_BeforeNavigate2", error));
  }
  record.cancel = Cancel;
  return record;
}

NavigationRecord NavigationGuard::m_oIE_NavigateComplete2(bool topLevel, const std::string& URL) {
  NavigationRecord record;
  record.url = URL;
  try {
    Browser* browser = band_.browser();
    if (browser == nullptr || !topLevel) {
      record.notChecked = browser == nullptr ? NotChecked::NotStarted : NotChecked::Frame;
      return record;
    }
    if (band_.process().options.ForceResizable) browser->SetResizable(true);
    bool refused = false;
    if (browser->Offline()) {
      record.notChecked = NotChecked::Offline;
    } else if (StripHashFromURL(URL) == lastURL_) {
      record.notChecked = NotChecked::Unchanged;
    } else {
      band_.process().log.DebugLog("(NavigateComplete2) performing additional checks");
      record = Judge(URL, {}, refused);
    }
    Repaint();
    if (refused) {
      browser->Navigate(NavigateRequest(std::string(kBlockPageAddress), navNoHistory));
      record.blockPage = true;
    }
  } catch (const std::exception& error) {
    band_.process().log.DebugLog(ErrorLine("m_oIE_NavigateComplete2", error));
  }
  return record;
}

void NavigationGuard::m_oIE_DocumentComplete(bool topLevel, const std::string& URL) {
  if (!topLevel || band_.browser() == nullptr) return;
  if (URL.starts_with(band_.process().endpoints.server + "/report_url?url=")) DoReportAutoFill();
}

PopupRecord NavigationGuard::m_oIE_NewWindow2(bool& Cancel) {
  PopupRecord record;
  ToolbarProcess& process = band_.process();
  try {
    Browser* browser = band_.browser();
    if (browser == nullptr) return record;
    if (!process.options.BlockPopups || process.ui.CtrlKeyDown()) {
      record.decision = process.options.BlockPopups ? PopupDecision::AllowedCtrl : PopupDecision::Allowed;
      Repaint();
    } else if (Document* document = browser->CurrentDocument(); document == nullptr) {
      record.decision = PopupDecision::RefusedNoDocument;
    } else if (!process.http.pageFetch) {
      throw RoutineError(91, "Object variable or With block variable not set");
    } else if (PageFetch(*process.http.pageFetch).MapZone(browser->LocationURL()) == kTrustedSitesZone) {
      record.decision = PopupDecision::AllowedTrusted;
      Repaint();
    } else if (document->CurrentEventType()) {
      // The event's type was once compared with "MenuExtUnknown"; an event of
      // any type means the person asked for the window.
      record.decision = PopupDecision::AllowedUserEvent;
    } else {
      record.decision = document->HasActiveElement() ? PopupDecision::AllowedActive : PopupDecision::RefusedScript;
    }
    if (!PopupAllowed(record.decision)) {
      Cancel = true;
      if (CheckURL* checker = band_.checker()) {
        checker->SetLastResponse("(Popups blocked) " + checker->GetLastResponse());
      }
      Repaint();
    }
  } catch (const std::exception& error) {
    process.log.DebugLog(ErrorLine("m_oIE_NewWindow2", error));
  }
  if (CheckURL* checker = band_.checker()) record.lastResponse = checker->GetLastResponse();
  return record;
}

void NavigationGuard::KeepBar(BrowserBar bar, bool shown, bool force) {
  try {
    Browser* browser = band_.browser();
    if (browser == nullptr) return;
    if (!shown && force) {
      browser->ShowBar(bar, true);
      browser->SetHeight(browser->Height() + band_.process().options.BarHeight);
    }
    if (bar == BrowserBar::Menu) browser->ShowBar(BrowserBar::Address, true);
  } catch (const std::exception& error) {
    band_.process().log.DebugLog(ErrorLine("KeepBar", error));
  }
}

void NavigationGuard::m_oIE_OnMenuBar(bool MenuBar) {
  KeepBar(BrowserBar::Menu, MenuBar, band_.process().options.ForceMenuBar);
}

void NavigationGuard::m_oIE_OnStatusBar(bool StatusBar) {
  KeepBar(BrowserBar::Status, StatusBar, band_.process().options.ForceStatusBar);
}

void NavigationGuard::m_oIE_OnToolBar(bool ToolBar) {
  KeepBar(BrowserBar::Tool, ToolBar, band_.process().options.ForceToolbar);
}

std::string NavigationGuard::StripHashFromURL(const std::string& URL) {
  std::string page = URL.substr(0, URL.find('#'));
  band_.process().log.DebugLog("(StripHashFromURL) Returning " + page);
  return page;
}

void NavigationGuard::DoReportAutoFill() {
  ToolbarProcess& process = band_.process();
  if (!process.options.AutoFillReportForm) return;
  try {
    Browser* browser = band_.browser();
    Document* document = browser != nullptr ? browser->CurrentDocument() : nullptr;
    if (document == nullptr || !document->HasForm(kReportFormName)) {
      throw RoutineError(91, "Object variable or With block variable not set");
    }
    Log& log = process.log;
    const auto fill = [&](std::string_view field, const std::string& value, std::string_view line) {
      if (!document->SetFieldValue(kReportFormName, field, value)) {
        log.DebugLog("(DoReportAutoFill) Field is nothing");
        return;
      }
      log.DebugLog(std::string(line));
    };
    fill("name", process.options.AutoFillName, "(DoReportAutoFill) Auto filling name field");
    fill("email", process.options.AutoFillEmail, "(DoReportAutoFill) Auto filling email field");
    if (document->FocusField(kReportFormName, "reason")) {
      log.DebugLog("(DoReportAutoFill) Focusing on reason field");
    } else {
      log.DebugLog("(DoReportAutoFill) Field is nothing");
    }
    document->WatchSubmit(kReportFormName);
  } catch (const std::exception& error) {
    process.log.DebugLog(ErrorLine("DoReportAutoFill", error));
  }
}

void NavigationGuard::oForm_onsubmit() {
  ToolbarProcess& process = band_.process();
  if (!process.options.AutoFillReportForm) return;
  try {
    Browser* browser = band_.browser();
    Document* document = browser != nullptr ? browser->CurrentDocument() : nullptr;
    const auto name = document != nullptr ? document->FieldValue(kReportFormName, "name") : std::nullopt;
    const auto email = document != nullptr ? document->FieldValue(kReportFormName, "email") : std::nullopt;
    if (!name || !email) throw RoutineError(91, "Object variable or With block variable not set");
    process.options.AutoFillName = *name;
    process.options.AutoFillEmail = *email;
    mdlRegistry::SaveSetting(*process.settings, mdlRegistry::kSettingsKey, "AutoFillName", *name, kRegSz);
    mdlRegistry::SaveSetting(*process.settings, mdlRegistry::kSettingsKey, "AutoFillEmail", *email, kRegSz);
  } catch (const std::exception& error) {
    process.log.DebugLog(ErrorLine("oForm_onsubmit", error));
  }
}

void NavigationGuard::NavigatePost(const std::string& URL, const std::string& formData) {
  if (Browser* browser = band_.browser()) {
    browser->Navigate(NavigateRequest(URL, 0, "_top", std::vector<std::uint8_t>(formData.begin(), formData.end()),
                                      "Content-Type: application/x-www-form-urlencoded\r\n"));
  }
}

void NavigationGuard::ReportCorruptComponent(std::string_view name) {
  ComponentFailed(band_.process(), band_.browser(), name);
}

void NavigationGuard::Repaint() {
  if (CheckURL* checker = band_.checker()) band_.ShowSiteInformation(checker->GetLastResponse());
}

}  // namespace tarnwick
