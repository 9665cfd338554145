// tarnwick: the Tarnwick Toolbar's command line.
#include <iostream>
#include <string>
#include <vector>

#include "Cli.h"
#include "support/Version.h"

namespace {

constexpr const char* kHelp =
    "usage: tarnwick COMMAND [ARGS]\n"
    "\n"
    "commands:\n"
    "  check [--server URL] [--json] [--answer yes|no] [--ctrl] [--post-data FILE] [URL...]\n"
    "                              judge each URL (or each line of standard input) as a navigation;\n"
    "                              exit status 0 nothing blocked, 1 something blocked, 2 an error\n"
    "  browse [--server URL] [--json] [--answer yes|no]\n"
    "                              play a browser window from events on standard input (navigate,\n"
    "                              redirect, complete, popup, ctrl, submit, close; see browse --help)\n"
    "                              and print what the band did with each\n"
    "  options                     print the loaded options, one 'Name = value' per line\n"
    "  options set NAME VALUE      store a setting as text (also the zone lists TrustedSites,\n"
    "                              IntranetSites, RestrictedSites: host names separated by ; or blanks)\n"
    "  options delete NAME         remove a setting (exit status 1 when it was not set)\n"
    "  options dialog              the options dialog as a terminal form (OK, Cancel, Restore Defaults)\n"
    "  menu [product|client] [--json] [--server URL]\n"
    "                              build the menus as a toolbar does (refreshing the menu files from the\n"
    "                              server) and print each item's number, caption and link (exit status 1\n"
    "                              when a menu is missing)\n"
    "  open LINK [--current-url URL] [--server URL]\n"
    "                              act on a menu link: print where the browser would go, or run a\n"
    "                              tarnwicktoolbar: command (report_url for the --current-url page,\n"
    "                              check_update, about, options, ...)\n"
    "  fetch [--post DATA] URL     one transfer through the download form: status, headers, body\n"
    "  update [--force] [--answer yes|no] [--server URL]\n"
    "                              refresh the data files and components from the server, then\n"
    "                              check for a newer program version; --answer answers the offer to\n"
    "                              install it when standard input is no terminal (default no)\n"
    "                              (exit status 1 when a file failed)\n"
    "  rex test|match SUBJECT PATTERN [FLAGS]\n"
    "  rex replace SUBJECT PATTERN REPLACEMENT [FLAGS]\n"
    "                              the regular-expression component's answer: True or False (exit\n"
    "                              status 1 for False), the groups one per line (or 'no match'), or\n"
    "                              the replaced text; FLAGS are letters of i, g, e, s\n"
    "  match [--flags FLAGS] [--json] [--stats] PATTERN_FILE\n"
    "                              compile the file's lines as one pattern set (flags 'i' unless\n"
    "                              given) and print, for each URL of standard input, the index of\n"
    "                              the first line that matches (-1 for none), a TAB and the line;\n"
    "                              --stats: compile time, memory and time per URL on standard error;\n"
    "                              exit status 1 when a URL matched\n"
    "  blockpage                   print the block page (about:PhishingSite) as HTML\n"
    "  components                  list the components' ProgIDs and their registered files\n"
    "  components register|unregister FILE\n"
    "                              call the component library's own registration entry point\n"
    "\n"
    "  --help                      this text\n"
    "  --version                   the program's name and version\n"
    "\n"
    "environment:\n"
    "  TARNWICK_PROGRAM_DIR        program folder (components, data files)\n"
    "  TARNWICK_SERVER             toolbar server base address\n"
    "  TARNWICK_SITE               web site base address\n"
    "  XDG_CONFIG_HOME             settings: $XDG_CONFIG_HOME/tarnwick/settings.reg\n"
    "  XDG_STATE_HOME              log: $XDG_STATE_HOME/Tarnwick/Toolbar/blocked.log\n"
    "  TARNWICK_LOCAL_MACHINE_SETTINGS  machine-wide settings file\n";

}  // namespace

int main(int argc, char** argv) {
  using namespace tarnwick::cli;
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    std::cout << kHelp;
    return args.empty() ? kExitError : kExitOk;
  }
  if (args[0] == "--version") {
    std::cout << tarnwick::AgentString() << '\n';
    return kExitOk;
  }
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  try {
    if (args[0] == "options") return RunOptions(rest);
    if (args[0] == "fetch") return RunFetch(rest);
    if (args[0] == "update") return RunUpdate(rest);
    if (args[0] == "check") return RunCheck(rest);
    if (args[0] == "browse") return RunBrowse(rest);
    if (args[0] == "rex") return RunRex(rest);
    if (args[0] == "match") return RunMatch(rest);
    if (args[0] == "blockpage") return RunBlockPage(rest);
    if (args[0] == "components") return RunComponents(rest);
    if (args[0] == "menu") return RunMenu(rest);
    if (args[0] == "open") return RunOpen(rest);
  } catch (const MissingOptionValue& error) {
    std::cerr << "tarnwick: " << error.what() << " (see tarnwick --help)\n";
    return kExitError;
  }
  std::cerr << "tarnwick: unknown command '" << args[0] << "' (see tarnwick --help)\n";
  return kExitError;
}
