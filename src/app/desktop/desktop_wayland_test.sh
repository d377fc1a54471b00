#!/usr/bin/env bash
# Run under dbus-run-session: the desktop program on a private headless sway (a wlroots compositor
# with layer-shell) and a private session bus. With DISPLAY naming no X server the program must
# choose native Wayland by itself. The first-run card and the panel appear as layer surfaces where
# the X11 path puts them (top right of the output) and nowhere else; the card takes a click on its
# button; keys reach the panel (Escape closes it) and a click elsewhere takes its focus away and
# closes it; the tray menu a host asks for hangs from the top-right corner; ctl works throughout
# and SIGTERM ends the program with status 0. Screenshots are kept in OUTDIR. Skipped (77) without
# sway, grim, wtype or python3, or when sway cannot start here.
set -euo pipefail
# Under ThreadSanitizer (the tsan preset sets TSAN_OPTIONS): GLib locks its recursive mutexes in
# calls TSan is told to ignore, and unlocks them by tail calls that it sees as coming from GTK,
# GDK, GIO, libffi, libwayland...: every GTK program then shows an "unlock of an unlocked mutex" that
# is not one. Mutex-misuse reports are off for the GTK program only; races are still reported.
[ -n "${TSAN_OPTIONS:-}" ] && export TSAN_OPTIONS="$TSAN_OPTIONS:report_mutex_bugs=0"
bin=$1
outdir=$2
here=$(cd "$(dirname "$0")" && pwd)
for tool in sway swaymsg grim wtype dbus-send python3; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
mkdir -p "$outdir"
home=$(mktemp -d)
runtime=$home/runtime
mkdir -m 700 "$runtime"
export XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state NO_AT_BRIDGE=1
export XDG_RUNTIME_DIR=$runtime WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman
unset GDK_BACKEND GDK_SCALE WAYLAND_DISPLAY WAYLAND_SOCKET SWAYSOCK
# An X display that does not exist: a program that fell back to XWayland would fail to start.
export DISPLAY=:qm-no-such-display
mkdir -p "$XDG_CONFIG_HOME/quillmark"
log=$XDG_STATE_HOME/quillmark/Quillmark.log
sway= app= typer=
cleanup() {
  [ -n "$app" ] && kill -KILL "$app" 2>/dev/null || true
  [ -n "$typer" ] && kill "$typer" 2>/dev/null || true
  [ -n "$sway" ] && kill "$sway" 2>/dev/null || true
  rm -rf "$home"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; tail -n 30 "$log" >&2 || true; cat "$home/err" >&2 2>/dev/null || true; exit 1; }

# sway refuses to run as root; there it runs as nobody, in a runtime folder of nobody's.
as_user=()
if [ "$(id -u)" = 0 ]; then
  command -v setpriv >/dev/null || { echo "SKIP: running as root without setpriv to start sway"; exit 77; }
  chown nobody "$runtime" "$home"
  as_user=(setpriv --reuid=nobody --regid="$(id -g nobody)" --clear-groups)
fi
cat >"$home/sway.conf" <<'CONF'
output HEADLESS-1 resolution 1280x800 position 0,0
xwayland disable
CONF
chmod 644 "$home/sway.conf"
HOME=$home "${as_user[@]}" sway -c "$home/sway.conf" >"$home/sway.log" 2>&1 &
sway=$!
for _ in $(seq 100); do
  socket=$(ls "$runtime"/sway-ipc.*.sock 2>/dev/null || true)
  [ -n "$socket" ] && [ -S "$runtime/wayland-1" ] && SWAYSOCK=$socket swaymsg -t get_outputs >/dev/null 2>&1 && break
  kill -0 "$sway" 2>/dev/null || break
  socket=
  sleep 0.1
done
if [ -z "$socket" ]; then
  echo "SKIP: sway could not start here:"
  tail -n 5 "$home/sway.log"
  exit 77
fi
export SWAYSOCK=$socket WAYLAND_DISPLAY=wayland-1

