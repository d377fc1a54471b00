#!/usr/bin/env bash
# The real quillmark holding a paused group (a stopped `sleep` in its own session, recorded in the
# settings file as a previous run would have left it): --json lists it, and every way the program
# ends (a normal quit, SIGTERM, SIGINT, SIGHUP) lets it run again.
set -euo pipefail
bin=$1
home=$(mktemp -d)
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state
mkdir -p "$XDG_CONFIG_HOME/quillmark"
log=$XDG_STATE_HOME/quillmark/Quillmark.log
pid=
cleanup() {
  if [ -n "$pid" ]; then kill -KILL "$pid" 2>/dev/null || true; kill -CONT "$pid" 2>/dev/null || true; fi
  rm -rf "$home"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; cat "$log" >&2 || true; exit 1; }
state() { sed 's/.*) //' "/proc/$1/stat" | cut -d' ' -f1; }

pause_sleeper() {
  setsid sleep 60 &
  pid=$!
  # Stop it only once setsid has made it a group leader and exec'd sleep.
  for _ in $(seq 200); do [ "$(cat "/proc/$pid/comm")" = sleep ] && break; sleep 0.01; done
  kill -STOP "$pid"
  for _ in $(seq 100); do [ "$(state "$pid")" = T ] && break; sleep 0.01; done
  python3 - "$pid" "$XDG_CONFIG_HOME/quillmark/settings.json" <<'PY'
import json, sys
pid = int(sys.argv[1])
stat = open(f"/proc/{pid}/stat").read()
start = int(stat[stat.rindex(")") + 2:].split()[19])  # field 22
boot = open("/proc/sys/kernel/random/boot_id").read().strip()
record = [{"pgid": pid, "leadPid": pid, "name": "sleep", "leadStart": start, "at": 0, "boot": boot}]
json.dump({"refreshInterval": 1.0, "pausedGroups": json.dumps(record)}, open(sys.argv[2], "w"))
PY
}

expect_running() {
  [ "$(state "$pid")" != T ] || fail "group $pid still stopped after $1"
  kill -KILL "$pid"
  wait "$pid" 2>/dev/null || true
}

pause_sleeper
timeout 20 "$bin" --json --count 1 >"$home/line"
python3 - "$home/line" "$pid" <<'PY'
import json, sys
line = json.loads(open(sys.argv[1]).read())
assert [g["pgid"] for g in line["pausedGroups"]] == [int(sys.argv[2])], line["pausedGroups"]
assert line["pinnedProcesses"] == [], line["pinnedProcesses"]
PY
expect_running "a normal quit"

for sig in TERM INT HUP; do
  pause_sleeper
  : >"$log"
  "$bin" >/dev/null &
  app=$!
  for _ in $(seq 200); do grep -q 'started' "$log" 2>/dev/null && break; sleep 0.05; done
  kill -s "$sig" "$app"
  wait "$app" || fail "exit status $? after SIG$sig"
  expect_running "SIG$sig"
done
echo "quit_resume: all checks passed"
