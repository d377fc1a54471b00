#!/usr/bin/env bash
# Builds the Debian package from a release build installed under /usr, then checks it: the
# control data and file list (dpkg-deb), an unpacked copy in a scratch root, the desktop entry and
# AppStream data as installed, and lintian where it is installed. Prints the path of the .deb.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset package >/dev/null
cmake --build --preset package
rm -rf build/package/out
cpack --preset package >/dev/null
deb=$(ls build/package/out/quillmark_*.deb)

dpkg-deb --info "$deb"
dpkg-deb --contents "$deb"
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root"
for path in usr/bin/quillmark usr/libexec/quillmark/quillmark-guardian usr/libexec/quillmark/quillmark-fand \
            usr/share/quillmark/resources/en.lproj/Localizable.strings usr/share/applications/quillmark.desktop \
            usr/share/metainfo/com.quillmark.Quillmark.metainfo.xml usr/share/icons/hicolor/scalable/apps/quillmark.svg \
            usr/share/icons/hicolor/48x48/apps/quillmark.png usr/lib/systemd/system/quillmark-fand.service \
            usr/lib/sysusers.d/quillmark.conf usr/lib/systemd/system-sleep/quillmark-fand \
            usr/share/man/man1/quillmark.1.gz; do
  [ -e "$root/$path" ] || { echo "package.sh: $path is missing from the package" >&2; exit 1; }
done
grep -q '^ExecStart=/usr/libexec/quillmark/quillmark-fand$' "$root/usr/lib/systemd/system/quillmark-fand.service" ||
  { echo "package.sh: the fan service does not start the installed binary" >&2; exit 1; }
desktop-file-validate "$root/usr/share/applications/quillmark.desktop"
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$root/usr/share/metainfo/com.quillmark.Quillmark.metainfo.xml"
fi
# The unpacked program finds its string tables next to itself and answers.
"$root/usr/bin/quillmark" --help >/dev/null
if command -v lintian >/dev/null; then
  # Errors fail the package; warnings are shown.
  lintian --no-tag-display-limit --fail-on error "$deb"
fi
echo "$deb"
