"""Reads a screenshot as PPM (grim -t ppm) on standard input, keeps it as PNG, and tells how much of
a box is drawn and whether anything is drawn outside it, for the Wayland desktop-program test.

    desktop_wayland_shot.py OUT.png [X Y W H] < shot.ppm
prints: distinct colours in the box, the fraction of it that differs from the background, and the
number of pixels outside the box that differ from the background. The background is the colour
of most pixels outside the box (the whole picture without a box)."""
import collections
import struct
import sys
import zlib


def read_ppm(data):
    fields = []
    pos = 0
    while len(fields) < 4:  # magic, width, height, maxval; comments are not written by grim
        while data[pos:pos + 1].isspace():
            pos += 1
        end = pos
        while not data[end:end + 1].isspace():
            end += 1
        fields.append(data[pos:end])
        pos = end
    if fields[0] != b"P6" or fields[3] != b"255":
        sys.exit("not an 8-bit binary PPM")
    w, h = int(fields[1]), int(fields[2])
    pixels = data[pos + 1:pos + 1 + w * h * 3]
    if len(pixels) != w * h * 3:
        sys.exit("short PPM")
    return w, h, pixels


def write_png(path, w, h, pixels):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    raw = b"".join(b"\x00" + pixels[y * w * 3:(y + 1) * w * 3] for y in range(h))
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(raw, 6)) + chunk(b"IEND", b""))


def main():
    w, h, pixels = read_ppm(sys.stdin.buffer.read())
    write_png(sys.argv[1], w, h, pixels)
    bx, by, bw, bh = map(int, sys.argv[2:6]) if len(sys.argv) >= 6 else (0, 0, 0, 0)
    inside, outside = [], collections.Counter()
    for y in range(h):
        row = pixels[y * w * 3:(y + 1) * w * 3]
        for x in range(w):
            c = row[x * 3:x * 3 + 3]
            if bx <= x < bx + bw and by <= y < by + bh:
                inside.append(c)
            else:
                outside[c] += 1
    background = outside.most_common(1)[0][0] if outside else b""
    lit = sum(c != background for c in inside) / len(inside) if inside else 0.0
    print(len(set(inside)), lit, sum(outside.values()) - outside[background])


if __name__ == "__main__":
    main()
