// The check engine over the real regular-expression component (loaded from
// its library file), the retrieval engine, and a loopback server playing the
// toolbar server. Host names resolve from a table.
#pragma once

#include <fstream>
#include <map>

#include "LoopbackServer.h"
#include "PageFetchObject.h"
#include "ZoneMap.h"
#include "check/CheckURL.h"
#include "common/TableResolver.h"
#include "components/ComponentTest.h"
#include "support/Files.h"

namespace tarnwick::testing {

// What the toolbar server answers to /check_url.
struct Verdict {
  int status = 200;
  std::string text = "Site information";
  std::string riskRank = "0";
  std::string patterns;  // Base64 of TAB-separated patterns
};

class CheckFixture : public ComponentTest {
 protected:
  CheckFixture() {
    process.options.Debug = true;
    process.options.BlockXSS = true;
    process.options.BlockAtRiskRank = 10;
    process.options.ServerTimeout = 5;
    process.endpoints.server = server.Base();
    std::ofstream(process.paths.ProgramFolder() / "pagefetch.dll") << "component";
    process.http.Form_Load();
    process.http.pageFetch = std::make_shared<pagefetch::PageFetchObject>(
        [this](std::string_view url) { return pagefetch::MapZone(url, zones); });
    process.XSS.SetXSSPatterns("<\\s*script\r\n\r\n\\bon(?:error|load)\\s*=\r\n\\balert\\s*\\(");
    checker.SetURLPatterns("^https?://[^/?#]*@\r\n\r\n^https?://(?:\\d{1,3}\\.){3}\\d{1,3}/.*login");
  }

  Reply Answer(const Request& request) {
    if (!request.target.starts_with("/check_url/")) return Reply::Http(404, "Not Found", "");
    return Reply::Http(verdict.status, "Status", verdict.text,
                       {"X-Risk-Rank: " + verdict.riskRank, "X-Phishing-Patterns: " + verdict.patterns});
  }

  // Checks `url` as a navigation would; the answer to the dialog comes from
  // `answer` when one is shown.
  bool Navigate(const std::string& url, int answer = vbNo, const std::string& postData = {}) {
    t.ui.answers = {answer};
    bool cancel = false;
    checker.Check(url, std::vector<std::uint8_t>(postData.begin(), postData.end()), cancel);
    return cancel;
  }
  std::string LastMessage() { return t.ui.shown.empty() ? std::string() : t.ui.shown.back().text; }
  std::vector<std::string> Targets() {
    std::vector<std::string> targets;
    for (const auto& request : server.Requests()) targets.push_back(request.target);
    return targets;
  }
  bool Logged(const std::string& text) {
    return ReadFile(process.log, process.log.LogFilePath()).find(text) != std::string::npos;
  }

  Verdict verdict;
  pagefetch::ZoneLists zones;
  LoopbackServer server{[this](const Request& request) { return Answer(request); }};
  TableResolver resolver;
  std::unique_ptr<Canonicalizer> canonicalizer = MakePlatformCanonicalizer();
  std::vector<std::string> shownInformation;
  std::shared_ptr<ComponentObject> rexObject = Create(Install(kBuiltRex), kRexProgId);
  CheckURL checker{
      {process.log, process.ui, resolver, *canonicalizer, process.http, process.XSS, process.options, process.endpoints,
       process.CurrentRiskRank, [this](const std::string& text) { shownInformation.push_back(text); }},
      rexObject};
};

}  // namespace tarnwick::testing
