// tarnwick check: judges each URL exactly as a navigation would be judged.
#include <fstream>
#include <iostream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "BandHost.h"
#include "support/TerminalText.h"
#include "support/Text.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kUsage =
    "usage: tarnwick check [--server URL] [--json] [--answer yes|no] [--ctrl] [--post-data FILE] [URL...]\n";

void PrintRecord(const NavigationRecord& record, bool json) {
  const CheckOutcome& outcome = record.outcome;
  const char* step = CheckStepName(outcome.step);
  if (json) {
    using Json = nlohmann::ordered_json;
    const Json line = {
        {"url", AnsiToUtf8(record.url)},
        {"checked", outcome.checked},
        {"blocked", record.cancel},
        {"step", step != nullptr ? Json(step) : Json(nullptr)},
        {"risk_rank", record.riskRank},
        {"last_response", AnsiToUtf8(record.lastResponse)},
        {"message", outcome.message.empty() ? Json(nullptr) : Json(AnsiToUtf8(outcome.message))},
    };
    std::cout << line.dump() << '\n';
    return;
  }
  // The URL and above all the server's text may hold anything: escaped.
  std::cout << TerminalText(record.url) << "\n  " << (record.cancel ? "blocked" : "allowed") << ", "
            << (outcome.checked ? "checked" : "not checked") << ", step: " << (step != nullptr ? step : "none")
            << ", risk rank: " << record.riskRank << "\n  response: " << TerminalText(record.lastResponse) << '\n';
}

}  // namespace

int RunCheck(std::vector<std::string> args) {
  const std::string server = TakeOption(args, "--server");
  const std::string answer = TakeOption(args, "--answer");
  const std::string postFile = TakeOption(args, "--post-data");
  const bool json = TakeFlag(args, "--json");
  const bool ctrl = TakeFlag(args, "--ctrl");
  for (const auto& arg : args) {
    if (arg.starts_with("--")) {
      std::cerr << "tarnwick: unknown option " << arg << '\n' << kUsage;
      return kExitError;
    }
  }
  if (!answer.empty() && answer != "yes" && answer != "no") {
    std::cerr << "tarnwick: --answer takes yes or no\n" << kUsage;
    return kExitError;
  }
  std::vector<std::uint8_t> postData;
  if (!postFile.empty()) {
    std::ifstream in(postFile, std::ios::binary);
    if (!in) {
      std::cerr << "tarnwick: cannot read post data from " << postFile << '\n';
      return kExitError;
    }
    postData.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  BandHost host(server, answer == "yes" ? vbYes : vbNo);
  host.host.ui().ctrlHeld = ctrl;
  if (!host.Start()) return kExitError;

  bool anyBlocked = false;
  const auto judge = [&](const std::string& url) {
    bool cancel = false;
    const NavigationRecord record = host.band.guard().Judge(Utf8ToAnsi(url), postData, cancel);
    anyBlocked = anyBlocked || cancel;
    PrintRecord(record, json);
  };
  if (args.empty()) {
    std::string line;
    while (std::getline(std::cin, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (!line.empty()) judge(line);
    }
  } else {
    for (const auto& url : args) judge(url);
  }
  return anyBlocked ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli
