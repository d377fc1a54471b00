#!/usr/bin/env bash
# quillmark --render-panel end to end: a snapshot taken by the program itself becomes a PNG of the
# panel's size for each face, language and scale; bad options are refused with status 2.
set -euo pipefail
quillmark=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export XDG_CONFIG_HOME="$dir/config" XDG_STATE_HOME="$dir/state"  # never the user's settings or log

"$quillmark" --json --count 2 > "$dir/snapshot.jsonl"

# Width and height of a PNG from its header.
size() { python3 -c 'import struct,sys; d=open(sys.argv[1],"rb").read(24); assert d[:8]==b"\x89PNG\r\n\x1a\n"; print("%dx%d" % struct.unpack(">II", d[16:24]))' "$1"; }

for skin in glass vitals settings; do
  "$quillmark" --render-panel "$dir/$skin.png" --skin "$skin" --scale 2 --language ja --snapshot "$dir/snapshot.jsonl"
  [ "$(size "$dir/$skin.png")" = "800x1336" ] || { echo "$skin: wrong size $(size "$dir/$skin.png")"; exit 1; }
done
"$quillmark" --render-panel "$dir/tip.png" --skin tip --scale 2 --language de
[ "$(size "$dir/tip.png")" = "560x316" ] || { echo "tip: wrong size $(size "$dir/tip.png")"; exit 1; }
"$quillmark" --render-panel "$dir/plain.png" --scale 1
[ "$(size "$dir/plain.png")" = "400x668" ] || { echo "scale 1: wrong size"; exit 1; }
[ ! -e "$dir/plain.png.part" ] || { echo "temporary file left behind"; exit 1; }

for bad in "--skin round" "--scale 3" "--language xx" "--snapshot"; do
  status=0
  # shellcheck disable=SC2086
  "$quillmark" --render-panel "$dir/bad.png" $bad 2>/dev/null || status=$?
  [ "$status" = 2 ] || { echo "'$bad' gave status $status, not 2"; exit 1; }
done
status=0
"$quillmark" --render-panel "$dir/bad.png" --snapshot "$dir/missing.jsonl" 2>/dev/null || status=$?
[ "$status" = 1 ] || { echo "a missing snapshot gave status $status"; exit 1; }
echo "render-panel: all checks passed"
