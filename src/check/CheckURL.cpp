#include "check/CheckURL.h"

#include <algorithm>
#include <array>

#include "ProductInfo.h"
#include "net/PageFetch.h"
#include "settings/SettingValue.h"
#include "support/Base64.h"
#include "support/PatternSetAnswer.h"
#include "support/RoutineError.h"
#include "support/Version.h"

namespace tarnwick {
namespace {

constexpr std::size_t kMaxResponseChars = 16384;

std::string BlockedBecause(const std::string& reason) {
  return "The page you are trying to visit has been blocked by the " + std::string(product::kFileDescription) + reason;
}

// The schemes a check never looks at. The filter's pattern is made from
// them; a URL that begins with none of them followed by ':' cannot match it
// and is not given to the component (most URLs are http and https).
constexpr std::array<std::string_view, 12> kUncheckedSchemes = {
    "javascript", "jscript", "vbscript", "telnet", "about", "msc", "htc", "hcp", "callto", "ymsgr", "res", "mailto"};

bool MayHaveUncheckedScheme(std::string_view URL) {
  // No scheme holds a ':': the one a URL begins with ends at its first.
  const auto colon = URL.find(':');
  if (colon == std::string_view::npos) return false;
  const std::string_view scheme = URL.substr(0, colon);
  return std::find(kUncheckedSchemes.begin(), kUncheckedSchemes.end(), scheme) != kUncheckedSchemes.end();
}

const std::string& UncheckedSchemePattern() {
  static const std::string pattern = [] {
    std::string alternatives;
    for (const auto scheme : kUncheckedSchemes) alternatives += (alternatives.empty() ? "" : "|") + std::string(scheme);
    return "^(" + alternatives + "):";
  }();
  return pattern;
}

// What a sane server sends, with room to spare (the reference server sends
// at most 100 patterns in 48 KiB): each pattern is read for its atoms and
// may be compiled during the check, and a hostile answer must not make that
// cost what a whole block list does.
constexpr std::size_t kMaxServerPatterns = 1000;
constexpr std::size_t kMaxServerPatternBytes = 64 * 1024;

}  // namespace

std::vector<std::string> ServerPatterns(std::string_view header, Log& log) {
  const std::string text = header.empty() ? std::string() : DecodeB64(header);
  if (text.empty()) return {};
  std::vector<std::string> patterns = Split(text, "\t");
  std::size_t kept = 0;
  for (std::size_t bytes = 0; kept < patterns.size() && kept < kMaxServerPatterns; ++kept) {
    bytes += patterns[kept].size() + 1;
    if (bytes > kMaxServerPatternBytes + 1) break;
  }
  if (kept < patterns.size()) {
    log.DebugLog("(URL_Blocked_Remotely) Using the first " + std::to_string(kept) + " of " +
                 std::to_string(patterns.size()) + " patterns");
    patterns.resize(kept);
  }
  return patterns;
}

const char* CheckStepName(CheckStep step) {
  switch (step) {
    case CheckStep::Scheme: return "scheme";
    case CheckStep::Zone: return "zone";
    case CheckStep::Xss: return "xss";
    case CheckStep::Local: return "local";
    case CheckStep::Remote: return "remote";
    case CheckStep::Rank: return "rank";
    case CheckStep::None: break;
  }
  return nullptr;
}

CheckURL::CheckURL(CheckPorts ports, std::shared_ptr<ComponentObject> rexObject)
    : ports_(std::move(ports)), rexObject_(std::move(rexObject)), dns_(ports_.resolver, ports_.log) {}

void CheckURL::SetURLPatterns(std::string_view text) {
  urlPatterns_.Set(Split(text, "\r\n"));
  if (Failed()) return;
  Rex rex(*rexObject_);
  urlPatterns_.Prepare(rex);
}

bool CheckURL::HasUncheckedScheme(std::string_view URL, Rex& rex) {
  return MayHaveUncheckedScheme(URL) && rex.Test(URL, UncheckedSchemePattern());
}

bool CheckURL::IsInternetZone(const std::string& URL) {
  try {
    if (!ports_.http.pageFetch) throw RoutineError(91, "Object variable or With block variable not set");
    const std::int32_t zone = PageFetch(*ports_.http.pageFetch).MapZone(URL);
    if (ports_.log.DebugEnabled()) ports_.log.DebugLog("(IsInternetZone) got " + std::to_string(zone));
    return zone >= 3;
  } catch (const RoutineError&) {
    return !Failed() && Rex(*rexObject_).Test(URL, R"(^(?:https?|ftp):\/\/)");
  }
}

void CheckURL::Check(std::string URL, const std::vector<std::uint8_t>& postData, bool& Cancel) {
  outcome_ = {};
  if (Failed()) return;
  budget_.emplace(ports_.log, ports_.options.PatternTimeLimit);
  Log& log = ports_.log;
  Rex rex(*rexObject_);
  try {
    if (HasUncheckedScheme(URL, rex)) {
      Cancel = false;
      log.DebugLog("(CheckURL) Not Checking URL: " + URL);
      outcome_.step = CheckStep::Scheme;
      return;
    }
    if (log.DebugEnabled()) log.DebugLog("(CheckURL) Checking URL: " + URL);
    if (!IsInternetZone(URL)) {
      ports_.CurrentRiskRank = -1;
      std::int32_t zone = -1;
      try {
        if (ports_.http.pageFetch) zone = PageFetch(*ports_.http.pageFetch).MapZone(URL);
      } catch (const RoutineError&) {
        zone = -1;
      }
      lastResponse_ = zone == 1   ? "This site is in your Local Intranet zone."
                      : zone == 2 ? "This site is in your Trusted Sites zone."
                                  : "No information available.";
      outcome_.step = CheckStep::Zone;
      if (ports_.showSiteInformation) ports_.showSiteInformation(lastResponse_);
      return;
    }
    outcome_.checked = true;
    if (!rex.Test(URL, R"(^(?:https?|ftp):\/\/)")) {
      log.DebugLog("(CheckURL) Changing the protocol of " + URL);
      URL = rex.Replace(URL, R"(^[\w\d_-]{2,20}://)", "http://", "i");
    }

    bool reportHint = true;
    std::string postText(postData.begin(), postData.end());
    const bool postXss = !postText.empty() && ports_.xss.Contains_XSS(postText, rex, *budget_);
    const bool urlXss = ports_.xss.Contains_XSS(URL, rex, *budget_);
    if (postXss || urlXss) {
      outcome_.message =
          "The page you are trying to visit is using Cross-Site Scripting (XSS).\r\n"
          "This is a technique commonly used in phishing attacks.";
      outcome_.step = CheckStep::Xss;
      reportHint = false;
    } else {
      bool blocked = false;
      URL_Blocked_Locally(URL, blocked);
      if (blocked) {
        outcome_.message =
            BlockedBecause(" because it contains suspicious characters, indicating that it may be a malicious site.");
        outcome_.step = CheckStep::Local;
      } else {
        URL_Blocked_Remotely(URL, blocked);
        if (blocked) {
          outcome_.message = BlockedBecause(" because it is believed to be part of a fraudulent phishing attack.");
          outcome_.step = CheckStep::Remote;
        } else {
          const std::int32_t limit = ports_.options.BlockAtRiskRank;
          const std::int16_t rank = ports_.CurrentRiskRank;
          if (limit < rank && limit < 10 && rank >= 0) {
            outcome_.message =
                BlockedBecause(" because its Risk Rating exceeds the maximum level set in your options.");
            outcome_.step = CheckStep::Rank;
            reportHint = false;
          }
        }
      }
    }
    Decide(URL, reportHint, Cancel);
    if (ports_.showSiteInformation) ports_.showSiteInformation(lastResponse_);
  } catch (const std::exception& error) {
    log.WriteLog("(CheckURL) Error: " + DescribeError(error));
  }
}

void CheckURL::Decide(const std::string& URL, bool reportHint, bool& Cancel) {
  if (outcome_.message.empty() || ports_.ui.CtrlKeyDown()) {
    outcome_.blocked = Cancel;
    return;
  }
  std::string& message = outcome_.message;
  message += "\r\n\r\nURL: " + URL;
  if (reportHint) {
    message +=
        "\r\n\r\nIf this is a mistake you can report it by choosing \"Report Incorrectly Blocked URL\" from the "
        "\"Tarnwick\" menu.";
  }
  message += "\r\n\r\nAre you sure you want to visit the page?";
  const int answer = ports_.ui.MessageBox(message, "Page Blocked", vbYesNo | vbCritical | vbDefaultButton2);
  Cancel = answer == vbNo;
  outcome_.answer = answer;
  outcome_.blocked = Cancel;
}

void CheckURL::URL_Blocked_Locally(const std::string& URL, bool& blocked) {
  if (!urlPatterns_.IsSet()) return;
  Rex rex(*rexObject_);
  const std::int32_t first = urlPatterns_.FirstMatch(rex, URL, *budget_);
  if (first >= 0) {
    blocked = true;
    ports_.log.WriteLog("URL (" + URL + ") blocked by local pattern (" +
                        urlPatterns_.patterns()[static_cast<std::size_t>(first)] + ")");
  } else if (first == kSetOutOfTime) {
    budget_->RanOut("(URL_Blocked_Locally)");
  }
  if (ports_.log.DebugEnabled())
    ports_.log.DebugLog(std::string("(URL_Blocked_Locally) returning ") + (blocked ? "True" : "False"));
}

void CheckURL::NoInformation(std::string text) {
  lastResponse_ = std::move(text);
  ports_.CurrentRiskRank = -1;
}

void CheckURL::URL_Blocked_Remotely(const std::string& URL, bool& blocked) {
  Log& log = ports_.log;
  Rex rex(*rexObject_);
  std::string canonical;
  std::string error;
  if (!ports_.canonicalizer.Canonicalize(URL, canonical, error)) {
    log.WriteLog("Could not canonicalise URL (" + canonical + "): " + error);
    canonical.clear();
  }
  // Scheme and host part only: a query or fragment straight after the host
  // ("http://8.8.8.8?x=1") is no part of the site.
  const auto site = rex.Match(canonical, R"(^((?:https?|ftp):\/\/[^\/?#\\]+))", "i");
  if (!site || site->empty()) {
    log.DebugLog("URL not supported: " + canonical);
    NoInformation("No information available.");
    return;
  }
  std::string request = ports_.endpoints.server + "/check_url/" + (*site)[0];
  std::string host = dns_.URL2Hostname(canonical, rex);
  if (host.empty()) {
    log.DebugLog("(URL_Blocked_Remotely) Bad URL: " + canonical);
    NoInformation("No information available.");
    return;
  }
  const auto address = dns_.GetIPAddressBytes(host);
  if (address && mdlDNS::IsPrivateAddress(address)) {
    log.DebugLog("(URL_Blocked_Remotely) Not checking private/special-use address (" + host + ")");
    NoInformation("No information available - local or private site.");
    return;
  }
  if (address) {
    const double number = (*address)[0] * 16777216.0 + (*address)[1] * 65536.0 + (*address)[2] * 256.0 + (*address)[3];
    if (number != 0) request += "/" + std::to_string(static_cast<std::uint64_t>(number));
  }

  log.DebugLog("(URL_Blocked_Remotely) Getting " + request);
  frmHTTP& http = ports_.http;
  http.Start_Download(false, "GET", request, AgentString(), "", "", "");

  try {
    ports_.CurrentRiskRank = ToInteger(http.GetHeader("X-Risk-Rank"));
  } catch (const ConversionError&) {
    ports_.CurrentRiskRank = -1;
  }
  PatternList patterns("remote", "");
  patterns.Set(ServerPatterns(http.GetHeader("X-Phishing-Patterns"), log));
  if (http.HTTPStatus == 403) {
    lastResponse_ = http.ResponseText.substr(0, kMaxResponseChars);
    blocked = true;
  } else if (http.HTTPStatus == 200) {
    lastResponse_ = http.ResponseText.substr(0, kMaxResponseChars);
  } else {
    log.DebugLog("Invalid or missing reponse from toolbar server (" + std::to_string(http.HTTPStatus) +
                 "): " + http.ResponseText);
    ports_.CurrentRiskRank = -1;
    lastResponse_ =
        "The toolbar server could not be contacted (" + http.ResponseText.substr(0, http.ResponseText.find('(')) + ")";
  }
  const std::int32_t first = patterns.FirstMatch(rex, URL, *budget_);
  const auto& tried = patterns.patterns();
  for (std::size_t i = 0; i < tried.size(); ++i) {
    if (tried[i].empty()) continue;
    log.DebugLog("(URL_Blocked_Remotely) Trying pattern " + std::to_string(i) + ": " + tried[i]);
    if (static_cast<std::int32_t>(i) == first) {
      blocked = true;
      lastResponse_ = "(Blocked) " + lastResponse_;
      break;
    }
  }
  if (first == kSetOutOfTime) budget_->RanOut("(URL_Blocked_Remotely)");
  log.DebugLog(std::string("(URL_Blocked_Remotely) returning ") + (blocked ? "True" : "False"));
}

}  // namespace tarnwick
