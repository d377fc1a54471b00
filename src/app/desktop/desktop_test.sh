#!/usr/bin/env bash
# Run under dbus-run-session: the desktop program on a private Xvfb and a private session bus.
# The first launch shows the first-run card once. Plain `quillmark` in a graphical session
# without any tray says so once and prints the status line; `ctl open-panel` shows the 400 × 668 panel at the top right of the work area, Escape
# closes it, a second `quillmark` opens the first one's panel and exits 0; under a window manager
# that reserves a bottom strip the card stands on the strip with its arrow underneath; at
# GDK_SCALE=2 the window has twice the pixels; under a Wayland compositor without layer-shell the
# windows go through X11; SIGTERM resumes a group paused through the bus.
# Screenshots are kept in OUTDIR. Skipped (77) without Xvfb or python3-xlib.
set -euo pipefail
# Under ThreadSanitizer (the tsan preset sets TSAN_OPTIONS): GLib locks its recursive mutexes in
# calls TSan is told to ignore, and unlocks them by tail calls that it sees as coming from GTK,
# GDK, GIO, libffi, libwayland...: every GTK program then shows an "unlock of an unlocked mutex" that
# is not one. Mutex-misuse reports are off for the GTK program only; races are still reported.
[ -n "${TSAN_OPTIONS:-}" ] && export TSAN_OPTIONS="$TSAN_OPTIONS:report_mutex_bugs=0"
bin=$1
outdir=$2
here=$(cd "$(dirname "$0")" && pwd)
python=
for candidate in /usr/bin/python3 python3; do
  if "$candidate" -c 'import Xlib' 2>/dev/null; then python=$candidate; break; fi
