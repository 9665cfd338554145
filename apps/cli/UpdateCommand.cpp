// tarnwick update [--force] [--answer yes|no] [--server URL]: what a band
// start does for the files (the hash request, then the refresh of each file
// of the table and of the menu files), then the self-update check.
#include <iostream>

#include "Cli.h"
#include "band/StartUp.h"

namespace tarnwick::cli {
namespace {

// How one refresh went, and whether it counts as a failure.
std::pair<std::string, bool> Outcome(std::optional<std::int16_t> status, const frmHTTP& http) {
  if (!status) return {"current", false};
  switch (*status) {
    case 200: return {"fetched", false};
    case 304: return {"not modified", false};
    case 404: return {"not published (404)", false};
    case 0: return {"failed (discarded or could not be written, see the log)", true};
    default: return {"failed (" + std::to_string(*status) + ": " + http.ResponseText + ")", true};
  }
}

}  // namespace

int RunUpdate(std::vector<std::string> args) {
  const bool force = TakeFlag(args, "--force");
  const std::string server = TakeOption(args, "--server");
  const std::string answer = TakeOption(args, "--answer");
  if (!args.empty() || (!answer.empty() && answer != "yes" && answer != "no")) {
    std::cerr << "usage: tarnwick update [--force] [--answer yes|no] [--server URL]\n";
    return kExitError;
  }
  Host host(server, answer == "yes" ? vbYes : vbNo);
  if (!host.StartTransfers()) return kExitError;
  ToolbarProcess& process = host.process();
  mdlUpdate& updates = process.updates;

  RequestFileHashes(process);

  bool failed = false;
  for (const auto* table : {&StartupRefreshTable(), &MenuRefreshTable()}) {
    for (RefreshEntry entry : *table) {
      entry.forced = entry.forced || force;
      const auto [text, bad] = Outcome(updates.Refresh(entry, process.AgentString), process.http);
      std::cout << entry.file << ": " << text << '\n';
      failed = failed || bad;
    }
  }

  const bool downloaded = updates.UpdateToolbarDLL(force);
  const std::int16_t status = updates.LastUpdateCheckStatus;
  if (downloaded) {
    std::cout << "program: newer version downloaded to twtb.new\n";
  } else if (status == 0) {
    std::cout << "program: check not due (use --force)\n";
  } else if (status == 404) {
    std::cout << "program: no newer version\n";
  } else {
    std::cout << "program: check failed (" << status << ": " << process.http.ResponseText << ")\n";
    failed = true;
  }
  return failed ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli
