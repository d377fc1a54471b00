#!/usr/bin/env bash
# The real quillmark against the real machine, as status bars run it: every output mode with a busy
# child process, the stop signals in every state, and a reader that stops reading.
set -euo pipefail
bin=$1
home=$(mktemp -d)
trap 'kill "${busy:-}" 2>/dev/null || true; rm -rf "$home"' EXIT
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state LANGUAGE=en
mkdir -p "$XDG_CONFIG_HOME/quillmark"
echo '{"refreshInterval": 1.0, "showNetSpeed": true}' >"$XDG_CONFIG_HOME/quillmark/settings.json"
log=$XDG_STATE_HOME/quillmark/Quillmark.log

fail() { echo "FAIL: $*" >&2; exit 1; }

# One busy child under a name of its own (the name of the link it runs as).
ln -s "$(command -v sh)" "$home/qm-busy"
"$home/qm-busy" -c 'while :; do :; done' &
busy=$!
sleep 0.3

# The first and only line of each mode reports the load of a measured second, not the 0 % of a
# first tick, and each parses the way its consumer reads it.
timeout 20 "$bin" --count 1 >"$home/text"
timeout 20 "$bin" --json --count 1 >"$home/json"
timeout 20 "$bin" --waybar --count 1 >"$home/waybar"
timeout 20 "$bin" --i3bar --count 1 >"$home/i3bar"
kill "$busy"
python3 - "$home" <<'PY'
import json, os, re, sys
home = sys.argv[1]
read = lambda name: open(os.path.join(home, name), encoding="utf-8").read()
# A first-tick line says 0 for the machine and for every process. The busy child's share of the
# machine may be small (many cores) and its own load too (a loaded machine), but never 0.
least = max(1, 25 // os.cpu_count())

text = read("text")
m = re.fullmatch(r"CPU (\d+)% MEM (\d+)%  ↓[0-9.]+[BKM] ↑[0-9.]+[BKM]\n", text)
assert m and int(m.group(1)) >= least, text

snapshot = json.loads(read("json"))
assert snapshot["cpu"]["total"] >= least, snapshot["cpu"]
assert len(snapshot["cpu"]["perCore"]) == os.cpu_count(), snapshot["cpu"]
assert snapshot["memory"]["total"] > 0 and snapshot["diskTotal"] > 0
assert snapshot["processesScanned"] is True
# A GPU's load is reported when some GPU in the list has one; this machine may have none.
assert isinstance(snapshot["sensors"], list) and isinstance(snapshot["gpus"], list)
assert (snapshot["gpu"] is None) == all(g["busyPercent"] is None for g in snapshot["gpus"]), snapshot["gpus"]
assert snapshot["pressure"] in ("normal", "warning", "critical") and isinstance(snapshot["insights"], list)
busy = [p for p in snapshot["processes"] if p["name"] == "qm-busy"]
assert busy and busy[0]["cpuPercent"] >= 1, busy

# waybar reads one object per line; "class" may be a list of strings.
lines = read("waybar").splitlines()
assert len(lines) == 1, lines
waybar = json.loads(lines[0])
assert isinstance(waybar["percentage"], int) and waybar["percentage"] >= least, waybar
assert re.fullmatch(r"CPU \d+% MEM \d+%  ↓\S+ ↑\S+", waybar["text"]), waybar
assert all(c in ("cpu-high", "mem-high", "hot") for c in waybar["class"]), waybar
# Its busiest processes (the child, unless the machine is busier still) with measured loads.
loads = re.findall(r"^  .+ (\d+)%$", waybar["tooltip"], re.M)
assert len(loads) == 3 and int(loads[0]) >= 1, waybar["tooltip"]

# i3bar: the header line, then one array, read incrementally element by element.
header, body = read("i3bar").split("\n", 1)
assert json.loads(header) == {"version": 1}, header
decoder, pos, elements = json.JSONDecoder(), body.index("[") + 1, []
while True:
    while body[pos] in " \n,":
        pos += 1
    if body[pos] == "]":
        break
    element, pos = decoder.raw_decode(body, pos)
    elements.append(element)
assert len(elements) == 1, elements
cpu = elements[0][0]
assert cpu["name"] == "cpu" and int(re.search(r"\d+", cpu["full_text"]).group()) >= least, cpu
assert all("full_text" in b and "short_text" in b and "instance" in b for b in elements[0])
PY

# The stop signals end it cleanly (status 0, a "stopped" line in the log) within a second, in every
# state: priming, running, and with a reader that stopped reading and left the pipe full.
python3 - "$bin" "$log" <<'PY'
import fcntl, json, os, signal, subprocess, sys, time
binary, log = sys.argv[1], sys.argv[2]
F_SETPIPE_SZ = 1031

def run(sig, after, stall, drain_after=None):
    r, w = os.pipe()
    fcntl.fcntl(w, F_SETPIPE_SZ, 4096)  # small, so one JSON line fills it
    child = subprocess.Popen([binary, "--json"], stdout=w)
    os.close(w)
    time.sleep(after)
    received = b""
    if drain_after is not None:  # the reader wakes up again and catches up
        os.set_blocking(r, False)
        end = time.monotonic() + drain_after
        while time.monotonic() < end:
            try:
                received += os.read(r, 65536)
            except BlockingIOError:
                time.sleep(0.05)
    sent = time.monotonic()
    child.send_signal(sig)
    try:
        status = child.wait(timeout=5)
    except subprocess.TimeoutExpired:
        child.kill()
        sys.exit(f"FAIL: still running 5 s after {sig.name} (stalled reader: {stall})")
    took = time.monotonic() - sent
    os.close(r)
    assert status == 0, f"status {status} after {sig.name}"
    assert took < 1.0, f"{sig.name} took {took:.2f} s"
    return received

before = open(log).read().count("Quillmark stopped")
run(signal.SIGINT, 0.3, stall=False)                # while priming
run(signal.SIGTERM, 2.5, stall=True)                # the pipe has been full for a second
run(signal.SIGHUP, 2.5, stall=True)                 # a closed terminal
# Three lines or more while stalled: the oldest is half out, the middle ones are dropped.
received = run(signal.SIGTERM, 4.2, stall=True, drain_after=2.0)
text = open(log).read()
assert text.count("Quillmark stopped") == before + 4, "a stop without its log line"
assert "lines were dropped" in text, "no line about the dropped lines"
# What reached the reader is whole snapshots, one per line, never cut or mixed (the reader stopped
# reading again at some moment, perhaps within the line then on its way).
lines = received.split(b"\n")[:-1]
assert len(lines) >= 2, received[-200:]
for line in lines:
    json.loads(line)
PY

# A reader that goes away ends it (status 1, a failed write) instead of leaving it running.
set +e
timeout 20 "$bin" | head -n 1 >/dev/null
status=${PIPESTATUS[0]}
set -e
[ "$status" -eq 1 ] || fail "status $status when its reader went away (124 means it kept running)"

# The log says how memory pressure is watched (a PSI trigger, polling, or no PSI at all).
grep -qE 'Memory pressure: (PSI trigger|.*polling avg10|.*missing or unreadable)' "$log" ||
  fail "the log does not say how memory pressure is watched"
echo "quillmark_cli: all checks passed"
