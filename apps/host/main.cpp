// tarnwick-host: the native messaging host of the Chromium extension. Started
// by the browser, it answers the extension's messages over standard input
// and output with the band core; `--install` sets it up for a user.
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "HostSession.h"
#include "Install.h"
#include "settings/Endpoints.h"
#include "support/Version.h"

namespace {

constexpr const char* kUsage =
    "usage: tarnwick-host --install [--user-data-dir DIR]\n"
    "       tarnwick-host --version\n"
    "  --install   write the native messaging manifest for Chromium (per user, or into the\n"
    "              profile folder DIR) and print how to load the extension\n"
    "Chromium starts tarnwick-host itself (with the extension's origin as its argument) and\n"
    "talks to it over standard input and output.\n";

int Install(const std::vector<std::string>& args) {
  std::optional<std::filesystem::path> userDataDir;
  if (args.size() == 3 && args[1] == "--user-data-dir") {
    userDataDir = std::filesystem::absolute(args[2]);
  } else if (args.size() != 1) {
    std::cerr << kUsage;
    return 2;
  }
  std::error_code failure;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
  if (failure) {
    std::cerr << "tarnwick-host: cannot tell where this program is: " << failure.message() << '\n';
    return 1;
  }
  std::string error;
  const auto written = tarnwick::host::WriteManifest(tarnwick::host::ManifestFolder(userDataDir), executable, error);
  if (!written) {
    std::cerr << "tarnwick-host: " << error << '\n';
    return 1;
  }
  std::cout << "Wrote " << written->string() << "\n\n"
            << "To load the extension: open chrome://extensions, switch on Developer mode, press\n"
            << "\"Load unpacked\" and choose the folder\n  " << TARNWICK_EXTENSION_DIR << "\n"
            << "(or start Chromium with --load-extension=" << TARNWICK_EXTENSION_DIR << ").\n"
            << "Chromium then starts " << executable.string() << " for it; TARNWICK_SERVER in\n"
            << "Chromium's environment names the toolbar server.\n";
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (!args.empty() && args[0] == "--install") return Install(args);
  if (!args.empty() && (args[0] == "--help" || args[0] == "-h")) {
    std::cout << kUsage;
    return 0;
  }
  if (!args.empty() && args[0] == "--version") {
    std::cout << "tarnwick-host " << tarnwick::VersionText() << '\n';
    return 0;
  }
  if (!args.empty() && !args[0].starts_with("chrome-extension://")) {
    std::cerr << "tarnwick-host: unknown argument " << args[0] << '\n' << kUsage;
    return 2;
  }
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);
  const auto clock = tarnwick::MakeSystemClock();
  const auto paths = tarnwick::MakePlatformPaths();
  const auto shell = tarnwick::MakePlatformShell();
  tarnwick::host::HostSession session(
      *paths, *clock, *shell,
      [](tarnwick::Log& log) {
        auto store = tarnwick::MakePlatformSettingsStore(log);
        store->ReportProblemsTo([](const std::string& problem) { std::cerr << "tarnwick-host: " << problem << '\n'; });
        return store;
      },
      tarnwick::ResolveEndpoints());
  return tarnwick::host::Serve(session, std::cin, std::cout);
}
