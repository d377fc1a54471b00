"""A stand-in Wayland compositor that announces no globals (so no layer-shell): it answers
wl_display.sync and nothing else, enough for a client to list the globals and find none.

    wayland_stub.py SOCKET_PATH    prints "ready" once it listens; runs until killed"""
import os
import socket
import struct
import sys
import threading

WL_DISPLAY = 1


def serve(conn):
    buffer = b""
    with conn:
        while True:
            data = conn.recv(4096)
            if not data:
                return
            buffer += data
            while len(buffer) >= 8:
                target, size_opcode = struct.unpack("=II", buffer[:8])
                size = size_opcode >> 16
                if len(buffer) < size:
                    break
                message, buffer = buffer[:size], buffer[size:]
                if target == WL_DISPLAY and size_opcode & 0xFFFF == 0:  # sync(new_id callback)
                    (callback,) = struct.unpack("=I", message[8:12])
                    done = struct.pack("=III", callback, 12 << 16 | 0, 1)  # wl_callback.done
                    gone = struct.pack("=III", WL_DISPLAY, 12 << 16 | 1, callback)  # delete_id
                    conn.sendall(done + gone)
                # get_registry and anything else: no globals, nothing to say.


def main():
    path = sys.argv[1]
    if os.path.exists(path):
        os.unlink(path)
    server = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    server.bind(path)
    server.listen()
    print("ready", flush=True)
    while True:
        conn, _ = server.accept()
        threading.Thread(target=serve, args=(conn,), daemon=True).start()


if __name__ == "__main__":
    main()
