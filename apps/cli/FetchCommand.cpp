// tarnwick fetch [--post DATA] URL: one transfer through the download form,
// printed as status, header block and body.
#include <algorithm>
#include <iostream>

#include "Cli.h"
#include "support/Text.h"

namespace tarnwick::cli {

int RunFetch(std::vector<std::string> args) {
  const bool post = std::find(args.begin(), args.end(), "--post") != args.end();
  const std::string data = TakeOption(args, "--post");
  if (args.size() != 1 || args[0].starts_with("--")) {
    std::cerr << "usage: tarnwick fetch [--post DATA] URL\n";
    return kExitError;
  }
  Host host;
  if (!host.StartTransfers()) return kExitError;
  frmHTTP& http = host.process().http;
  http.Start_Download(true, post ? "POST" : "GET", Utf8ToAnsi(args[0]), host.process().AgentString, "",
                      Utf8ToAnsi(data), "Fetching " + Utf8ToAnsi(args[0]));
  std::cout << "Status: " << http.HTTPStatus << '\n';
  if (!http.ResponseHeaders.empty()) std::cout << http.ResponseHeaders << "\r\n";
  std::cout << '\n' << http.ResponseText << std::flush;
  return http.HTTPStatus == 200 ? kExitOk : kExitFound;
}

}  // namespace tarnwick::cli
