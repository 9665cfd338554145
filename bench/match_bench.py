#!/usr/bin/env python3
"""The measurements of bench/match_bench.sh, and its table.

Usage: match_bench.py BUILD UBO_DIR LISTS REPEAT SIZE...
"""
import json
import os
import re
import statistics
import subprocess
import sys

build, ubo_dir, lists, repeat = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
sizes = [int(size) for size in sys.argv[5:]]
tarnwick = os.path.join(build, "bin", "tarnwick")
here = os.path.dirname(os.path.abspath(__file__))


def run(command, stdin_path):
    """Runs a command with a file on standard input; its output and error text."""
    with open(stdin_path, "rb") as stdin:
        process = subprocess.run(command, stdin=stdin, capture_output=True)
    out, err = process.stdout, process.stderr
    if process.returncode not in (0, 1):
        sys.exit(f"{command[0]} failed ({process.returncode}): {err.decode(errors='replace')}")
    return out.decode(errors="replace"), err.decode(errors="replace")


def peak_rss(command, stdin_path):
    """The peak resident memory of one run, in bytes."""
    with open(stdin_path, "rb") as stdin:
        process = subprocess.Popen(command, stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, _, usage = os.wait4(process.pid, 0)
    return usage.ru_maxrss * 1024


def ours(size):
    out, err = run([tarnwick, "match", "--stats", f"{lists}/localblock-{size}.dat"], f"{lists}/urls-{size}.txt")
    number = lambda name: float(re.search(rf"^{name}: ([0-9.]+)", err, re.M).group(1))
    cpu = float(re.search(r"^compile time: [0-9.]+ ms \(processor ([0-9.]+) ms\)", err, re.M).group(1))
    verdicts = [0 if line.startswith("-1\t") else 1 for line in out.splitlines()]
    with open(f"{lists}/expected-{size}.txt") as expected:
        agree = sum(int(a) == b for a, b in zip(expected.read().split(), verdicts)) / len(verdicts)
    return {"median_us": number("median time per URL"), "mean_cpu_us": number("mean time per URL"),
            "compile_ms": number("compile time"), "compile_cpu_ms": cpu, "set_bytes": number("set memory"),
            "blocked": sum(verdicts), "agree_with_expected": agree}


def ubo(size):
    out, _ = run(["node", os.path.join(here, "ubo_match.mjs"), ubo_dir, f"{lists}/list-{size}.txt",
                  f"{lists}/urls-{size}.txt", f"{lists}/expected-{size}.txt"], os.devnull)
    return json.loads(out)


def local_path(size, zone):
    """CPU time per URL of check_bench's local path over list `size`, with or without the zone."""
    out, _ = run([os.path.join(build, "bin", "check_bench"), f"--benchmark_filter=BM_LocalPath/{size}/{zone}$",
                  "--benchmark_format=json", "--benchmark_min_time=1", os.path.join(here, "..", "data"), lists,
                  "http://127.0.0.1:9"], os.devnull)
    result = json.loads(out)["benchmarks"][0]
    return result["cpu_time"]


def median_of(runs, key):
    return statistics.median(run[key] for run in runs)


rows = []
for size in sizes:
    ours_runs, ubo_runs, paths = [], [], []
    for _ in range(repeat):  # interleaved, so both see the same load
        ours_runs.append(ours(size))
        ubo_runs.append(ubo(size))
        paths.append((local_path(size, 1), local_path(size, 0)))
    rows.append((size, ours_runs, ubo_runs, statistics.median(p[0] for p in paths),
                 statistics.median(p[1] for p in paths)))

print(f"load average at the end: {os.getloadavg()[0]:.1f} (2 cores); medians of {repeat} runs\n")
print("| patterns | ours median µs/URL | uBO median µs/URL | uBO ÷ ours | ours mean CPU µs | uBO mean CPU µs | "
      "uBO ÷ ours | whole local path CPU µs | uBO ÷ local path | local path less zone CPU µs | uBO ÷ that | "
      "agree with reference (ours / uBO) |")
print("|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---|")
for size, ours_runs, ubo_runs, path, without_zone in rows:
    om, um = median_of(ours_runs, "median_us"), median_of(ubo_runs, "median_us")
    oc, uc = median_of(ours_runs, "mean_cpu_us"), median_of(ubo_runs, "mean_cpu_us")
    print(f"| {size:,} | {om:.3f} | {um:.3f} | {um / om:.1f} | {oc:.3f} | {uc:.3f} | {uc / oc:.1f} | {path:.2f} | "
          f"{uc / path:.2f} | {without_zone:.2f} | {uc / without_zone:.2f} | {ours_runs[0]['agree_with_expected']:.4f} / {ubo_runs[0]['agree_with_expected']:.4f} |")

largest = max(sizes)
size, ours_runs, ubo_runs, _, _ = next(row for row in rows if row[0] == largest)
baseline_list = os.path.join(lists, "empty.dat")
open(baseline_list, "w").close()
baseline = peak_rss([tarnwick, "match", baseline_list], f"{lists}/urls-{largest}.txt")
rss = peak_rss([tarnwick, "match", f"{lists}/localblock-{largest}.dat"], f"{lists}/urls-{largest}.txt") - baseline
oc, uc = median_of(ours_runs, "compile_cpu_ms"), median_of(ubo_runs, "compile_cpu_ms")
ow, uw = median_of(ours_runs, "compile_ms"), median_of(ubo_runs, "compile_ms")
print(f"\ncompile {largest:,}: ours {ow:.0f} ms wall, {oc:.0f} ms CPU; uBO {uw:.0f} ms wall, {uc:.0f} ms CPU "
      f"(uBO ÷ ours CPU {uc / oc:.1f})")
print(f"memory {largest:,}: ours set {median_of(ours_runs, 'set_bytes') / 2**20:.1f} MiB, process peak "
      f"+{rss / 2**20:.1f} MiB over an empty list; uBO resident +{median_of(ubo_runs, 'rss_bytes') / 2**20:.1f} MiB, "
      f"heap +{median_of(ubo_runs, 'heap_bytes') / 2**20:.1f} MiB")
