#!/usr/bin/env bash
# Installs what Quillmark needs to build and test on Debian 12, only when something is missing.
set -euo pipefail

packages=(
  g++ clang cmake ninja-build            # the two compilers every change is checked with, and the build
  libclang-rt-14-dev                     # clang's sanitizer and libFuzzer runtimes
  libgtest-dev libgmock-dev              # unit tests
  libbenchmark-dev                       # benchmarks in bench/
  nlohmann-json3-dev                     # JSON for the settings file and the --json output
  python3 procps                         # the end-to-end test script; ps and top for the benchmark comparison
  desktop-file-utils                     # desktop-file-validate checks the autostart entry we write
)

missing=()
for pkg in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$pkg")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
