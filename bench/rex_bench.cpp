// Test of one URL against the lines of a localblock.dat, one pattern at a
// time as the check engine asks, through Tarnwick.Rex loaded from
// tarnwickrex.dll: cold (a new object, every pattern compiled anew) and with
// the compile cache warm. One iteration is one URL, so the time per
// iteration is the time per URL. This is the baseline a multi-pattern
// matcher has to beat.
//
// The data comes from the shared block-list generator; bench/rex_bench.sh
// makes it in a scratch folder and passes that folder in REX_BENCH_DATA.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "check/PatternBudget.h"
#include "check/PatternList.h"
#include "check/Rex.h"
#include "support/Shell.h"

namespace tarnwick {
namespace {

// URLs per list taken from urls-N.txt; the benchmark cycles through them.
constexpr std::size_t kUrls = 2000;
// URLs whose verdict is checked against expected-N.txt before measuring.
constexpr std::size_t kChecked = 200;

class QuietUi final : public Ui {
 public:
  int MessageBox(std::string_view, std::string_view, int) override { return vbOK; }
  int ScreenWidthPixels() override { return 1024; }
};

class NoDialog final : public DownloadDialog {
 public:
  void Show(std::string_view) override {}
  void Hide() override {}
  bool Visible() const override { return false; }
  void DrawFrame(int) override {}
};

std::vector<std::string> ReadLines(const std::string& file, std::size_t most) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file + " (run bench/rex_bench.sh)");
  std::vector<std::string> lines;
  for (std::string line; lines.size() < most && std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

struct BlockList {
  std::vector<std::string> patterns;
  std::vector<std::string> urls;
  std::vector<bool> expected;
};

BlockList LoadBlockList(const std::string& folder, int size) {
  const std::string n = std::to_string(size);
  BlockList list;
  list.patterns = ReadLines(folder + "/localblock-" + n + ".dat", static_cast<std::size_t>(-1));
  list.urls = ReadLines(folder + "/urls-" + n + ".txt", kUrls);
  for (const auto& line : ReadLines(folder + "/expected-" + n + ".txt", kUrls)) list.expected.push_back(line == "1");
  return list;
}

// The check engine's loop: the first line that matches blocks the URL.
bool Blocked(Rex& rex, const std::string& url, const std::vector<std::string>& patterns) {
  for (const auto& pattern : patterns) {
    if (rex.Test(url, pattern, "i")) return true;
  }
  return false;
}

class Bench {
 public:
  Bench() : process_({*paths_, *clock_, ui_, dialog_, *shell_}, MakePlatformSettingsStore, Endpoints{}) {}

  std::unique_ptr<ComponentObject> NewRex() {
    auto object = NewObject(process_, paths_->ProgramFolder() / kRexComponent.file, kRexComponent.progId);
    if (!object) throw std::runtime_error("Tarnwick.Rex cannot be created from " + paths_->ProgramFolder().string());
    return object;
  }

  Log& log() { return process_.log; }

 private:
  std::unique_ptr<Paths> paths_ = MakePlatformPaths();
  std::unique_ptr<Clock> clock_ = MakeSystemClock();
  std::unique_ptr<Shell> shell_ = MakePlatformShell();
  QuietUi ui_;
  NoDialog dialog_;
  ToolbarProcess process_;
};

void Cold(benchmark::State& state, Bench& bench, const BlockList& list) {
  std::size_t next = 0;
  std::int64_t blocked = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto object = bench.NewRex();
    Rex rex(*object);
    state.ResumeTiming();
    blocked += Blocked(rex, list.urls[next++ % list.urls.size()], list.patterns);
  }
  state.counters["blocked"] = benchmark::Counter(static_cast<double>(blocked), benchmark::Counter::kAvgIterations);
}

void Warm(benchmark::State& state, Bench& bench, const BlockList& list) {
  auto object = bench.NewRex();
  Rex rex(*object);
  std::size_t agree = 0;
  for (std::size_t i = 0; i < kChecked && i < list.urls.size(); ++i) {
    agree += Blocked(rex, list.urls[i], list.patterns) == list.expected[i];
  }
  std::size_t next = 0;
  std::int64_t blocked = 0;
  for (auto _ : state) blocked += Blocked(rex, list.urls[next++ % list.urls.size()], list.patterns);
  state.counters["blocked"] = benchmark::Counter(static_cast<double>(blocked), benchmark::Counter::kAvgIterations);
  state.counters["agree_with_expected"] = static_cast<double>(agree) / kChecked;
}

// The same question asked of the whole list as one pattern set, as a check
// asks it: one call of the component per URL.
void Set(benchmark::State& state, Bench& bench, const BlockList& list) {
  auto object = bench.NewRex();
  Rex rex(*object);
  PatternList patterns("bench", "i");
  patterns.Set(list.patterns);
  patterns.Prepare(rex);
  PatternBudget budget(bench.log(), 200);
  std::size_t agree = 0;
  for (std::size_t i = 0; i < kChecked && i < list.urls.size(); ++i) {
    agree += (patterns.FirstMatch(rex, list.urls[i], budget) >= 0) == list.expected[i];
  }
  std::size_t next = 0;
  std::int64_t blocked = 0;
  for (auto _ : state) {
    PatternBudget perUrl(bench.log(), 200);
    blocked += patterns.FirstMatch(rex, list.urls[next++ % list.urls.size()], perUrl) >= 0;
  }
  state.counters["blocked"] = benchmark::Counter(static_cast<double>(blocked), benchmark::Counter::kAvgIterations);
  state.counters["agree_with_expected"] = static_cast<double>(agree) / kChecked;
}

}  // namespace
}  // namespace tarnwick

int main(int argc, char** argv) {
  using namespace tarnwick;
  const char* folder = std::getenv("REX_BENCH_DATA");
  if (folder == nullptr) {
    std::cerr << "rex_bench: set REX_BENCH_DATA to the generator's output (bench/rex_bench.sh does)\n";
    return 2;
  }
  Bench bench;
  std::vector<BlockList> lists;
  for (const int size : {1000, 10000, 100000}) lists.push_back(LoadBlockList(folder, size));
  for (const auto& list : lists) {
    const std::string size = std::to_string(list.patterns.size());
    if (list.patterns.size() <= 10000) {
      benchmark::RegisterBenchmark(("TestOneUrl/cold/" + size).c_str(), Cold, std::ref(bench), std::cref(list))
          ->MinTime(2.0);
      benchmark::RegisterBenchmark(("TestOneUrl/warm/" + size).c_str(), Warm, std::ref(bench), std::cref(list));
    }
    benchmark::RegisterBenchmark(("SetOneUrl/" + size).c_str(), Set, std::ref(bench), std::cref(list));
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
