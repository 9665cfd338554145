// tarnwick-server import [--db FILE] --format FORMAT [--whole-sites] [--batch ROWS] FILE
#include <charconv>
#include <fstream>
#include <iostream>

#include "ServerCli.h"
#include "server/FeedImport.h"

namespace tarnwick::server::cli {
namespace {

constexpr const char* kUsage =
    "usage: tarnwick-server import [--db FILE] --format FORMAT [--whole-sites] [--batch ROWS] FILE\n"
    "FORMAT: phishtank-csv, phishtank-json, openphish, urlhaus-csv or lines\n";

// Rejections beyond this many are counted but not listed.
constexpr std::size_t kListedRejections = 1000;

std::string Counts(const ImportSummary& summary) {
  return std::to_string(summary.added) + " added, " + std::to_string(summary.known) + " already known, " +
         std::to_string(summary.rejected) + " rejected";
}

class ConsoleProgress final : public ImportProgress {
 public:
  explicit ConsoleProgress(std::string file) : file_(std::move(file)) {}

  void Committed(const ImportSummary& soFar) override { std::cout << "committed: " << Counts(soFar) << std::endl; }
  void Rejected(const std::string& where, const std::string& reason) override {
    if (++rejections_ <= kListedRejections) {
      std::cerr << file_ << ": " << where << ": rejected: " << reason << '\n';
    } else if (rejections_ == kListedRejections + 1) {
      std::cerr << file_ << ": further rejections are counted but not listed\n";
    }
  }

 private:
  std::string file_;
  std::size_t rejections_ = 0;
};

bool ReadBatchSize(const std::string& text, std::size_t& rows) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rows);
  return error == std::errc() && end == text.data() + text.size() && rows > 0 && rows <= kMaxBatchRows;
}

}  // namespace

int RunImport(const std::vector<std::string>& args) {
  Arguments parsed;
  std::string error;
  if (!ParseArguments(args, {"--db", "--format", "--batch"}, {"--whole-sites"}, parsed, error) ||
      parsed.operands.size() != 1 || !parsed.values.contains("--format")) {
    std::cerr << "tarnwick-server: " << (error.empty() ? "import needs --format and one FILE" : error) << '\n'
              << kUsage;
    return kExitError;
  }
  ImportOptions options;
  const auto format = FeedFormatNamed(parsed.values["--format"]);
  if (!format) {
    std::cerr << "tarnwick-server: unknown format '" << parsed.values["--format"] << "'\n" << kUsage;
    return kExitError;
  }
  options.format = *format;
  options.wholeSites = parsed.switches.contains("--whole-sites");
  if (parsed.values.contains("--batch") && !ReadBatchSize(parsed.values["--batch"], options.batchRows)) {
    std::cerr << "tarnwick-server: --batch takes a number of rows from 1 to " << kMaxBatchRows << ", not '"
              << parsed.values["--batch"] << "'\n";
    return kExitError;
  }

  const std::string& file = parsed.operands[0];
  std::ifstream opened;
  if (file != "-") {
    opened.open(file, std::ios::binary);
    if (!opened) {
      std::cerr << "tarnwick-server: cannot read " << file << '\n';
      return kExitError;
    }
  }
  try {
    const auto db = parsed.values.find("--db");
    auto storage = OpenSqliteStorage(db != parsed.values.end() ? std::filesystem::path(db->second) : DefaultDatabase());
    ConsoleProgress progress(file);
    const ImportSummary summary = ImportFeed(file == "-" ? std::cin : opened, options, *storage, progress);
    std::cout << "imported " << file << ": " << Counts(summary) << std::endl;
    return summary.rejected > 0 ? kExitFound : kExitOk;
  } catch (const StorageError& failure) {
    std::cerr << "tarnwick-server: " << failure.what() << '\n';
    return kExitError;
  }
}

}  // namespace tarnwick::server::cli
