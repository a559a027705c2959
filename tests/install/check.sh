#!/usr/bin/env bash
# Installs a build into a folder of the test's own and looks whether a desktop finds all it needs.
# usage: check.sh BUILD-FOLDER
set -euo pipefail
id=app.snaplift.Snaplift
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null

failed=0
check() { "$@" || { echo "failed: $*"; failed=1; }; }

for program in snaplift snaplift-cli; do
  check test -x "$prefix/bin/$program"
  check man --warnings -l -Tutf8 "$prefix/share/man/man1/$program.1" >/dev/null
done
check desktop-file-validate "$prefix/share/applications/$id.desktop"
check appstreamcli validate --no-net "$prefix/share/metainfo/$id.metainfo.xml" >/dev/null
for size in 16 22 24 32 48 64 128 256 512; do
  icon=$prefix/share/icons/hicolor/${size}x$size/apps/$id.png
  # Width and height stand in the header of a PNG, in four bytes each.
  check test "$(od -An -tu4 --endian=big -j16 -N8 "$icon" | xargs)" = "$size $size"
done
check grep -q '<svg' "$prefix/share/icons/hicolor/scalable/apps/$id.svg"

# The completion, asked as bash asks it.
words() {
  bash -c 'source "$1"; COMP_WORDS=(snaplift-cli "${@:2}"); COMP_CWORD=$(($# - 1)); _snaplift_cli
    echo "${COMPREPLY[@]}"' _ "$prefix/share/bash-completion/completions/snaplift-cli" "$@"
}
check test "$(words ex)" = export
check test "$(words export --dr)" = --dry-run
for option in $("$prefix/bin/snaplift-cli" export --help | grep -oE -- '--[a-z-]+' | sort -u); do
  check test "$(words export "$option")" = "$option"
  check grep -q -- "${option//-/\\\\-}" "$prefix/share/man/man1/snaplift-cli.1"
done
exit "$failed"
