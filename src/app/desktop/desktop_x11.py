"""X11 side of the desktop program's test: find its windows, fake a window manager's work area,
press keys and take screenshots, all through python3-xlib on the test's private Xvfb."""
import struct
import sys
import time
import zlib

from Xlib import X, Xatom, display
from Xlib.ext import xtest


def windows_with_role(d, role):
    """Viewable top-level windows whose WM_WINDOW_ROLE is role (or, for the role "popup-menu",
    whose window type is a popup menu), as (window, x, y, w, h)."""
    found = []
    root = d.screen().root
    atom = d.intern_atom("WM_WINDOW_ROLE")
    kind = d.intern_atom("_NET_WM_WINDOW_TYPE")
    popup = d.intern_atom("_NET_WM_WINDOW_TYPE_POPUP_MENU")
    for w in root.query_tree().children:
        try:
            if role == "popup-menu":
                prop = w.get_full_property(kind, Xatom.ATOM)
                if not prop or popup not in prop.value:
                    continue
            else:
                prop = w.get_full_property(atom, X.AnyPropertyType)
                if not prop or prop.value.decode(errors="replace") != role:
                    continue
            if w.get_attributes().map_state != X.IsViewable:
                continue
            g = w.get_geometry()
            pos = w.translate_coords(root, 0, 0)
            found.append((w, -pos.x, -pos.y, g.width, g.height))
        except Exception:  # a window that went away meanwhile
            continue
    return found


def wait_window(d, role, present, seconds):
    deadline = time.time() + seconds
    while time.time() < deadline:
        found = windows_with_role(d, role)
        if bool(found) == present:
            return found
        time.sleep(0.1)
    return None


def screenshot(d, path, box=None):
    """Writes the root window (or box x, y, w, h of it) as an RGB PNG; returns the pixel rows."""
    root = d.screen().root
    if box is None:
        g = root.get_geometry()
        box = (0, 0, g.width, g.height)
    x, y, w, h = box
    data = root.get_image(x, y, w, h, X.ZPixmap, 0xFFFFFFFF).data
    rows = []
    for row in range(h):
        line = data[row * w * 4:(row + 1) * w * 4]
        rgb = bytearray(w * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = line[2::4], line[1::4], line[0::4]
        rows.append(bytes(rgb))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    raw = b"".join(b"\x00" + r for r in rows)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(raw, 6)) + chunk(b"IEND", b""))
    return rows


def pixel(rows, x, y):
    return tuple(rows[y][x * 3:x * 3 + 3])


def fake_work_area(d, x, y, w, h):
    """Claims to be an EWMH window manager that leaves (x, y, w, h) free, as a panel's strut does."""
    root = d.screen().root
    check = root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
    wm_check = d.intern_atom("_NET_SUPPORTING_WM_CHECK")
    for target in (root, check):
        target.change_property(wm_check, Xatom.WINDOW, 32, [check.id])
    check.change_property(d.intern_atom("_NET_WM_NAME"), d.intern_atom("UTF8_STRING"), 8, b"test-wm")
    supported = [d.intern_atom(n) for n in ("_NET_WORKAREA", "_NET_SUPPORTING_WM_CHECK", "_NET_WM_NAME")]
    root.change_property(d.intern_atom("_NET_SUPPORTED"), Xatom.ATOM, 32, supported)
    root.change_property(d.intern_atom("_NET_WORKAREA"), Xatom.CARDINAL, 32, [x, y, w, h])
    d.sync()
    return check


def press(d, keysym_name):
    from Xlib import XK
    code = d.keysym_to_keycode(XK.string_to_keysym(keysym_name))
    xtest.fake_input(d, X.KeyPress, code)
    xtest.fake_input(d, X.KeyRelease, code)
    d.sync()


def main():
    command = sys.argv[1]
    d = display.Display()
    if command == "wait-window":  # ROLE present|gone SECONDS -> prints x y w h
        found = wait_window(d, sys.argv[2], sys.argv[3] == "present", float(sys.argv[4]))
        if found is None:
            sys.exit(1)
        for _, x, y, w, h in found:
            print(x, y, w, h)
    elif command == "hold-work-area":  # X Y W H: keep the fake manager alive until stdin closes
        fake_work_area(d, *map(int, sys.argv[2:6]))
        print("ready", flush=True)
        sys.stdin.read()
    elif command == "press":
        press(d, sys.argv[2])
    elif command == "shot":  # PATH X Y W H: the box as PNG; prints distinct colours, lit fraction
        box = tuple(map(int, sys.argv[3:7]))
        rows = screenshot(d, sys.argv[2], box)
        colours = set()
        lit = 0
        for r in rows:
            for i in range(0, len(r), 3):
                c = r[i:i + 3]
                colours.add(c)
                lit += c != b"\x00\x00\x00"
        print(len(colours), lit / (box[2] * box[3]))
    elif command == "pixel":  # X Y -> r g b of the screen
        rows = screenshot(d, "/dev/null", (int(sys.argv[2]), int(sys.argv[3]), 1, 1))
        print(*pixel(rows, 0, 0))
    else:
        sys.exit("unknown command " + command)


if __name__ == "__main__":
    main()
