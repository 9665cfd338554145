// The download form's cost: CPU spent while waiting on a server that never
// answers (it should sleep on the socket, not spin), and sequential small
// transfers per second over loopback through Start_Download.
#include <benchmark/benchmark.h>

#include <fstream>
#include <memory>

#include "DownloadForm.h"
#include "LoopbackServer.h"

namespace tarnwick {
namespace {

using namespace tarnwick::testing;

void BM_WaitOnStalledServer(benchmark::State& state) {
  DownloadForm form(2);  // rounded elapsed seconds pass 2 at 2.5 s
  LoopbackServer server([](const Request&) {
    Reply reply;
    reply.stall = true;
    return reply;
  });
  for (auto _ : state) {
    form.http.Start_Download(false, "GET", server.Base() + "/stall", "bench", "", "", "");
    if (form.http.HTTPStatus != 504) state.SkipWithError("the wait did not time out");
  }
}
// Thread CPU time against wall time: the share of one core the wait uses.
BENCHMARK(BM_WaitOnStalledServer)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_SequentialSmallTransfers(benchmark::State& state) {
  DownloadForm form(5);
  LoopbackServer server([](const Request&) { return Reply::Http(200, "OK", std::string(512, 'x')); });
  for (auto _ : state) {
    form.http.Start_Download(false, "GET", server.Base() + "/small", "bench", "", "", "");
    if (form.http.HTTPStatus != 200) state.SkipWithError("transfer failed");
  }
  state.counters["transfers/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SequentialSmallTransfers)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace tarnwick

BENCHMARK_MAIN();
