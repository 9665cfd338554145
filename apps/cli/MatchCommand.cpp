// tarnwick match [--flags FLAGS] [--json] [--stats] PATTERN_FILE
// Which line of a block list catches which URL: the file's lines (CR LF or
// LF) compiled as one pattern set, as localblock.dat is, and each URL of
// standard input asked for the first line that matches, as a check asks,
// within the same time limit.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "Cli.h"
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
    const nlohmann::ordered_json answer{
        {"url", AnsiToUtf8(url)},
        {"index", shown},
        {"pattern", pattern != nullptr ? nlohmann::ordered_json(AnsiToUtf8(*pattern)) : nlohmann::ordered_json()}};
    std::cout << answer.dump() << '\n';
  } else {
    std::cout << shown << '\t' << (pattern != nullptr ? AnsiToUtf8(*pattern) : std::string()) << '\n';
  }
}

// Times per URL are taken on the wall clock, whose median a busy machine
// barely moves; the mean is the processor time of all the questions, which
// other programs do not inflate.
void PrintStatistics(Clock::duration compileWall, double compileCpu,
                     const std::optional<std::vector<std::string>>& info, std::vector<Clock::duration>& times,
                     double questionsCpu) {
  std::fprintf(stderr, "compile time: %.1f ms (processor %.1f ms)\n", Microseconds(compileWall) / 1000,
               compileCpu * 1000);
  if (info && info->size() == 3) {
    std::fprintf(stderr, "patterns: %s\npatterns without a usable atom: %s\nset memory: %s bytes\n", (*info)[0].c_str(),
                 (*info)[1].c_str(), (*info)[2].c_str());
  } else {
    std::fprintf(stderr, "the component keeps no pattern sets: patterns are tried one by one\n");
  }
  std::fprintf(stderr, "URLs: %zu\n", times.size());
  if (times.empty()) return;
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  std::fprintf(stderr, "mean time per URL: %.3f us\nmedian time per URL: %.3f us\n",
               questionsCpu * 1e6 / static_cast<double>(times.size()), Microseconds(times[times.size() / 2]));
}

double ProcessorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

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
  const double compileCpuStart = ProcessorSeconds();
  list.Prepare(rex);
  const double compileCpu = ProcessorSeconds() - compileCpuStart;
  const Clock::duration compile = Clock::now() - compileStart;

  // All URLs are read first, so the questions are timed by themselves.
  std::vector<std::string> urls;
  for (std::string line; std::getline(std::cin, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    urls.push_back(Utf8ToAnsi(line));
  }
  std::vector<std::int32_t> answers(urls.size());
  std::vector<Clock::duration> times(urls.size());
  const double questionsCpuStart = ProcessorSeconds();
  // One clock read per question, each URL's time running from the end of
  // the one before: a read costs a tenth of a short question.
  auto last = Clock::now();
  for (std::size_t i = 0; i < urls.size(); ++i) {
    PatternBudget budget(process.log, process.options.PatternTimeLimit);
    answers[i] = list.FirstMatch(rex, urls[i], budget);
    const auto now = Clock::now();
    times[i] = now - last;
    last = now;
  }
  const double questionsCpu = ProcessorSeconds() - questionsCpuStart;

  bool anyMatched = false;
  for (std::size_t i = 0; i < urls.size(); ++i) {
    if (answers[i] == kSetOutOfTime) {
      std::cerr << "tarnwick: the time for patterns (PatternTimeLimit, " << process.options.PatternTimeLimit
                << " ms) ran out for " << AnsiToUtf8(urls[i]) << "; the patterns not yet tried count as no match\n";
    }
    anyMatched = anyMatched || answers[i] >= 0;
    PrintAnswer(urls[i], answers[i], list.patterns(), json);
  }
  if (stats) PrintStatistics(compile, compileCpu, rex.SetInfo("match"), times, questionsCpu);
  return anyMatched ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli
