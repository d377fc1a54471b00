#!/usr/bin/env bash
# Runs file_manager_bus_tests on a private session bus, never the machine's own: first against
# python3-dbusmock standing in for org.freedesktop.FileManager1, then with no file manager on the
# bus. A fake xdg-open on PATH writes down what it was asked to open. Exits 77 (skipped) when
# dbus-run-session or python3-dbusmock is missing.
set -u
binary="$1"

python=""
for candidate in python3 /usr/bin/python3; do
  if command -v "$candidate" >/dev/null && "$candidate" -c "import dbusmock" 2>/dev/null; then
    python="$candidate"
    break
  fi
done
if [ -z "$python" ] || ! command -v dbus-run-session >/dev/null || ! command -v dbus-send >/dev/null; then
  echo "SKIP: needs dbus-run-session, dbus-send and python3-dbusmock"
  exit 77
fi

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
mkdir "$dir/bin"
cat > "$dir/bin/xdg-open" <<'SCRIPT'
#!/bin/sh
printf '%s\n' "$1" > "$QM_XDG_OPEN_RECORD.part" && mv "$QM_XDG_OPEN_RECORD.part" "$QM_XDG_OPEN_RECORD"
SCRIPT
chmod +x "$dir/bin/xdg-open"
export PATH="$dir/bin:$PATH" QM_XDG_OPEN_RECORD="$dir/xdg-open.txt" QM_FILEMANAGER_MOCK=1
export QM_BINARY="$binary" QM_PYTHON="$python"
export XDG_CONFIG_HOME="$dir/config" XDG_STATE_HOME="$dir/state"  # never the user's log

exec dbus-run-session -- bash -c '
  "$QM_PYTHON" -m dbusmock --session org.freedesktop.FileManager1 /org/freedesktop/FileManager1 \
      org.freedesktop.FileManager1 >/dev/null 2>&1 &
  mock=$!
  for _ in $(seq 200); do
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
        string:org.freedesktop.FileManager1 2>/dev/null | grep -q "boolean true" && break
    sleep 0.05
  done
  "$QM_BINARY" --gtest_filter="*WithFileManager*" || { kill $mock; exit 1; }
  kill $mock
  wait $mock 2>/dev/null
  "$QM_BINARY" --gtest_filter="*WithoutFileManager*"
'
