#!/bin/sh
# Builds the benchmarks with the `bench` preset (Release, -O2, baseline
# x86-64), runs them with repetitions and prints the table of kernel-to-peer
# ratios of medians measured in this run. The raw results and the ratios are
# written as JSON beside the build:
#   build/bench/results.json   Google Benchmark's output
#   build/bench/ratios.json    the table, one entry per measure
# The repetitions of all benchmarks are interleaved in random order, so that a
# slow moment of a shared machine spreads over kernel and peers alike instead
# of falling on one of them.
# Environment: BENCH_REPETITIONS (default 5), BENCH_MIN_TIME (seconds per
# repetition, default 0.2), BENCH_FILTER (a benchmark regex, default all).
set -eu
cd "$(dirname "$0")/.."

UI_CORE_DEPS_EXTRA="python3 ${UI_CORE_DEPS_EXTRA:-}" ./scripts/install-deps.sh
cmake --preset bench >/dev/null
cmake --build --preset bench --target ui_core_bench ui_core_source_creators

out=build/bench
./build/bench/bin/ui_core_bench \
  --benchmark_repetitions="${BENCH_REPETITIONS:-5}" \
  --benchmark_min_time="${BENCH_MIN_TIME:-0.2}" \
  --benchmark_filter="${BENCH_FILTER:-.}" \
  --benchmark_report_aggregates_only=true \
  --benchmark_enable_random_interleaving=true \
  --benchmark_out="$out/results.json" --benchmark_out_format=json >/dev/null
python3 scripts/bench_report.py "$out/results.json" "$out/ratios.json"
