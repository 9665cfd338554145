// tarnwick-server serve [--listen ADDRESS:PORT] [--db FILE] [--data DIR] [--signing-key FILE]
#include <csignal>
#include <iostream>
#include <mutex>

#include "ServerCli.h"
#include "server/Server.h"

namespace tarnwick::server::cli {
namespace {

constexpr const char* kUsage =
    "usage: tarnwick-server serve [--listen ADDRESS:PORT] [--db FILE] [--data DIR] [--signing-key FILE]\n";

// Log lines go to standard error, whole, whichever thread writes them.
void ReportLine(const std::string& line) {
  static std::mutex mutex;
  std::lock_guard lock(mutex);
  std::cerr << "tarnwick-server: " << line << std::endl;
}

}  // namespace

int RunServe(const std::vector<std::string>& args) {
  Arguments parsed;
  std::string error;
  if (!ParseArguments(args, {"--listen", "--db", "--data", "--signing-key"}, {}, parsed, error) ||
      !parsed.operands.empty()) {
    std::cerr << "tarnwick-server: " << (error.empty() ? "unexpected operand" : error) << '\n' << kUsage;
    return kExitError;
  }
  ServerSettings settings;
  if (const auto listen = parsed.values.find("--listen"); listen != parsed.values.end()) {
    const auto address = ParseListenAddress(listen->second);
    if (!address) {
      std::cerr << "tarnwick-server: --listen needs ADDRESS:PORT, such as 127.0.0.1:8750, not '" << listen->second
                << "'\n";
      return kExitError;
    }
    settings.listen = *address;
  }
  const auto db = parsed.values.find("--db");
  settings.database = db != parsed.values.end() ? std::filesystem::path(db->second) : DefaultDatabase();
  const auto data = parsed.values.find("--data");
  settings.dataFolder = data != parsed.values.end() ? std::filesystem::path(data->second) : BundledDataFolder();
  if (const auto key = parsed.values.find("--signing-key"); key != parsed.values.end()) {
    settings.signingKey = key->second;
  }

  // Every thread the server starts inherits this mask, so the signals wait
  // here for sigwait and never interrupt a worker.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  auto server = Server::Start(settings, ReportLine, error);
  if (!server) {
    std::cerr << "tarnwick-server: " << error << '\n';
    return kExitError;
  }
  std::cout << server->Address() << std::endl;
  ReportLine("serving " + settings.dataFolder.string() + " with " + settings.database.string());
  for (int signal = 0; sigwait(&signals, &signal) == 0 && signal == SIGHUP;) {
    ReportLine("SIGHUP: reloading the feeds");
    server->Reload();
  }
  server.reset();
  ReportLine("stopped");
  return kExitOk;
}

}  // namespace tarnwick::server::cli
