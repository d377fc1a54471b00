#!/usr/bin/env bash
# The real quillmark against the real machine, as a status bar would run it.
set -euo pipefail
bin=$1
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state
mkdir -p "$XDG_CONFIG_HOME/quillmark"
echo '{"refreshInterval": 1.0, "showNetSpeed": true}' >"$XDG_CONFIG_HOME/quillmark/settings.json"

fail() { echo "FAIL: $*" >&2; exit 1; }

# Text mode: one status line per tick, with rates since showNetSpeed is on.
out=$(timeout 20 "$bin" --count 2)
[ "$(wc -l <<<"$out")" -eq 2 ] || fail "expected 2 lines, got: $out"
grep -qE '^CPU [0-9]+% MEM [0-9]+%  ↓[0-9.]+[BKM] ↑[0-9.]+[BKM]$' <<<"$out" || fail "bad status line: $out"

# JSON mode: every line parses and carries real figures from this machine.
timeout 20 "$bin" --json --count 2 >"$home/lines"
[ "$(wc -l <"$home/lines")" -eq 2 ] || fail "expected 2 JSON lines"
python3 - "$home/lines" <<'PY'
import json, os, sys
lines = [json.loads(l) for l in open(sys.argv[1])]
last = lines[-1]
assert last["memory"]["total"] > 0, last["memory"]
assert last["diskTotal"] > 0
assert len(last["cpu"]["perCore"]) == os.cpu_count(), last["cpu"]
assert any(p["pid"] == os.getppid() or p["pid"] > 1 for p in lines[0]["processes"])
assert lines[0]["processesScanned"] is True
assert last["gpu"] is None
PY

# SIGTERM and SIGINT end it cleanly with status 0, and the log says so.
for sig in TERM INT; do
  "$bin" >/dev/null &
  pid=$!
  sleep 1.5
  kill -s $sig $pid
  wait $pid || fail "exit status $? after SIG$sig"
done
grep -q 'Quillmark stopped' "$XDG_STATE_HOME/quillmark/Quillmark.log" || fail "no stop line in the log"

# A reader that goes away ends it (status 1, a failed write) instead of leaving it running.
set +e
timeout 20 "$bin" | head -n 1 >/dev/null
status=${PIPESTATUS[0]}
set -e
[ "$status" -eq 1 ] || fail "status $status when its reader went away (124 means it kept running)"

# Bad options are refused with status 2.
set +e
"$bin" --bogus 2>/dev/null
[ $? -eq 2 ] || fail "unknown option not refused"
echo "quillmark_cli: all checks passed"
