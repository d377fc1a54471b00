#!/usr/bin/env bash
# Times our process scan and cheap tick against floors that do the same reads with nothing around
# them, and against ps and top, side by side in one run: first on the machine as it is, then with
# extra sleeping processes. Prints per-scan times (medians) and the ratios.
#
#   bench/compare.sh            # EXTRA=2000 RUNS=20 by default
#   EXTRA=5000 RUNS=50 bench/compare.sh
set -euo pipefail
cd "$(dirname "$0")/.."

EXTRA=${EXTRA:-2000}
RUNS=${RUNS:-20}
BUILD=${BUILD:-build-bench}
BENCH="$BUILD/bench/process_scan_bench"

for tool in ps top; do
  command -v "$tool" >/dev/null || { echo "compare.sh: $tool not found (Debian package procps)" >&2; exit 1; }
done

cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQM_BUILD_BENCH=ON -DQM_BUILD_TESTS=OFF >/dev/null
cmake --build "$BUILD" --target process_scan_bench >/dev/null

# The extra processes are ours alone: remembered by pid and ended by pid, whatever happens.
extra_pids=()
cleanup() {
  if ((${#extra_pids[@]})); then
    kill "${extra_pids[@]}" 2>/dev/null || true
    wait "${extra_pids[@]}" 2>/dev/null || true
    extra_pids=()
  fi
}
trap cleanup EXIT
trap 'exit 130' INT TERM

# Median wall time of one run of the command, in microseconds, over RUNS runs.
time_command() {
  local samples=() start end i
  for ((i = 0; i < RUNS; i++)); do
    start=$(date +%s%N)
    "$@" >/dev/null 2>&1
    end=$(date +%s%N)
    samples+=($(((end - start) / 1000)))
  done
  printf '%s\n' "${samples[@]}" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b > 0) printf "%.2f", a / b; else print "-" }'; }

rows=()
measure() {
  local label=$1 json
  # Repetitions interleaved at random, so a change in the machine's load hits every case alike.
  json=$("$BENCH" --benchmark_repetitions="${REPS:-12}" --benchmark_enable_random_interleaving=true \
    --benchmark_min_time=0.2 --benchmark_report_aggregates_only=true --benchmark_format=json)
  # Google Benchmark prints one field per line: "name": "...", later "real_time": ...
  median() {
    awk -v name="\"$1_median\"," '$1 == "\"name\":" { current = $2 }
      $1 == "\"real_time\":" && current == name { sub(/,$/, "", $2); printf "%.1f", $2 }' <<<"$json"
  }
  local scan floor orc tick tickFloor ps_us top_us processes
  scan=$(median BM_OurScan)
  floor=$(median BM_FloorScan)
  orc=$(median BM_OpenReadCloseScan)
  tick=$(median BM_OurCheapTick)
  tickFloor=$(median BM_CheapFloor)
  ps_us=$(time_command ps -e -o pid,comm,rss,time)
  top_us=$(time_command top -b -n 1)
  processes=$(find /proc -maxdepth 1 -name '[0-9]*' | wc -l)
  rows+=("$(printf '%-16s %6s %10s %10s %10s %10s %10s %8s %8s | %9s %10s %9s %9s' \
    "$label" "$processes" "$scan" "$floor" "$orc" "$ps_us" "$top_us" "$tick" "$tickFloor" \
    "$(ratio "$scan" "$floor")" "$(ratio "$tick" "$tickFloor")" \
    "$(ratio "$ps_us" "$scan")" "$(ratio "$top_us" "$scan")")")
}

echo "measuring the machine as it is..." >&2
measure "as is"

echo "starting $EXTRA sleeping processes..." >&2
for ((i = 0; i < EXTRA; i++)); do
  sleep 100000 &
  extra_pids+=($!)
done
echo "measuring with $EXTRA extra processes..." >&2
measure "+$EXTRA sleeping"
cleanup

echo
echo "Per-scan times in microseconds (medians); ratios on the right."
printf '%-16s %6s %10s %10s %10s %10s %10s %8s %8s | %9s %10s %9s %9s\n' \
  "machine" "procs" "our scan" "floor" "open/close" "ps" "top" "tick" "tick flr" \
  "scan/flr" "tick/flr" "ps/scan" "top/scan"
printf '%s\n' "${rows[@]}"
