#!/usr/bin/env bash
# Run under dbus-run-session: a private session bus. `quillmark --serve` on it answers every ctl
# verb, holds the name against a second instance, stops a group paused through ctl (state T in
# /proc) until resume-all, resumes a paused group when SIGTERM ends it, and when SIGKILL does,
# its guardian does.
set -euo pipefail
bin=$1
home=$(mktemp -d)
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state
mkdir -p "$XDG_CONFIG_HOME/quillmark"
echo '{"refreshInterval": 1.0}' >"$XDG_CONFIG_HOME/quillmark/settings.json"
log=$XDG_STATE_HOME/quillmark/Quillmark.log
pids=()
server=
cleanup() {
  [ -n "$server" ] && kill -KILL "$server" 2>/dev/null || true
  for p in "${pids[@]}"; do kill -CONT "$p" 2>/dev/null || true; kill -KILL "$p" 2>/dev/null || true; done
  rm -rf "$home"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; cat "$log" >&2 || true; exit 1; }
state() { sed 's/.*) //' "/proc/$1/stat" | cut -d' ' -f1; }
ctl() { "$bin" ctl "$@"; }
expect_status() {  # expect_status CODE ctl-args...
  local want=$1 got=0
  shift
  ctl "$@" >"$home/out" 2>"$home/err" || got=$?
  [ "$got" = "$want" ] || fail "ctl $* exited $got, not $want: $(cat "$home/err")"
}
sleeper() {  # sets $child: a `sleep` leading its own process group, like an application
  setsid sleep 60 </dev/null >/dev/null 2>&1 &
  child=$!
  pids+=("$child")
  for _ in $(seq 200); do [ "$(cat "/proc/$child/comm")" = sleep ] && break; sleep 0.01; done
}
start_server() {
  "$bin" --serve &
  server=$!
  for _ in $(seq 100); do ctl processes >/dev/null 2>&1 && return; sleep 0.05; done
  fail "--serve did not answer"
}

expect_status 3 snapshot  # nothing runs yet
expect_status 2 pause not-a-pid
expect_status 2 frobnicate
start_server

# The lock: a second instance refuses and leaves the first serving.
second=0
timeout 5 "$bin" --serve 2>"$home/err" || second=$?
[ "$second" = 1 ] && grep -q "another Quillmark" "$home/err" || fail "second --serve exited $second: $(cat "$home/err")"

# --serve has no panel to open.
expect_status 1 open-panel
grep -q "no panel" "$home/err" || fail "open-panel on --serve: $(cat "$home/err")"

expect_status 0 snapshot
python3 -c 'import json,sys; d=json.load(open(sys.argv[1])); assert "cpu" in json.dumps(d) and d["time"] > 0' "$home/out" ||
  fail "snapshot is not the --json line: $(head -c 300 "$home/out")"

sleeper
a=$child
expect_status 0 pause "$a"
[ "$(state "$a")" = T ] || fail "group $a not stopped after ctl pause"
expect_status 0 processes
python3 - "$home/out" <<'PY' || fail "processes is not a JSON list of rows"
import json, sys
rows = json.load(open(sys.argv[1]))
assert isinstance(rows, list) and rows and {"pid", "name", "cpuPercent", "memoryBytes", "paused", "pinned"} <= rows[0].keys(), rows[:1]
PY
expect_status 1 resume "$$"  # never paused by Quillmark
expect_status 1 pause 1      # init is never paused
expect_status 0 resume-all
[ "$(cat "$home/out")" = 1 ] || fail "resume-all reported $(cat "$home/out") groups"
[ "$(state "$a")" != T ] || fail "group $a still stopped after resume-all"
expect_status 0 pause "$a"
expect_status 0 resume "$a"
[ "$(state "$a")" != T ] || fail "group $a still stopped after resume"

# Terminate: unconfirmed is refused and leaves it running; --force ends it.
expect_status 1 terminate "$a"
grep -q "pre-authorised" "$home/err" || fail "unconfirmed terminate said: $(cat "$home/err")"
kill -0 "$a" || fail "unconfirmed terminate ended $a"
expect_status 0 terminate "$a" --force
for _ in $(seq 100); do kill -0 "$a" 2>/dev/null || break; wait "$a" 2>/dev/null || true; sleep 0.02; done
kill -0 "$a" 2>/dev/null && fail "terminate --force left $a running"
expect_status 1 terminate 1

expect_status 0 pin sleep
expect_status 0 pin sleep  # pinning twice is still one pin
expect_status 0 pin cat
expect_status 0 pin awk
expect_status 1 pin sed    # three is the most
expect_status 0 unpin cat
# The snapshot shows the pins from its next measurement on.
for _ in $(seq 40); do ctl snapshot | grep -q '"pinnedProcesses":\["sleep","awk"\]' && break; sleep 0.1; done
ctl snapshot | grep -q '"pinnedProcesses":\["sleep","awk"\]' || fail "pins in the snapshot: $(ctl snapshot | grep -o '"pinnedProcesses":[^]]*]')"

# SIGTERM with a group paused: the teardown resumes it before the exit.
sleeper
b=$child
expect_status 0 pause "$b"
[ "$(state "$b")" = T ] || fail "group $b not stopped"
kill -TERM "$server"
wait "$server" || fail "--serve exited $? after SIGTERM"
server=
[ "$(state "$b")" != T ] || fail "group $b still stopped after SIGTERM"
expect_status 3 processes  # the name went with it

# SIGKILL with a group paused: nothing of Quillmark's own runs, so its guardian thaws the group
# within two seconds and empties the stored list.
start_server
sleeper
c=$child
expect_status 0 pause "$c"
[ "$(state "$c")" = T ] || fail "group $c not stopped"
kill -KILL "$server"
wait "$server" 2>/dev/null || true
server=
for _ in $(seq 40); do [ "$(state "$c")" != T ] && break; sleep 0.05; done
[ "$(state "$c")" != T ] || fail "group $c still stopped two seconds after quillmark was killed"
for _ in $(seq 40); do grep -q '"pausedGroups": *"\[\]"' "$XDG_CONFIG_HOME/quillmark/settings.json" && break; sleep 0.05; done
grep -q '"pausedGroups": *"\[\]"' "$XDG_CONFIG_HOME/quillmark/settings.json" ||
  fail "the stored list still names the group: $(grep -o '"pausedGroups"[^]]*]' "$XDG_CONFIG_HOME/quillmark/settings.json")"
echo "scripting: all checks passed"
