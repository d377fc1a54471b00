#!/usr/bin/python3
"""The tray item (tray_probe) against a mock StatusNotifierWatcher and host on a private bus.

Run under dbus-run-session. With the argument "watcher" this script is the mock watcher itself,
run as a separate process so that it can really go away and come back.
"""
import os
import subprocess
import sys
import time

try:
    import dbus
    import dbus.service
    from dbus.mainloop.glib import DBusGMainLoop
    from gi.repository import GLib
except ImportError as e:
    print(f"skipped: {e}")
    sys.exit(77)

DBusGMainLoop(set_as_default=True)
WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
PROPS = "org.freedesktop.DBus.Properties"


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        self.name = dbus.service.BusName(WATCHER, bus)
        super().__init__(bus, "/StatusNotifierWatcher")

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        print(f"registered {service} {sender}", flush=True)

    @dbus.service.method(PROPS, in_signature="ss", out_signature="v")
    def Get(self, interface, prop):
        if prop == "IsStatusNotifierHostRegistered":
            return dbus.Boolean(True)
        raise dbus.exceptions.DBusException("no such property", name="org.freedesktop.DBus.Error.InvalidArgs")


def run_watcher():
    bus = dbus.SessionBus()
    Watcher(bus)
    print("watcher ready", flush=True)
    GLib.MainLoop().run()


class Lines:
    """A child's stdout, read line by line while the GLib loop delivers bus signals."""

    def __init__(self, args):
        self.proc = subprocess.Popen(args, stdout=subprocess.PIPE)
        self.lines = []
        self.partial = b""
        GLib.io_add_watch(self.proc.stdout.fileno(), GLib.IO_IN | GLib.IO_HUP, self._read)

    def _read(self, fd, condition):
        # Raw reads: a buffered reader would hold lines back from the readiness watch.
        chunk = os.read(fd, 65536)
        if not chunk:
            return False
        *complete, self.partial = (self.partial + chunk).split(b"\n")
        self.lines.extend(line.decode() for line in complete)
        return True

    def count(self, line):
        return self.lines.count(line)


failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print(f"FAIL: {what}", flush=True)


def wait_for(predicate, what, seconds=30):
    deadline = time.monotonic() + seconds
    context = GLib.MainContext.default()
    while time.monotonic() < deadline:
        if predicate():
            return True
        context.iteration(False) or time.sleep(0.01)
    check(False, f"waited in vain for {what}")
    return False


def flatten(layout, depth=0, out=None):
    """(id, properties, children) in reading order, with their depth."""
    out = [] if out is None else out
    item_id, props, children = layout
    out.append((int(item_id), dict(props), depth, [c[0] for c in children]))
    for child in children:
        flatten(child, depth + 1, out)
    return out


class Portal(dbus.service.Object):
    """Just enough of the settings portal to announce a change of colour scheme."""

    @dbus.service.signal("org.freedesktop.portal.Settings", signature="ssv")
    def SettingChanged(self, namespace, key, value):
        pass


def pixmap_ok(pixmaps, wide, light=True):
    sizes = [(int(w), int(h)) for w, h, _ in pixmaps]
    check(len(pixmaps) >= 3, f"several pixmap sizes, got {sizes}")
    check(len(set(h for _, h in sizes)) == len(sizes), f"one pixmap per height, got {sizes}")
    for w, h, data in pixmaps:
        data = bytes(data)
        check(len(data) == w * h * 4, f"{w}x{h} pixmap carries {len(data)} bytes")
        check((w > h) if wide else (w == h), f"{'wide' if wide else 'square'} pixmap, got {w}x{h}")
        pixels = [data[i:i + 4] for i in range(0, len(data), 4)]
        opaque = [p for p in pixels if p[0] == 255]
        # Alpha leads each pixel; light glyphs on the default dark panel.
        check(len(opaque) > 0, f"{w}x{h}: some pixel has alpha 255 in its first byte")
        if light:
            check(all(min(p[1:]) > 200 for p in opaque), f"{w}x{h}: opaque pixels are light")
        else:
            check(all(max(p[1:]) < 80 for p in opaque), f"{w}x{h}: opaque pixels are dark")
        check(all(p == b"\0\0\0\0" for p in pixels if p[0] == 0), f"{w}x{h}: transparent pixels are zero")


