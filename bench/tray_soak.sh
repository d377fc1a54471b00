#!/usr/bin/env bash
# The tray item's own CPU time with the panel closed, as a share of one core: tray_probe (the real
# MenuBarController and tray path) changes its figures every second, as sampling at the fastest
# interval would, on a private bus with a mock watcher and a host that fetches the images and tool
# tip again at every announcement, as Plasma does. Measures; never asserts.
#   bench/tray_soak.sh build/debug/src/app/desktop/tray_probe [seconds] [icon]
set -euo pipefail
probe=$1 seconds=${2:-60} mode=${3:-text}
here=$(cd "$(dirname "$0")/.." && pwd)
exec dbus-run-session -- /usr/bin/python3 - "$probe" "$seconds" "$mode" "$here/src/app/desktop/tray_test.py" <<'PY'
import os, subprocess, sys, time
import dbus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

probe, seconds, mode, test = sys.argv[1], float(sys.argv[2]), sys.argv[3], sys.argv[4]
DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
watcher = subprocess.Popen([sys.executable, test, "watcher"], stdout=subprocess.DEVNULL)
while not bus.name_has_owner("org.kde.StatusNotifierWatcher"):
    time.sleep(0.05)
env = dict(os.environ, QM_TRAY_PROBE_TICK="1")
if mode == "icon":
    env["QM_TRAY_PROBE_ICON"] = "1"
item_proc = subprocess.Popen([probe], stdout=subprocess.DEVNULL, env=env)
counts = {}
fetched = [0]

def on_signal(*args, **kw):
    member, sender = kw["member"], kw["sender"]
    counts[member] = counts.get(member, 0) + 1
    prop = {"NewIcon": "IconPixmap", "NewToolTip": "ToolTip", "XAyatanaNewLabel": "XAyatanaLabel"}.get(member)
    if prop:
        value = bus.get_object(sender, "/StatusNotifierItem").Get(
            "org.kde.StatusNotifierItem", prop, dbus_interface="org.freedesktop.DBus.Properties")
        if prop == "IconPixmap":
            fetched[0] += sum(len(p[2]) for p in value)

bus.add_signal_receiver(on_signal, dbus_interface="org.kde.StatusNotifierItem", member_keyword="member",
                        sender_keyword="sender")

def cpu_seconds(pid):
    fields = open(f"/proc/{pid}/stat").read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

loop = GLib.MainLoop()
GLib.timeout_add(3000, loop.quit)  # settle: registration, first drawing
loop.run()
counts.clear()
fetched[0] = 0
start, t0 = cpu_seconds(item_proc.pid), time.monotonic()
GLib.timeout_add(int(seconds * 1000), loop.quit)
loop.run()
used, elapsed = cpu_seconds(item_proc.pid) - start, time.monotonic() - t0
print(f"mode {mode}: {used:.2f} s CPU in {elapsed:.0f} s = {100 * used / elapsed:.3f} % of one core; "
      f"signals {counts}; host fetched {fetched[0] / 1024:.0f} KiB of pixmaps")
item_proc.terminate()
watcher.terminate()
PY
