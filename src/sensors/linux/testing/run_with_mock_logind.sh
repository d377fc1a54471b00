#!/usr/bin/env bash
# Runs a test program against python3-dbusmock's logind on a private bus that stands in for the
# system bus (DBUS_SYSTEM_BUS_ADDRESS points at it), never the machine's own. Exits 77 (skipped)
# when dbus-run-session or python3-dbusmock is missing.
set -euo pipefail
program=$1

python=""
for candidate in /usr/bin/python3 python3; do
  if command -v "$candidate" >/dev/null && "$candidate" -c "import dbusmock" 2>/dev/null; then
    python=$candidate
    break
  fi
done
if [ -z "$python" ] || ! command -v dbus-run-session >/dev/null || ! command -v dbus-send >/dev/null; then
  echo "SKIPPED: needs dbus-run-session, dbus-send and python3-dbusmock"
  exit 77
fi

exec dbus-run-session -- bash -c '
  set -u
  export DBUS_SYSTEM_BUS_ADDRESS=$DBUS_SESSION_BUS_ADDRESS
  "$1" -m dbusmock --template logind >/dev/null 2>&1 &
  mock=$!
  trap "kill $mock 2>/dev/null" EXIT
  for _ in $(seq 200); do
    if dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
        string:org.freedesktop.login1 2>/dev/null | grep -q "boolean true"; then
      QM_LOGIND_MOCK=1 "$2"
      exit $?
    fi
    sleep 0.05
  done
  echo "the mock logind did not come up"
  exit 1
' bash "$python" "$program"
