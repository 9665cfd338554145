// Per-URL cost of the check engine: the local list alone (N patterns as one
// set, through the component, as a check asks it), the local path (scheme
// filter, zone, cross-site scripting with the bundled xss.dat, then the
// list) and the full path against the reference server on loopback.
//
// Arguments after the benchmark flags: DATA_DIR (the repository's data/),
// BLOCKLIST_DIR (output of the shared blocklist generator), SERVER (base
// address of a running reference server).
#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "check/CheckURL.h"
#include "check/PatternList.h"
#include "common/TestSupport.h"
#include "net/PageFetch.h"
#include "support/Files.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

using namespace tarnwick::testing;

std::string g_dataDir, g_blocklistDir, g_server;

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Lines(const std::string& path, std::size_t limit) {
  std::vector<std::string> lines;
  std::ifstream in(path);
  std::string line;
  while (lines.size() < limit && std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

// A process with the built components registered from the program folder.
struct Engine {
  Engine() {
    process.options.BlockXSS = true;
    process.options.BlockAtRiskRank = 10;
    process.options.ServerTimeout = 5;
    process.endpoints.server = g_server;
    const auto folder = process.paths.ProgramFolder();
    for (const char* file : {"tarnwickrex.dll", "pagefetch.dll"}) {
      std::filesystem::copy_file(std::filesystem::path(TARNWICK_PROGRAM_OUTPUT) / file, folder / file);
    }
    process.http.Form_Load();
    process.http.pageFetch = NewObject(process, folder / kPageFetchComponent.file, kPageFetchComponent.progId);
    rex = NewObject(process, folder / kRexComponent.file, kRexComponent.progId);
    process.XSS.SetXSSPatterns(Slurp(g_dataDir + "/xss.dat"));
  }
  TestProcess t;
  ToolbarProcess& process = t.process;
  std::shared_ptr<ComponentObject> rex;
  std::unique_ptr<Resolver> resolver = MakePlatformResolver();
  std::unique_ptr<Canonicalizer> canonicalizer = MakePlatformCanonicalizer();
};

// A generated list of `count` patterns, compiled in the engine's component.
PatternList LocalList(std::size_t count, Rex& rex) {
  PatternList local("localblock", "i");
  local.Set(Split(Slurp(g_blocklistDir + "/localblock-" + std::to_string(count) + ".dat"), "\r\n"));
  local.Prepare(rex);
  return local;
}

std::vector<std::string> Urls(std::size_t count) {
  return Lines(g_blocklistDir + "/urls-" + std::to_string(count) + ".txt", 20000);
}

// The local list alone: what `tarnwick match` times for each URL.
void BM_LocalList(benchmark::State& state) {
  Engine engine;
  const auto count = static_cast<std::size_t>(state.range(0));
  Rex rex(*engine.rex);
  PatternList local = LocalList(count, rex);
  const auto urls = Urls(count);
  std::size_t next = 0;
  std::int64_t blocked = 0;
  for (auto _ : state) {
    PatternBudget budget(engine.process.log, engine.process.options.PatternTimeLimit);
    blocked += local.FirstMatch(rex, urls[next++ % urls.size()], budget) >= 0;
  }
  state.counters["blocked"] = benchmark::Counter(static_cast<double>(blocked), benchmark::Counter::kAvgIterations);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_LocalList)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// What a check does before it asks the server, in its order, through the
// same routines: the scheme filter, the zone (left out when the second
// argument is 0, to show what the rest costs), cross-site scripting in the
// URL with the bundled xss.dat, and the generated local list as one set.
void BM_LocalPath(benchmark::State& state) {
  Engine engine;
  const auto count = static_cast<std::size_t>(state.range(0));
  const bool withZone = state.range(1) != 0;
  Rex rex(*engine.rex);
  PatternList local = LocalList(count, rex);
  const auto urls = Urls(count);
  PageFetch pageFetch(*engine.process.http.pageFetch);
  std::size_t next = 0;
  std::int64_t blocked = 0;
  for (auto _ : state) {
    std::string url = urls[next++ % urls.size()];
    PatternBudget budget(engine.process.log, engine.process.options.PatternTimeLimit);
    bool decided = CheckURL::HasUncheckedScheme(url, rex) || (withZone && pageFetch.MapZone(url) < 3) ||
                   engine.process.XSS.Contains_XSS(url, rex, budget);
    if (!decided) decided = local.FirstMatch(rex, url, budget) >= 0;
    blocked += decided;
  }
  state.counters["blocked"] = benchmark::Counter(static_cast<double>(blocked), benchmark::Counter::kAvgIterations);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_LocalPath)->ArgsProduct({{1000, 10000, 100000}, {1, 0}})->Unit(benchmark::kMicrosecond);

void BM_FullPath(benchmark::State& state) {
  Engine engine;
  CheckURL checker(
      {engine.process.log, engine.process.ui, *engine.resolver, *engine.canonicalizer, engine.process.http,
       engine.process.XSS, engine.process.options, engine.process.endpoints, engine.process.CurrentRiskRank, nullptr},
      engine.rex);
  checker.SetURLPatterns(Slurp(g_dataDir + "/localblock.dat"));
  // Public addresses under documentation prefixes: no name look-up, one
  // server request each.
  const std::vector<std::string> urls = {"http://203.0.113.10/index.html", "https://198.51.100.23/shop?id=7",
                                         "http://203.0.113.99/news/today"};
  std::size_t next = 0;
  for (auto _ : state) {
    bool cancel = false;
    checker.Check(urls[next++ % urls.size()], {}, cancel);
    if (engine.process.http.HTTPStatus != 200) state.SkipWithError("the server did not answer 200");
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_FullPath)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarnwick

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 4) {
    std::fprintf(stderr, "usage: check_bench [benchmark flags] DATA_DIR BLOCKLIST_DIR SERVER\n");
    return 2;
  }
  tarnwick::g_dataDir = argv[1];
  tarnwick::g_blocklistDir = argv[2];
  tarnwick::g_server = argv[3];
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
