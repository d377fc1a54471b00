#!/usr/bin/env bash
# Builds Quillmark (release) and starts it. Arguments are passed on, e.g. --json.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
exec ./build/release/src/app/frontend/quillmark "$@"
