#!/usr/bin/env bash
# Runs notification_bus_tests on a private session bus: first with no notification server on it,
# then against python3-dbusmock's notification_daemon template, whose record of the calls
# testing/notification_mock_check.py then checks, together with the real quillmark (the optional
# second argument) posting a memory alert that names its cause. Never touches the machine's own
# bus. Exits 77 (skipped) when dbus-run-session or python3-dbusmock is missing.
set -u
binary="$1"
quillmark="${2:-}"

if ! command -v dbus-run-session >/dev/null; then
  echo "SKIP: dbus-run-session not installed (Debian package dbus-daemon)"
  exit 77
fi
python=""
for candidate in python3 /usr/bin/python3; do
  if command -v "$candidate" >/dev/null && "$candidate" -c "import dbusmock" 2>/dev/null; then
    python="$candidate"
    break
  fi
done
if [ -z "$python" ]; then
  echo "SKIP: python3-dbusmock not installed"
  exit 77
fi

export QM_PRIVATE_BUS=1 QM_TEST_BINARY="$binary" QM_PYTHON="$python" QM_QUILLMARK="$quillmark"
export QM_SCRIPT_DIR="$(cd "$(dirname "$0")" && pwd)"
exec dbus-run-session -- bash -c '
  "$QM_TEST_BINARY" --gtest_filter="*NoServer*" || exit 1
  "$QM_PYTHON" -m dbusmock --session --template notification_daemon >/dev/null 2>&1 &
  mock=$!
  "$QM_TEST_BINARY" --gtest_filter="*WithServer*"
  status=$?
  if [ $status -eq 0 ]; then
    "$QM_PYTHON" "$QM_SCRIPT_DIR/testing/notification_mock_check.py" "$QM_QUILLMARK"
    status=$?
  fi
  kill "$mock"
  wait "$mock" 2>/dev/null
  exit $status
'