done
[ -x /usr/bin/Xvfb ] || { echo "SKIP: Xvfb is not installed (package xvfb)"; exit 77; }
[ -n "$python" ] || { echo "SKIP: python3-xlib is not installed"; exit 77; }
mkdir -p "$outdir"
home=$(mktemp -d)
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state NO_AT_BRIDGE=1
unset WAYLAND_DISPLAY GDK_BACKEND GDK_SCALE
mkdir -p "$XDG_CONFIG_HOME/quillmark"
log=$XDG_STATE_HOME/quillmark/Quillmark.log
xvfb= app= wm= child= compositor=
cleanup() {
  [ -n "$app" ] && kill -KILL "$app" 2>/dev/null || true
  [ -n "$wm" ] && kill "$wm" 2>/dev/null || true
  [ -n "$child" ] && { kill -CONT "$child" 2>/dev/null || true; kill -KILL "$child" 2>/dev/null || true; }
  [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null || true
  [ -n "$compositor" ] && kill "$compositor" 2>/dev/null || true
  rm -rf "$home"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; tail -n 30 "$log" >&2 || true; cat "$home/err" >&2 2>/dev/null || true; exit 1; }
x11() { "$python" "$here/desktop_x11.py" "$@"; }
state() { sed 's/.*) //' "/proc/$1/stat" | cut -d' ' -f1; }

start_xvfb() {  # start_xvfb WxH
  exec 3>"$home/display"
  /usr/bin/Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp >/dev/null 2>&1 &
  xvfb=$!
  exec 3>&-
  for _ in $(seq 200); do [ -s "$home/display" ] && break; sleep 0.05; done
  [ -s "$home/display" ] || fail "Xvfb did not start"
  export DISPLAY=:$(head -n1 "$home/display")
}
stop_xvfb() { kill "$xvfb"; wait "$xvfb" 2>/dev/null || true; xvfb=; rm -f "$home/display"; }
# shellcheck source=desktop_test_app.sh
. "$here/desktop_test_app.sh"
panel_at() {  # panel_at "X Y W H": opens the panel and checks where it is
  "$bin" ctl open-panel || fail "ctl open-panel failed"
  local geometry
  geometry=$(x11 wait-window quillmark-panel present 30) || fail "no panel window appeared"
  [ "$geometry" = "$1" ] || fail "panel at $geometry, expected $1"
}
shot() {  # shot NAME "X Y W H": keeps a screenshot and checks that it shows a drawn card
  local colours lit
  read -r colours lit < <(x11 shot "$outdir/$1.png" $2)
  "$python" -c "import sys; sys.exit(0 if int(sys.argv[1]) > 50 and float(sys.argv[2]) > 0.8 else 1)" \
    "$colours" "$lit" || fail "$1.png looks blank: $colours colours, $lit of it lit"
}

# 0. The first launch shows the first-run card once under the tray's likely place (the top-right
# corner here), the next launch never does.
start_xvfb 1280x800
echo '{"refreshInterval": 1.0}' >"$XDG_CONFIG_HOME/quillmark/settings.json"
start_app --desktop
geometry=$(x11 wait-window quillmark-tip present 30) || fail "no first-run card on the first launch"
[ "$geometry" = "992 24 280 158" ] || fail "first-run card at $geometry"
shot desktop-tip "992 24 280 158"
stop_app
start_app --desktop
sleep 3  # the card would come 1.2 s after start
[ -z "$(x11 wait-window quillmark-tip present 0.5 || true)" ] || fail "the first-run card came again"
stop_app
stop_xvfb

# 1. No tray on this bus: said once, then the status line on standard output; the panel opens
# under the top-right corner (no panels reserve any strip here) and Escape closes it.
start_xvfb 1280x800
start_app
for _ in $(seq 100); do grep -q "CPU" "$home/out" && break; sleep 0.1; done
grep -q "CPU" "$home/out" || fail "no status line without a tray: $(cat "$home/out")"
[ "$(grep -c "no system tray" "$home/err")" = 1 ] || fail "the missing tray was not reported once"
panel_at "872 24 400 668"
sleep 2  # a refresh with the panel open, so the figures are in
shot desktop-panel "872 24 400 668"
x11 press Escape
x11 wait-window quillmark-panel gone 30 >/dev/null || fail "Escape did not close the panel"

# 2. A second start opens the running one's panel and exits 0 at once.
second=0
timeout 20 "$bin" 2>>"$home/err" || second=$?
[ "$second" = 0 ] || fail "a second quillmark exited $second"
x11 wait-window quillmark-panel present 30 >/dev/null || fail "a second start did not open the panel"
stop_app

# 3. A bottom panel 40 px high: the card stands on it, its arrow underneath at the right.
coproc WM { x11 hold-work-area 0 0 1280 760; }
wm=$WM_PID
read -r ready <&"${WM[0]}"
[ "$ready" = ready ] || fail "the fake window manager did not start"
start_app --desktop
panel_at "872 92 400 668"
shot desktop-panel-bottom "872 92 400 668"
read -r r g b < <(x11 pixel $((872 + 376)) $((92 + 666)))
[ "$r$g$b" != 000 ] || fail "no arrow under the card's bottom edge"
read -r r g b < <(x11 pixel $((872 + 200)) $((92 + 666)))
[ "$r$g$b" = 000 ] || fail "the card's bottom edge is not shaped around the arrow"

# 4. SIGTERM while a group is paused through the bus: it runs again once quillmark has gone.
setsid sleep 120 </dev/null >/dev/null 2>&1 &
child=$!
for _ in $(seq 100); do [ "$(cat "/proc/$child/comm")" = sleep ] && break; sleep 0.01; done
"$bin" ctl pause "$child" || fail "ctl pause failed"
for _ in $(seq 100); do [ "$(state "$child")" = T ] && break; sleep 0.05; done
[ "$(state "$child")" = T ] || fail "the group was not stopped"
stop_app
[ "$(state "$child")" != T ] || fail "the group stayed stopped after SIGTERM"
kill "$wm" 2>/dev/null || true
wm=
stop_xvfb

# 5. At GDK_SCALE=2 the same panel has twice the pixels in each direction.
start_xvfb 2560x1600
GDK_SCALE=2 start_app --desktop
panel_at "1744 48 800 1336"
shot desktop-panel-2x "1744 48 800 1336"
stop_app
stop_xvfb

# 6. Under a Wayland compositor without layer-shell (a stand-in that announces no globals) the
# windows go through X11, to the same place.
coproc COMPOSITOR { exec "$python" "$here/wayland_stub.py" "$home/wayland-stub"; }
compositor=$COMPOSITOR_PID
read -r ready <&"${COMPOSITOR[0]}"
[ "$ready" = ready ] || fail "the stand-in compositor did not start"
start_xvfb 1280x800
WAYLAND_DISPLAY=$home/wayland-stub start_app --desktop
panel_at "872 24 400 668"
stop_app
stop_xvfb
kill "$compositor" 2>/dev/null || true
compositor=

# 7. A tray host on the bus (the mock watcher of tray_test.py) under a 24 px top bar: the item
# registers, its menu is there, a click in the bar hangs the panel from the bar under the click,
# a second click closes it, ContextMenu pops the menu up, and nothing is said about a missing tray.
if "$python" -c 'import dbus, gi' 2>/dev/null; then
  start_xvfb 1280x800
  coproc WM { x11 hold-work-area 0 24 1280 776; }
  wm=$WM_PID
  read -r ready <&"${WM[0]}"
  [ "$ready" = ready ] || fail "the fake window manager did not start"
  coproc WATCHER { "$python" "$here/tray_test.py" watcher; }
  watcher=$WATCHER_PID
  read -r ready <&"${WATCHER[0]}"
  [ "$ready" = "watcher ready" ] || fail "the mock tray host did not start"
  start_app --desktop
  read -r -t 30 registered service _ <&"${WATCHER[0]}" || fail "the item did not register with the tray host"
  [ "$registered" = registered ] || fail "the tray host heard: $registered $service"
  tray() { "$python" "$here/tray_test.py" item "$service" "$@"; }
  menu=$(tray menu) || fail "no menu on the item"
  [[ "$menu" == Quillmark\|-\|*\|Quit\ Quillmark ]] || fail "the item's menu is $menu"
  tray activate 600 12 || fail "Activate failed"
  geometry=$(x11 wait-window quillmark-panel present 30) || fail "no panel after a tray click"
  [ "$geometry" = "400 24 400 668" ] || fail "panel at $geometry after a click at 600, 12"
  sleep 0.5  # past the reopen debounce
  tray activate 600 12 || fail "the second Activate failed"
  x11 wait-window quillmark-panel gone 30 >/dev/null || fail "a second click did not close the panel"
  # A host that asks the item to show its own menu gets a popup menu.
  tray context-menu 600 12 || fail "ContextMenu failed"
  x11 wait-window popup-menu present 30 >/dev/null || fail "no menu popped up for ContextMenu"
  x11 press Escape
  ! grep -q "no system tray" "$home/err" || fail "a missing tray was reported with a tray host there"
  stop_app
  kill "$watcher" "$wm" 2>/dev/null || true
  wm=
fi
echo "desktop program: all checks passed; screenshots in $outdir"
