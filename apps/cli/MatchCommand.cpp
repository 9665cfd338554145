// tarnwick match [--flags FLAGS] [--json] [--stats] PATTERN_FILE
// Which line of a block list catches which URL: the file's lines (CR LF or
// LF) compiled as one pattern set, as localblock.dat is, and each URL of
// standard input asked for the first line that matches, as a check asks,
// within the same time limit.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "Cli.h"
#include "Json.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "check/PatternList.h"
#include "support/PatternSetAnswer.h"
#include "support/Text.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kUsage = "usage: tarnwick match [--flags FLAGS] [--json] [--stats] PATTERN_FILE < URLS\n";

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::duration duration) { return std::chrono::duration<double, std::micro>(duration).count(); }

// The file's lines, split at LF with a CR before it dropped.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines = Split(text, "\n");
  for (auto& line : lines) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
  }
  if (!lines.empty() && lines.back().empty()) lines.pop_back();  // after the last line break
  return lines;
}

void PrintAnswer(const std::string& url, std::int32_t index, const std::vector<std::string>& patterns, bool json) {
  const std::string* pattern = index >= 0 ? &patterns[static_cast<std::size_t>(index)] : nullptr;
  const std::int32_t shown = index >= 0 ? index : -1;
  if (json) {
    std::cout << "{\"url\":" << JsonString(url) << ",\"index\":" << shown
              << ",\"pattern\":" << (pattern != nullptr ? JsonString(*pattern) : "null") << "}\n";
  } else {
    std::cout << shown << '\t' << (pattern != nullptr ? AnsiToUtf8(*pattern) : std::string()) << '\n';
  }
}

void PrintStatistics(Clock::duration compile, const std::optional<std::vector<std::string>>& info,
                     std::vector<Clock::duration>& times) {
  std::fprintf(stderr, "compile time: %.1f ms\n", Microseconds(compile) / 1000);
  if (info && info->size() == 3) {
    std::fprintf(stderr, "patterns: %s\npatterns without a usable atom: %s\nset memory: %s bytes\n", (*info)[0].c_str(),
                 (*info)[1].c_str(), (*info)[2].c_str());
  } else {
    std::fprintf(stderr, "the component keeps no pattern sets: patterns are tried one by one\n");
  }
  std::fprintf(stderr, "URLs: %zu\n", times.size());
  if (times.empty()) return;
  Clock::duration total{};
  for (const auto time : times) total += time;
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  std::fprintf(stderr, "mean time per URL: %.3f us\nmedian time per URL: %.3f us\n",
               Microseconds(total) / static_cast<double>(times.size()), Microseconds(times[times.size() / 2]));
}

}  // namespace

int RunMatch(std::vector<std::string> args) {
  const bool json = TakeFlag(args, "--json");
  const bool stats = TakeFlag(args, "--stats");
  std::string flags = "i";
  if (const auto given = std::find(args.begin(), args.end(), "--flags"); given != args.end()) {
    if (given + 1 == args.end()) {
      std::cerr << "tarnwick: --flags needs a value\n" << kUsage;
      return kExitError;
    }
    flags = *(given + 1);
    args.erase(given, given + 2);
  }
  if (args.size() != 1 || args[0].starts_with("--")) {
    std::cerr << kUsage;
    return kExitError;
  }
  std::error_code error;
  std::ifstream in(args[0], std::ios::binary);
  if (!in || std::filesystem::is_directory(args[0], error)) {
    std::cerr << "tarnwick: cannot read " << args[0] << '\n';
    return kExitError;
  }
  const std::string text(std::istreambuf_iterator<char>(in), {});

  Host host;
  ToolbarProcess& process = host.process();
  process.LoadOptions();
  const auto object = NewObject(process, process.paths.ProgramFolder() / kRexComponent.file, kRexComponent.progId);
  if (!object) {
    std::cerr << "tarnwick: the regular-expression component could not be created (see the log)\n";
    return kExitError;
  }
  Rex rex(*object);
  PatternList list("match", flags);
  list.Set(Lines(text));
  const auto compileStart = Clock::now();
  list.Prepare(rex);
  const Clock::duration compile = Clock::now() - compileStart;

  bool anyMatched = false;
  std::vector<Clock::duration> times;
  std::string line;
  while (std::getline(std::cin, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::string url = Utf8ToAnsi(line);
    PatternBudget budget(process.log, process.options.PatternTimeLimit);
    const auto start = Clock::now();
    const std::int32_t index = list.FirstMatch(rex, url, budget);
    times.push_back(Clock::now() - start);
    if (index == kSetOutOfTime) {
      std::cerr << "tarnwick: the time for patterns (PatternTimeLimit, " << process.options.PatternTimeLimit
                << " ms) ran out for " << line << "; the patterns not yet tried count as no match\n";
    }
    anyMatched = anyMatched || index >= 0;
    PrintAnswer(url, index, list.patterns(), json);
  }
  if (stats) PrintStatistics(compile, rex.SetInfo("match"), times);
  return anyMatched ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli
