"""Run by notification_bus_test.sh on its private bus, after notification_bus_tests:
1. the three Notify calls that test made carry our app name, desktop entry and default action, and
   the second alert of a metric replaces the first one (replaces_id);
2. the terminal front end runs alerts: quillmark with alerts on and a tiny memory threshold posts
   one memory notification naming the largest process, and logs it."""
import json
import os
import subprocess
import sys
import tempfile

import dbus

quillmark = sys.argv[1] if len(sys.argv) > 1 else ""
mock = dbus.SessionBus().get_object("org.freedesktop.Notifications", "/org/freedesktop/Notifications")
control = dbus.Interface(mock, "org.freedesktop.DBus.Mock")

# Notify(app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout)
by_body = {str(args[4]): args for _, args in control.GetMethodCalls("Notify")}
assert sorted(by_body) == ["first", "second", "third"], by_body
first = by_body["first"]
assert str(first[0]) == "Quillmark" and str(first[3]) == "High CPU Load", first
assert "default" in [str(a) for a in first[5]] and str(first[6]["desktop-entry"]) == "quillmark", first
# The mock numbers new notifications from 1; "first" was sent before "third".
assert int(first[1]) == 0 and int(by_body["third"][1]) == 0 and int(by_body["second"][1]) == 1, by_body
control.ClearCalls()
if not quillmark:
    sys.exit(0)

with tempfile.TemporaryDirectory() as home:
    env = dict(os.environ, XDG_CONFIG_HOME=home + "/config", XDG_STATE_HOME=home + "/state", LANGUAGE="en")
    os.makedirs(home + "/config/quillmark")
    with open(home + "/config/quillmark/settings.json", "w") as f:
        json.dump({"refreshInterval": 1.0, "alertsEnabled": True, "memAlarm": 0.001, "cpuAlarm": 1000.0}, f)
    subprocess.run([quillmark, "--count", "5"], env=env, stdout=subprocess.DEVNULL, timeout=60, check=True)
    with open(home + "/state/quillmark/Quillmark.log") as f:
        log = f.read()

calls = [args for _, args in control.GetMethodCalls("Notify")]
memory = [a for a in calls if str(a[3]) == "High Memory Use"]
assert len(memory) == 1, f"expected one memory alert, got {calls}"
body = str(memory[0][4])
assert "at or above your 0% threshold" in body and "holds the most memory" in body, body
assert "Alert notification: High Memory Use" in log, log
print("alerts_cli: the terminal front end posted:", body.replace("\n", " / "))
