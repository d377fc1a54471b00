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
  libsystemd-dev pkgconf                 # sd-bus (desktop notifications, logind's sleep inhibitors), found through pkg-config
  dbus-daemon dbus python3-dbusmock      # a private bus with mock notification and logind services for the tests
  libcairo2-dev libpango1.0-dev          # the panel's drawing backend on Linux (Cairo paths, Pango text)
  fonts-noto-cjk fonts-thai-tlwg         # glyphs for the Chinese, Japanese, Korean and Thai panel texts
  iproute2                               # ip creates the veth pairs of the many-interfaces network test
  libicu-dev                             # Unicode case folding for the process search
  libx11-dev libxres-dev                 # the front application on X11 (_NET_ACTIVE_WINDOW, X-Resource pid)
  xvfb                                   # a private X server for the front-application and desktop-program tests
  libgtk-3-dev                           # the desktop program's panel and first-run windows (GTK 3 on GLib's main loop)
  libgtk-layer-shell-dev                 # the same windows as layer-shell surfaces on Wayland compositors that have them
  sway grim wtype                        # the Wayland desktop test: headless compositor, screenshots, virtual keyboard
  python3-xlib                           # the desktop-program test finds its windows, presses keys and takes screenshots
  python3-dbus python3-gi                # the tray test's mock StatusNotifierWatcher and host (python3-dbus on GLib)
  dpkg-dev file                          # CPack's DEB generator: dpkg-shlibdeps for Depends, file to find the binaries
  appstream                              # appstreamcli validates the AppStream metainfo in package.sh
  lintian                                # checks the built .deb in package.sh
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
