#!/usr/bin/env bash
# What the desktop program costs the machine: its CPU time (utime + stime from /proc/PID/stat)
# over a stretch with the panel closed and one with the panel open, at the default refresh
# interval, and its resident memory (VmRSS, VmHWM) with the panel open. Runs the program on a
# private Xvfb and session bus; the machine's own desktop is never touched.
#
#   bench/desktop_cost.sh [-d seconds-per-phase] [-s gdk-scale] BINARY
#   e.g. bench/desktop_cost.sh -d 180 build/release/src/app/frontend/quillmark
#
# Targets: at most 0.1 % of one core closed, 0.5 % open, 40 MB resident open.
set -euo pipefail
duration=120
scale=1
while getopts "d:s:" opt; do
  case $opt in
    d) duration=$OPTARG ;;
    s) scale=$OPTARG ;;
    *) exit 2 ;;
  esac
done
shift $((OPTIND - 1))
[ $# -eq 1 ] || { echo "usage: $0 [-d seconds] [-s scale] BINARY" >&2; exit 2; }
bin=$(realpath "$1")
if [ -z "${QM_COST_INNER:-}" ]; then
  QM_COST_INNER=1 exec dbus-run-session -- "$0" -d "$duration" -s "$scale" "$bin"
fi

work=$(mktemp -d)
xvfb= app=
cleanup() {
  [ -n "$app" ] && kill "$app" 2>/dev/null || true
  [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export XDG_CONFIG_HOME=$work/config XDG_STATE_HOME=$work/state NO_AT_BRIDGE=1 GDK_SCALE=$scale
unset WAYLAND_DISPLAY GDK_BACKEND
mkdir -p "$XDG_CONFIG_HOME/quillmark"
echo '{"hasLaunchedBefore": true}' >"$XDG_CONFIG_HOME/quillmark/settings.json"  # the default interval

exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 2560x1600x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
exec 3>&-
for _ in $(seq 200); do [ -s "$work/display" ] && break; sleep 0.05; done
export DISPLAY=:$(head -n1 "$work/display")

"$bin" --desktop >/dev/null 2>&1 &
app=$!
for _ in $(seq 200); do "$bin" ctl processes >/dev/null 2>&1 && break; sleep 0.1; done

ticks=$(getconf CLK_TCK)
cpu_ticks() { sed 's/.*) //' "/proc/$app/stat" | awk '{ print $12 + $13 }'; }  # utime + stime
measure() {  # measure NAME: CPU % of one core over the phase
  local before after
  before=$(cpu_ticks)
  sleep "$duration"
  after=$(cpu_ticks)
  awk -v a="$before" -v b="$after" -v t="$ticks" -v d="$duration" -v n="$1" \
    'BEGIN { printf "%-13s %6.3f %% of one core (%d ticks in %d s)\n", n, (b - a) / t / d * 100, b - a, d }'
}
memory() { grep -E '^(VmRSS|VmHWM)' "/proc/$app/status" | awk '{ printf "%s %.1f MB  ", $1, $2 / 1024 }'; echo; }

sleep 10  # start-up and the first measurements are not the steady state
echo "quillmark desktop program, default refresh interval, GDK_SCALE=$scale, $duration s per phase"
measure "panel closed"
memory
"$bin" ctl open-panel
sleep 5
measure "panel open"
printf 'panel open    '
memory
