#!/usr/bin/env bash
# Soak test: runs quillmark binaries (--json, one tick a second) while a generator starts and ends
# hundreds of short-lived processes a second with hostile names (newlines, parentheses, invalid
# UTF-8, empty, full length) and keeps a crowd of zombies. Records each program's resident memory
# and descriptor count every 10 s; at the end checks that each still runs, stops cleanly on SIGTERM
# and printed no sanitizer report. Both figures must stay flat.
#
#   bench/churn_soak.sh [-d seconds] [-r processes-per-second] BINARY...
#   e.g. bench/churn_soak.sh -d 300 build/release/src/app/frontend/quillmark \
#                                   build/asan/src/app/frontend/quillmark
set -euo pipefail
duration=300
rate=400
while getopts "d:r:" opt; do
  case $opt in
    d) duration=$OPTARG ;;
    r) rate=$OPTARG ;;
    *) exit 2 ;;
  esac
done
shift $((OPTIND - 1))
[ $# -ge 1 ] || { echo "usage: $0 [-d seconds] [-r rate] BINARY..." >&2; exit 2; }

work=$(mktemp -d)
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# The generator, in C so that forking stays cheap on a busy machine: forks `rate` children a
# second; each renames itself (prctl) and exits within 0-80 ms. Every tenth child leaves a child of
# its own unreaped for 3 s, so a crowd of zombies is always present. On SIGTERM it writes how many
# it started.
cat >"$work/churn.c" <<'C'
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
static const char* names[] = {"a\nb", "(x) y)", ")(", "\xff\xfe\xc3", "", "new\nline\n", "\xe2\x82",
                              "xxxxxxxxxxxxxxx", "sp ace (1)", "\t"};
static volatile long started;
static const char* report;
static void stop(int sig) {
  (void)sig;
  FILE* out = fopen(report, "w");
  if (out) fprintf(out, "%ld", started), fclose(out);
  _exit(0);
}
static double now(void) {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return t.tv_sec + t.tv_nsec / 1e9;
}
int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const long rate = atol(argv[1]);
  report = argv[2];
  signal(SIGTERM, stop);
  const double start = now();
  for (long n = 0;; ++n) {
    const pid_t pid = fork();
    if (pid == 0) {
      prctl(PR_SET_NAME, names[n % 10], 0, 0, 0);
      if (n % 10 == 0) {
        /* A zombie: a grandchild that exits at once and is not reaped for 3 s. */
        if (fork() == 0) _exit(0);
        sleep(3);
        _exit(0);
      }
      usleep(20000 * (n % 5));
      _exit(0);
    }
    if (pid > 0) started = n + 1;
    while (waitpid(-1, NULL, WNOHANG) > 0) {
    }
    const double ahead = (double)(n + 1) / rate - (now() - start);
    if (ahead > 0) usleep((useconds_t)(ahead * 1e6));
  }
}
C
cc -O2 -o "$work/churn" "$work/churn.c"

export XDG_CONFIG_HOME=$work/config
mkdir -p "$XDG_CONFIG_HOME/quillmark"
echo '{"refreshInterval": 1.0}' >"$XDG_CONFIG_HOME/quillmark/settings.json"

i=0
for bin in "$@"; do
  XDG_STATE_HOME=$work/state$i "$bin" --json >/dev/null 2>"$work/stderr$i" &
  pids+=($!)
  i=$((i + 1))
done
"$work/churn" "$rate" "$work/started" &
churn=$!
pids+=($churn)

sample() {  # prints "rss_kB fds" of a pid
  local rss
  rss=$(awk '/^VmRSS:/ {print $2}' "/proc/$1/status")
  echo "$rss $(ls "/proc/$1/fd" | wc -l)"
}

sleep 10  # let the first scans settle
declare -a first
for ((j = 0; j < $#; j++)); do first[j]=$(sample "${pids[j]}"); done
echo "elapsed_s binary rss_kB fds processes_now"
end=$((SECONDS + duration))
while [ $SECONDS -lt $end ]; do
  for ((j = 0; j < $#; j++)); do
    echo "$SECONDS $j $(sample "${pids[j]}") $(ls -d /proc/[0-9]* 2>/dev/null | wc -l)"
  done
  sleep 10
done

churned=$SECONDS
kill "$churn"
wait "$churn" 2>/dev/null || true
echo "processes started: $(cat "$work/started") in ${churned}s"
status=0
j=0
for bin in "$@"; do
  last=$(sample "${pids[j]}")
  kill -TERM "${pids[j]}"
  rc=0
  wait "${pids[j]}" || rc=$?
  echo "$bin: start (rss_kB fds) ${first[j]}, end $last, exit status $rc"
  if [ $rc -ne 0 ] || grep -q "Sanitizer" "$work/stderr$j"; then
    echo "FAIL: $bin" >&2
    cat "$work/stderr$j" >&2
    status=1
  fi
  j=$((j + 1))
done
pids=()
exit $status
