// tarnwick check: judges each URL exactly as a navigation would be judged.
#include <fstream>
#include <iostream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "Cli.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "band/StartUp.h"
#include "check/CheckURL.h"
#include "support/TerminalText.h"
#include "support/Text.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kUsage =
    "usage: tarnwick check [--server URL] [--json] [--answer yes|no] [--ctrl] [--post-data FILE] [URL...]\n";

void PrintOutcome(const std::string& url, const CheckURL& checker, std::int16_t rank, bool json) {
  const CheckOutcome& outcome = checker.LastOutcome();
  const char* step = CheckStepName(outcome.step);
  if (json) {
    using Json = nlohmann::ordered_json;
    const Json line = {
        {"url", AnsiToUtf8(url)},
        {"checked", outcome.checked},
        {"blocked", outcome.blocked},
        {"step", step != nullptr ? Json(step) : Json(nullptr)},
        {"risk_rank", rank},
        {"last_response", AnsiToUtf8(checker.GetLastResponse())},
        {"message", outcome.message.empty() ? Json(nullptr) : Json(AnsiToUtf8(outcome.message))},
    };
    std::cout << line.dump() << '\n';
    return;
  }
  // The URL and above all the server's text may hold anything: escaped.
  std::cout << TerminalText(url) << "\n  " << (outcome.blocked ? "blocked" : "allowed") << ", "
            << (outcome.checked ? "checked" : "not checked") << ", step: " << (step != nullptr ? step : "none")
            << ", risk rank: " << rank << "\n  response: " << TerminalText(checker.GetLastResponse()) << '\n';
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

  Host host(server, answer == "yes" ? vbYes : vbNo);
  host.ui().ctrlHeld = ctrl;
  if (!host.StartTransfers()) return kExitError;
  ToolbarProcess& process = host.process();
  RequestFileHashes(process);

  std::shared_ptr<ComponentObject> rex =
      NewObject(process, process.paths.ProgramFolder() / kRexComponent.file, kRexComponent.progId);
  const auto resolver = MakePlatformResolver();
  const auto canonicalizer = MakePlatformCanonicalizer();
  CheckURL checker({process.log, process.ui, *resolver, *canonicalizer, process.http, process.XSS, process.options,
                    process.endpoints, process.CurrentRiskRank, nullptr},
                   rex);
  if (checker.Failed()) {
    std::cerr << "tarnwick: the regular-expression component could not be created (see the log)\n";
    return kExitError;
  }
  LoadBlockLists(process, checker);

  bool anyBlocked = false;
  const auto judge = [&](const std::string& url) {
    bool cancel = false;
    checker.Check(Utf8ToAnsi(url), postData, cancel);
    anyBlocked = anyBlocked || cancel;
    PrintOutcome(Utf8ToAnsi(url), checker, process.CurrentRiskRank, json);
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