def main():
    probe_path = sys.argv[1]
    bus = dbus.SessionBus()
    signals = []
    bus.add_signal_receiver(lambda *a, **k: signals.append(k["member"]), dbus_interface=ITEM,
                            member_keyword="member")
    bus.add_signal_receiver(lambda *a, **k: signals.append(k["member"]), dbus_interface=MENU,
                            member_keyword="member")

    # No watcher yet: the probe says so, once.
    probe = Lines([probe_path])
    wait_for(lambda: "shown 0" in probe.lines, "the missing watcher to be reported")

    watcher = Lines([sys.executable, __file__, "watcher"])
    wait_for(lambda: any(l.startswith("registered ") for l in watcher.lines), "the registration")
    wait_for(lambda: "shown 1" in probe.lines, "the item to be reported shown")
    check(probe.count("shown 0") == 1, f"no watcher reported once, got {probe.lines}")
    service = next(l for l in watcher.lines if l.startswith("registered ")).split()[1]
    check(service.startswith(ITEM + "-"), f"registered under an item name, got {service}")

    item = bus.get_object(service, "/StatusNotifierItem")
    props = item.GetAll(ITEM, dbus_interface=PROPS)
    check(props["Id"] == "quillmark", f"Id {props['Id']}")
    check(props["Title"] == "Quillmark", f"Title {props['Title']}")
    check(props["Status"] == "Active", f"Status {props['Status']}")
    check(props["Category"] == "ApplicationStatus", f"Category {props['Category']}")
    check(props["ItemIsMenu"] == False, "ItemIsMenu is false so that a click activates")
    check(props["Menu"] == "/MenuBar", f"Menu {props['Menu']}")
    check(props["XAyatanaLabel"] == "", "no label in icon mode")
    _, _, tip_title, tip_body = props["ToolTip"]
    check(tip_title.startswith("Quillmark") and "CPU 12%" in tip_body, f"tool tip {tip_title!r} {tip_body!r}")
    pixmap_ok(props["IconPixmap"], wide=False)

    # A primary click opens the panel where the host says the pointer is; a host's request for the
    # menu pops it up; a middle click and a scroll are accepted and do nothing.
    item.Activate(5, 7, dbus_interface=ITEM)
    item.SecondaryActivate(3, 4, dbus_interface=ITEM)
    item.ContextMenu(1, 2, dbus_interface=ITEM)
    item.Scroll(1, "vertical", dbus_interface=ITEM)
    wait_for(lambda: {"anchor 5 7", "panel open", "popup 10"} <= set(probe.lines), "the clicks")
    check(probe.count("panel open") == 1, f"only the primary click opens the panel: {probe.lines}")

    menu = bus.get_object(service, "/MenuBar")
    check(menu.Get(MENU, "Version", dbus_interface=PROPS) >= 3, "dbusmenu version")
    check(menu.AboutToShow(0, dbus_interface=MENU) in (True, False), "AboutToShow answers")
    _, layout = menu.GetLayout(0, -1, dbus.Array([], signature="s"), dbus_interface=MENU)
    items = flatten(layout)
    top = [i for i in items if i[2] == 1]
    kinds = [p.get("type", p.get("label")) for _, p, _, _ in top]
    check(kinds == ["Quillmark", "separator", "Menu Bar Shows", "Show Network Speed", "Panel Style", "separator",
                    "Refresh Interval", "separator", "Settings…", "Quit Quillmark"], f"top level {kinds}")
    by_label = {p.get("label"): (i, p, children) for i, p, _, children in items if "label" in p}
    check(by_label["Quillmark"][1].get("enabled") == False, "the title is disabled")
    check(by_label["Show Network Speed"][1].get("toggle-type") == "checkmark", "net speed is a checkmark")
    style = [by_label[l] for l in ("Icon Only", "Icon and Usage")]
    check([p["toggle-state"] for _, p, _ in style] == [1, 0], "icon mode checked by default")
    check(all(p["toggle-type"] == "radio" for _, p, _ in style), "styles are a radio group")
    intervals = [by_label[l][1]["toggle-state"] for l in ("1 Second", "2 Seconds", "5 Seconds")]
    check(intervals == [0, 1, 0], f"the 2 s interval checked, got {intervals}")
    check(len(by_label["Panel Style"][2]) == 2, "one entry per skin")
    group = menu.GetGroupProperties([style[1][0]], ["label"], dbus_interface=MENU)
    check([(int(i), dict(p)) for i, p in group] == [(style[1][0], {"label": "Icon and Usage"})],
          f"GetGroupProperties {group}")

    # Choosing "Icon and Usage" changes the setting: the text is drawn wide and set as the label,
    # and the menu moves its check.
    signals.clear()
    menu.Event(style[1][0], "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0), dbus_interface=MENU)
    wait_for(lambda: "perform setMenuBarStyle" in probe.lines, "the menu choice to reach the controller")
    wait_for(lambda: {"NewIcon", "XAyatanaNewLabel", "ItemsPropertiesUpdated"} <= set(signals), "the change signals")
    check("LayoutUpdated" not in signals, "a moved check keeps the layout's revision")
    props = item.GetAll(ITEM, dbus_interface=PROPS)
    check(props["XAyatanaLabel"].startswith("CPU 12%"), f"label {props['XAyatanaLabel']!r}")
    pixmap_ok(props["IconPixmap"], wide=True)
    _, layout = menu.GetLayout(0, -1, dbus.Array([], signature="s"), dbus_interface=MENU)
    states = {p.get("label"): p.get("toggle-state") for _, p, _, _ in flatten(layout)}
    check((states["Icon Only"], states["Icon and Usage"]) == (0, 1), f"check moved, got {states}")

    # Nothing is announced when nothing changed: choosing the current mode again redraws the same
    # text. A call answered after that work brings any signal it sent in ahead of its reply.
    signals.clear()
    menu.Event(style[1][0], "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0), dbus_interface=MENU)
    wait_for(lambda: probe.count("perform setMenuBarStyle") == 2, "the same choice again")
    item.GetAll(ITEM, dbus_interface=PROPS)
    while GLib.MainContext.default().iteration(False):
        pass
    check(not {"NewIcon", "XAyatanaNewLabel", "LayoutUpdated"} & set(signals), f"no announcements, got {signals}")

    # A desktop that prefers a light look gets dark glyphs.
    signals.clear()
    Portal(bus, "/org/freedesktop/portal/desktop").SettingChanged(
        "org.freedesktop.appearance", "color-scheme", dbus.UInt32(2, variant_level=1))
    wait_for(lambda: "NewIcon" in signals, "the icon redrawn for a light desktop")
    pixmap_ok(item.Get(ITEM, "IconPixmap", dbus_interface=PROPS), wide=True, light=False)

    # The watcher restarts: the item notices and registers again.
    watcher.proc.terminate()
    watcher.proc.wait()
    wait_for(lambda: probe.count("shown 0") == 2, "the lost watcher to be reported")
    watcher = Lines([sys.executable, __file__, "watcher"])
    wait_for(lambda: any(l == f"registered {service}" or l.startswith(f"registered {service} ")
                         for l in watcher.lines), "registration with the new watcher")
    wait_for(lambda: probe.count("shown 1") == 2, "the item shown again")

    # Quit from the menu ends the program cleanly.
    menu.Event(by_label["Quit Quillmark"][0], "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0),
               dbus_interface=MENU)
    try:
        code = probe.proc.wait(timeout=30)
    except subprocess.TimeoutExpired:
        probe.proc.kill()
        code = "hung"
    check(code == 0, f"the probe quit cleanly, got {code}")
    wait_for(lambda: "quit" in probe.lines, "the quit to reach the program")
    watcher.proc.terminate()
    if failures:
        print(f"{len(failures)} failures; probe said: {probe.lines}")
        sys.exit(1)
    print("ok")


def call_item(service, command, args):
    """For the desktop program's test: `menu` prints the menu's top-level labels (separators as
    "-"), `activate X Y` clicks the item there, `context-menu X Y` asks it for its menu there."""
    bus = dbus.SessionBus()
    if command == "menu":
        menu = bus.get_object(service, "/MenuBar")
        _, layout = menu.GetLayout(0, -1, dbus.Array([], signature="s"), dbus_interface=MENU)
        print("|".join(p.get("label", "-") for _, p, depth, _ in flatten(layout) if depth == 1))
    elif command in ("activate", "context-menu"):
        item = bus.get_object(service, "/StatusNotifierItem")
        call = item.Activate if command == "activate" else item.ContextMenu
        call(int(args[0]), int(args[1]), dbus_interface=ITEM)
    else:
        sys.exit("unknown item command " + command)


if __name__ == "__main__":
    if len(sys.argv) > 1 and sys.argv[1] == "watcher":
        run_watcher()
    elif len(sys.argv) > 3 and sys.argv[1] == "item":
        call_item(sys.argv[2], sys.argv[3], sys.argv[4:])
    else:
        main()
