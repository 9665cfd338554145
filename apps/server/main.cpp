// tarnwick-server: the reference toolbar server.
#include <iostream>
#include <string>
#include <vector>

#include "ServerCli.h"
#include "support/Version.h"

namespace {

constexpr const char* kHelp =
    "usage: tarnwick-server COMMAND [OPTIONS]\n"
    "\n"
    "commands:\n"
    "  serve [--listen ADDRESS:PORT] [--db FILE] [--data DIR] [--signing-key FILE]\n"
    "        answer the toolbar; prints the base address as its first line\n"
    "        (default 127.0.0.1:8750; port 0 picks a free port); SIGHUP reloads\n"
    "        the feeds at once, SIGTERM and SIGINT stop it; updates are signed\n"
    "        with the key in FILE (default: server/update-signing.key in the\n"
    "        data folder, when it exists)\n"
    "  import [--db FILE] --format FORMAT [--whole-sites] [--batch ROWS] FILE\n"
    "        add a phishing feed (FILE - reads standard input); FORMAT is\n"
    "        phishtank-csv, phishtank-json, openphish, urlhaus-csv or lines;\n"
    "        exit status 1 when rows were rejected\n"
    "  reports [--db FILE]\n"
    "        list the reports people sent through the web pages\n"
    "  keygen [--out DIR]\n"
    "        write a new key pair for signing updates to DIR (default: the\n"
    "        current folder): update-signing.key (secret) and update-signing.pub\n"
    "\n"
    "  --help                      this text\n"
    "  --version                   the program's name and version\n"
    "\n"
    "defaults:\n"
    "  --db    $XDG_DATA_HOME/tarnwick/server.db (~/.local/share/tarnwick/server.db)\n"
    "  --data  the data folder bundled with the sources\n";

}  // namespace

int main(int argc, char** argv) {
  using namespace tarnwick::server::cli;
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    std::cout << kHelp;
    return args.empty() ? kExitError : kExitOk;
  }
  if (args[0] == "--version") {
    std::cout << "tarnwick-server, " << tarnwick::AgentString() << '\n';
    return kExitOk;
  }
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  if (args[0] == "serve") return RunServe(rest);
  if (args[0] == "import") return RunImport(rest);
  if (args[0] == "reports") return RunReports(rest);
  if (args[0] == "keygen") return RunKeygen(rest);
  std::cerr << "tarnwick-server: unknown command '" << args[0] << "' (see tarnwick-server --help)\n";
  return kExitError;
}
