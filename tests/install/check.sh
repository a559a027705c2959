#!/usr/bin/env bash
# Installs a build into a folder of the test's own and looks whether a desktop finds all it needs,
# and whether everything that tells the version tells the same.
# usage: check.sh BUILD-FOLDER
set -euo pipefail
id=app.snaplift.Snaplift
tree=$(realpath "$(dirname "$0")/../..")
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null
share=$prefix/share
metainfo=$share/metainfo/$id.metainfo.xml

failed=0
check() { "$@" || { echo "failed: $*"; failed=1; }; }

version=$(sed -n 's/^project(snaplift VERSION \([0-9.]*\).*/\1/p' "$tree/CMakeLists.txt")
day=$(sed -n 's/^set(SNAPLIFT_RELEASED \([0-9-]*\)).*/\1/p' "$tree/CMakeLists.txt")
for program in snaplift snaplift-cli; do
  check test "$("$prefix/bin/$program" --version)" = "$program $version"
  check man --warnings -l -Tutf8 "$share/man/man1/$program.1" >/dev/null
  check grep -q "^\.TH .* \"$day\" \"Snaplift $version\" " "$share/man/man1/$program.1"
done
check grep -q 'No space' <("$prefix/bin/snaplift" --version 2>&1 >/dev/full)
samples=$1/samples/program/snaplift-samples
check grep -q '^usage: ' <("$samples" --help)
check test "$("$samples" --helpp 2>/dev/null || echo $?)" = 2
check test "$(grep -m1 '^## ' "$tree/CHANGELOG.md")" = "## $version ($day)"
check test "$(head -1 "$tree/debian/changelog" | cut -d' ' -f-2)" = "snaplift ($version)"
check grep -q "version=\"$version\" date=\"$day\"" <(grep -m1 '<release ' "$metainfo")

check desktop-file-validate "$share/applications/"*.desktop
check appstreamcli validate --no-net "$metainfo" >/dev/null
for picture in $(grep -o '<image>[^<]*' "$metainfo" | sed 's|.*//[^/]*/||'); do
  check test -f "$tree/$picture"
done
for size in 16 22 24 32 48 64 128 256 512; do
  icon=$share/icons/hicolor/${size}x$size/apps/$id.png
  # Width and height stand in the header of a PNG, in four bytes each.
  check test "$(od -An -tu4 --endian=big -j16 -N8 "$icon" | xargs)" = "$size $size"
done
check grep -q '<svg' "$share/icons/hicolor/scalable/apps/$id.svg"

# The completion, asked as bash asks it, over one backup: a folder "one" of a device "Handset".
export HOME=$prefix/home PATH=$prefix/bin:$PATH
python3 "$tree/debian/tests/backup.py" "$HOME"
completion=$share/bash-completion/completions/snaplift-cli
words() {
  bash -c 'source "$1"; COMP_WORDS=(snaplift-cli "${@:2}"); COMP_CWORD=$(($# - 1)); _snaplift_cli
    echo "${COMPREPLY[@]}"' _ "$completion" "$@"
}
check test "$(words ex)" = export
check test "$(words photos '')" = "latest one"
check test "$(words export --device '')" = Handset
check test "$(words export --output "$prefix/sh")" = "$share"
check test "$(words export --layout mo)" = month
check test "$(words verify "$prefix/home/")" = "$prefix/home/Library"
check test "$(cd "$prefix" && words photos --root nowhere sh)" = share
for option in $(snaplift-cli export --help | grep -oE -- '--[a-z-]+' | sort -u); do
  check test "$(words export "$option")" = "$option"
  check grep -q -- "${option//-/\\\\-}" "$share/man/man1/snaplift-cli.1"
done
# And typed: Tab completes a backup's name.
check grep -q 'photos one' <(printf 'source %q\nsnaplift-cli photos o\t\nexit\n' "$completion" |
  script -qec 'bash --norc --noprofile -i' /dev/null)
for shell in zsh:site-functions/_snaplift-cli fish:vendor_completions.d/snaplift-cli.fish; do
  check test -f "$share/${shell/://}"
  ! command -v "${shell%:*}" >/dev/null || check "${shell%:*}" -n "$share/${shell/://}"
done
exit "$failed"
