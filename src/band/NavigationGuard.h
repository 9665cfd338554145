// The navigation guard: the band's handlers of its browser's events. Every
// top-level navigation is checked before it starts, and again when it ends
// at another address (a redirect), where a refused page is replaced by the
// block page; pop-ups a script opens by itself are refused; the toolbar
// server's report form is filled in; the browser's bars are kept on show.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "band/Browser.h"
#include "band/NavigationRecord.h"

namespace tarnwick {

class ToolBar;

inline constexpr std::string_view kBlockPageAddress = "about:PhishingSite";
inline constexpr std::string_view kReportFormName = "frmReportURL";

class NavigationGuard {
 public:
  explicit NavigationGuard(ToolBar& band) : band_(band) {}

  // `topLevel`: the event comes from the band's own browser window, not from
  // one of its frames; frames are never checked.
  NavigationRecord m_oIE_BeforeNavigate2(bool topLevel, const std::string& URL, int Flags,
                                         const std::string& TargetFrameName, const std::vector<std::uint8_t>& PostData,
                                         const std::string& Headers, bool& Cancel);
  void m_oIE_DocumentComplete(bool topLevel, const std::string& URL);
  NavigationRecord m_oIE_NavigateComplete2(bool topLevel, const std::string& URL);
  PopupRecord m_oIE_NewWindow2(bool& Cancel);
  void m_oIE_OnMenuBar(bool MenuBar);
  void m_oIE_OnStatusBar(bool StatusBar);
  void m_oIE_OnToolBar(bool ToolBar);
  // The report form found by DoReportAutoFill was submitted.
  void oForm_onsubmit();

  std::string StripHashFromURL(const std::string& URL);
  void DoReportAutoFill();
  void NavigatePost(const std::string& URL, const std::string& formData);
  void ReportCorruptComponent(std::string_view name);

  // The check of one URL, as a navigation: what every handler above and the
  // command line use, so that all of them report a check the same way.
  NavigationRecord Judge(const std::string& URL, const std::vector<std::uint8_t>& postData, bool& Cancel);

  const std::string& lastURL() const { return lastURL_; }

 private:
  void KeepBar(BrowserBar bar, bool shown, bool force);
  void Repaint();

  ToolBar& band_;
  std::string lastURL_;
};

}  // namespace tarnwick
