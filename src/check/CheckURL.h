// CheckURL: the verdict for one navigation. In a fixed order: the scheme
// filter, the security zone, protocol rewriting, cross-site scripting, the
// local block patterns of localblock.dat, and the toolbar server's
// /check_url answer with its risk rank and patterns. When one of them
// objects the person is asked (unless Ctrl is held); a server that cannot be
// reached never blocks a page.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/Canonicalizer.h"
#include "check/PatternBudget.h"
#include "check/PatternList.h"
#include "check/Resolver.h"
#include "check/Rex.h"
#include "check/mdlDNS.h"
#include "check/mdlXSS.h"
#include "net/frmHTTP.h"
#include "settings/Endpoints.h"
#include "settings/ToolbarOptions.h"
#include "support/ComponentObject.h"
#include "support/Log.h"
#include "support/Text.h"
#include "ui/Ui.h"

namespace tarnwick {

struct CheckPorts {
  Log& log;
  Ui& ui;
  Resolver& resolver;
  Canonicalizer& canonicalizer;
  frmHTTP& http;
  mdlXSS& xss;
  const ToolbarOptions& options;
  const Endpoints& endpoints;
  // The risk rank of the page last checked, -1 when unknown; the site
  // information strip reads it.
  std::int16_t& CurrentRiskRank;
  // Hands the last response to the site information strip with a repaint.
  std::function<void(const std::string&)> showSiteInformation;
};

// Which step decided a check, for the command line and the tests.
enum class CheckStep { None, Scheme, Zone, Xss, Local, Remote, Rank };
const char* CheckStepName(CheckStep step);  // "scheme", ...; nullptr for None

struct CheckOutcome {
  bool checked = false;  // the URL went past the scheme and zone tests
  CheckStep step = CheckStep::None;
  std::string message;   // the dialog's text; empty when none was due
  int answer = 0;        // the person's answer to it (vbYes, vbNo); 0 when none was shown
  bool blocked = false;  // the navigation was cancelled
};

// The server's X-Phishing-Patterns value: Base64 of a TAB-separated list.
// Nothing decoded is no pattern at all (an empty entry is kept, and skipped
// when tried); the list is cut to its first 1,000 patterns and 64 KiB, with
// a debug-log line saying so.
std::vector<std::string> ServerPatterns(std::string_view header, Log& log);

class CheckURL {
 public:
  // `rexObject` is the Tarnwick.Rex object the band created; null when its
  // creation failed.
  CheckURL(CheckPorts ports, std::shared_ptr<ComponentObject> rexObject);

  bool Failed() const { return rexObject_ == nullptr; }
  // Also compiles the patterns in the regex object, once for the list.
  void SetURLPatterns(std::string_view text);
  const std::string& GetLastResponse() const { return lastResponse_; }
  void SetLastResponse(std::string text) { lastResponse_ = std::move(text); }

  // The check of one navigation. `Cancel` becomes true when the navigation is
  // to be stopped; where the check does not decide it keeps its value.
  void Check(std::string URL, const std::vector<std::uint8_t>& postData, bool& Cancel);
  bool IsInternetZone(const std::string& URL);
  // The scheme filter: whether the URL is one a check never looks at
  // (javascript:, mailto: and the like; case-sensitive).
  static bool HasUncheckedScheme(std::string_view URL, Rex& rex);

  const CheckOutcome& LastOutcome() const { return outcome_; }

 private:
  void URL_Blocked_Locally(const std::string& URL, bool& blocked);
  void URL_Blocked_Remotely(const std::string& URL, bool& blocked);
  void NoInformation(std::string text);
  void Decide(const std::string& URL, bool reportHint, bool& Cancel);

  CheckPorts ports_;
  std::shared_ptr<ComponentObject> rexObject_;
  mdlDNS dns_;
  PatternList urlPatterns_{"localblock", "i"};
  // The time left for patterns during a check.
  std::optional<PatternBudget> budget_;
  std::string lastResponse_;
  CheckOutcome outcome_;
};

}  // namespace tarnwick
