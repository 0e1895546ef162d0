#!/usr/bin/env bash
# Builds the release editor and a Debian package of it (build/release/package/),
# then checks the package: lintian, the desktop entry and the AppStream
# metainfo as the package holds them. Fails on any lintian error, and on any
# lintian warning that the README's "Lintian warnings left" list does not name.
# Install it with:  sudo apt-get install ./build/release/package/lorekeep_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."

LOREKEEP_EXTRA_PACKAGES="dpkg-dev file lintian appstream desktop-file-utils" \
    scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target lorekeep lorekeep-tool lorekeep_compressed_docs
rm -f build/release/package/*.deb
cpack --config build/release/CPackConfig.cmake -B build/release/package
deb=$(ls build/release/package/*.deb)
echo "$deb"

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$deb" "$tree"
failed=0

echo "== lintian"
report=$(lintian --fail-on none "$deb") || { echo "lintian did not run" >&2; exit 1; }
[ -n "$report" ] && echo "$report"
# The README lists each warning left as "- `tag`: reason".
# shellcheck disable=SC2016  # the backquotes are Markdown's
allowed=$(sed -n '/^### Lintian warnings left/,/^#/p' README.md |
          sed -n 's/^- `\([a-z0-9.+-]*\)`: *[^ ].*/\1/p')
while read -r severity _ tag _; do
    if [ "$severity" = "E:" ]; then
        echo "lintian error: $tag"
        failed=1
    elif [ "$severity" = "W:" ] && ! grep -qxF "$tag" <<< "$allowed"; then
        echo "lintian warning that the README does not name: $tag"
        failed=1
    fi
done <<< "$report"

echo "== desktop entry, metainfo and changelog in the package"
desktop-file-validate "$tree"/usr/share/applications/*.desktop || failed=1
appstreamcli validate --no-net "$tree"/usr/share/metainfo/*.metainfo.xml || failed=1
# The whole tree too: the metainfo's launchable must be the packaged desktop entry.
tree_report=$(appstreamcli validate-tree --no-net "$tree") || { echo "$tree_report"; failed=1; }
zcat "$tree"/usr/share/doc/lorekeep/changelog.gz | dpkg-parsechangelog -l - >/dev/null ||
    failed=1

if [ "$failed" -ne 0 ]; then
    echo "The package has problems (see above)." >&2
    exit 1
fi
echo "The package is clean: $deb"
