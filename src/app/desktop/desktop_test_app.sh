# Sourced by the desktop program's tests: starting and stopping the program under test. Needs
# $bin, $home and fail() from the test; sets $app while the program runs.
start_app() {  # start_app ARGS...: waits until it answers on the bus
  "$bin" "$@" >"$home/out" 2>"$home/err" &
  app=$!
  for _ in $(seq 200); do "$bin" ctl processes >/dev/null 2>&1 && return; sleep 0.1; done
  fail "quillmark $* did not answer on the bus"
}
stop_app() {  # SIGTERM, and the program must end cleanly
  kill -TERM "$app"
  local status=0
  wait "$app" || status=$?
  app=
  [ "$status" = 0 ] || fail "quillmark ended with status $status after SIGTERM"
}
