#include "check/CheckURL.h"

#include "ProductInfo.h"
#include "net/PageFetch.h"
#include "settings/SettingValue.h"
#include "support/RoutineError.h"
#include "support/Version.h"

namespace tarnwick {
namespace {

constexpr std::size_t kMaxResponseChars = 16384;

std::string BlockedBecause(const std::string& reason) {
  return "The page you are trying to visit has been blocked by the " + std::string(product::kFileDescription) + reason;
}

// The standard Base64 alphabet with "=" padding; characters outside it are
// skipped, a partial final group yields what it holds.
std::string DecodeB64(std::string_view text) {
  static constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  std::uint32_t buffer = 0;
  int bits = 0;
  for (char c : text) {
    if (c == '=') break;
    const auto value = kAlphabet.find(c);
    if (value == std::string_view::npos) continue;
    buffer = (buffer << 6) | static_cast<std::uint32_t>(value);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out += static_cast<char>((buffer >> bits) & 0xFF);
    }
  }
  return out;
}

}  // namespace

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

bool CheckURL::IsInternetZone(const std::string& URL) {
  try {
    if (!ports_.http.pageFetch) throw RoutineError(91, "Object variable or With block variable not set");
    const std::int32_t zone = PageFetch(*ports_.http.pageFetch).MapZone(URL);
    ports_.log.DebugLog("(IsInternetZone) got " + std::to_string(zone));
    return zone >= 3;
  } catch (const RoutineError&) {
    return !Failed() && Rex(*rexObject_).Test(URL, R"(^(?:https?|ftp):\/\/)");
  }
}

void CheckURL::Check(std::string URL, const std::vector<std::uint8_t>& postData, bool& Cancel) {
  outcome_ = {};
  if (Failed()) return;
  Log& log = ports_.log;
  Rex rex(*rexObject_);
  try {
    if (rex.Test(URL, "^(javascript|jscript|vbscript|telnet|about|msc|htc|hcp|callto|ymsgr|res|mailto):")) {
      Cancel = false;
      log.DebugLog("(CheckURL) Not Checking URL: " + URL);
      outcome_.step = CheckStep::Scheme;
      return;
    }
    log.DebugLog("(CheckURL) Checking URL: " + URL);
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
    const bool postXss = !postText.empty() && ports_.xss.Contains_XSS(postText, rex);
    const bool urlXss = ports_.xss.Contains_XSS(URL, rex);
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
  if (!urlPatterns_) return;
  Rex rex(*rexObject_);
  for (const auto& pattern : *urlPatterns_) {
    if (!pattern.empty() && rex.Test(URL, pattern, "i")) {
      blocked = true;
      ports_.log.WriteLog("URL (" + URL + ") blocked by local pattern (" + pattern + ")");
      break;
    }
  }
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
    canonical.clear();
    log.WriteLog("Could not canonicalise URL (" + canonical + "): " + error);
  }
  const auto site = rex.Match(canonical, R"(^((?:https?|ftp):\/\/[^\/]+))", "i");
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
  const std::string encoded = http.GetHeader("X-Phishing-Patterns");
  const std::vector<std::string> patterns =
      encoded.empty() ? std::vector<std::string>{} : Split(DecodeB64(encoded), "\t");
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
  for (std::size_t i = 0; i < patterns.size(); ++i) {
    log.DebugLog("(URL_Blocked_Remotely) Trying pattern " + std::to_string(i) + ": " + patterns[i]);
    if (rex.Test(URL, patterns[i])) {
      blocked = true;
      lastResponse_ = "(Blocked) " + lastResponse_;
      break;
    }
  }
  log.DebugLog(std::string("(URL_Blocked_Remotely) returning ") + (blocked ? "True" : "False"));
}

}  // namespace tarnwick
