#!/usr/bin/env bash
# Builds Quillmark and runs every test (unit, real-system, the macOS stub-SDK check and the
# fake-kernel tests of the macOS readers).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset debug
cmake --build --preset debug
ctest --preset debug