# shellcheck source=desktop_test_app.sh
. "$here/desktop_test_app.sh"
measure() {  # measure NAME [X Y W H]: screenshot to OUTDIR/NAME.png; sets colours, lit, stray
  read -r colours lit stray < <(grim -t ppm - | python3 "$here/desktop_wayland_shot.py" "$outdir/$1.png" ${2:-})
}
drawn_at() {  # drawn_at NAME "X Y W H" [FILLED]: waits until something fills at least FILLED
  # (0.8: a card) of the box with many colours, then checks that nothing shows elsewhere
  local enough="import sys; sys.exit(0 if int(sys.argv[1]) > 20 and float(sys.argv[2]) > float(sys.argv[3]) else 1)"
  for _ in $(seq 50); do
    measure "$1" "$2"
    python3 -c "$enough" "$colours" "$lit" "${3:-0.8}" && break
    sleep 0.1
  done
  python3 -c "$enough" "$colours" "$lit" "${3:-0.8}" || fail "$1.png: nothing at $2 ($colours colours, $lit of it drawn)"
  [ "$stray" = 0 ] || fail "$1.png: $stray pixels drawn outside $2"
}
screen_clears() {  # screen_clears NAME WHAT: waits until nothing is drawn on the output
  for _ in $(seq 50); do
    measure "$1"
    [ "$stray" = 0 ] && return
    sleep 0.1
  done
  fail "$1.png: $2 ($stray pixels still drawn)"
}
click() {  # click X Y: the seat's pointer presses and releases the left button there
  swaymsg -q seat seat0 cursor set "$1" "$2"
  swaymsg -q seat seat0 cursor press button1
  swaymsg -q seat seat0 cursor release button1
}

echo '{"refreshInterval": 1.0}' >"$XDG_CONFIG_HOME/quillmark/settings.json"
start_app --desktop

# 1. The first-run card under the tray's likely place, as on X11; its button takes a click that
# lands where the card is drawn, and the card goes.
drawn_at wayland-tip "992 24 280 158"
click 1197 156
screen_clears wayland-tip-dismissed "the first-run card stayed after a click on its button"

# 2. The panel where the X11 path puts it; ctl answers while it is open.
"$bin" ctl open-panel || fail "ctl open-panel failed"
drawn_at wayland-panel "872 24 400 668"
"$bin" ctl processes >/dev/null || fail "ctl processes failed with the panel open"

# 3. The panel has the keyboard: Escape from a keyboard that stays plugged in closes it.
wtype -s 500 -k Escape -s 60000 &
typer=$!
screen_clears wayland-panel-escape "Escape did not close the panel"
kill "$typer"
wait "$typer" 2>/dev/null || true
typer=

# 4. A click outside the panel takes the focus away from it, which closes it.
wtype -s 60000 &
typer=$!
"$bin" ctl open-panel || fail "ctl open-panel failed"
drawn_at wayland-panel-again "872 24 400 668"
click 200 500
screen_clears wayland-panel-click-outside "a click outside did not close the panel"
kill "$typer"
wait "$typer" 2>/dev/null || true
typer=

# 5. A tray host that asks the item for its menu (ContextMenu) gets a GTK menu hanging from the
# top-right corner, which a click elsewhere closes.
item=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
  org.freedesktop.DBus.ListNames | grep -o 'org\.kde\.StatusNotifierItem-[0-9-]*' | head -n1)
[ -n "$item" ] || fail "no StatusNotifierItem on the bus"
dbus-send --session --print-reply --dest="$item" /StatusNotifierItem \
  org.kde.StatusNotifierItem.ContextMenu int32:0 int32:0 >/dev/null || fail "ContextMenu failed"
drawn_at wayland-menu "640 0 640 400" 0.05
click 200 500
screen_clears wayland-menu-closed "a click outside did not close the menu"

"$bin" ctl open-panel || fail "ctl open-panel failed after the panel closed"
drawn_at wayland-panel-last "872 24 400 668"
stop_app
echo "PASS"
