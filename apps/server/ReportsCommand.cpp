// tarnwick-server reports [--db FILE]
#include <iostream>

#include "ServerCli.h"
#include "server/HttpDate.h"
#include "server/Storage.h"
#include "support/TerminalText.h"

namespace tarnwick::server::cli {
namespace {

// Everything in a report came from someone on the Internet: escaped.
void PrintField(std::string_view label, const std::string& value) {
  if (!value.empty()) std::cout << "  " << label << ": " << TerminalText(value) << '\n';
}

}  // namespace

int RunReports(const std::vector<std::string>& args) {
  Arguments parsed;
  std::string error;
  if (!ParseArguments(args, {"--db"}, {}, parsed, error) || !parsed.operands.empty()) {
    std::cerr << "tarnwick-server: " << (error.empty() ? "unexpected operand" : error) << '\n'
              << "usage: tarnwick-server reports [--db FILE]\n";
    return kExitError;
  }
  const auto db = parsed.values.find("--db");
  const std::filesystem::path file = db != parsed.values.end() ? std::filesystem::path(db->second) : DefaultDatabase();
  std::error_code missing;
  if (!std::filesystem::exists(file, missing)) {
    std::cerr << "tarnwick-server: no database at " << file.string() << '\n';
    return kExitError;
  }
  try {
    const auto reports = ReadSqliteReports(file);
    for (const Report& report : reports) {
      std::cout << "#" << report.id << " " << TerminalText(report.kind) << ", " << FormatHttpDate(report.created)
                << '\n';
      PrintField("url", report.url);
      PrintField("name", report.name);
      PrintField("email", report.email);
      PrintField("reason", report.reason);
      PrintField("agent", report.userAgent);
      PrintField("from", report.clientAddress);
    }
    std::cout << reports.size() << (reports.size() == 1 ? " report" : " reports") << '\n';
    return kExitOk;
  } catch (const StorageError& failure) {
    std::cerr << "tarnwick-server: " << failure.what() << '\n';
    return kExitError;
  }
}

}  // namespace tarnwick::server::cli
