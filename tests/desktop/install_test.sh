#!/bin/sh
# install_test.sh FOLDER CMAKE BUILD [window]: what an installation holds, with the window or without, and
# that it can be moved.
set -eu
tests=$(cd "$(dirname "$0")" && pwd)
folder=$1 cmake=$2 build=$3 window=${4:-}
rm -rf "$folder"
mkdir -p "$folder"
"$cmake" --install "$build" --prefix "$folder/first" >"$folder/log" || { cat "$folder/log"; exit 1; }
mv "$folder/first" "$folder/moved"

failed=0

# expect FILES...: they are there. Paths are relative to the prefix.
expect() {
  for file in "$@"; do
    [ -s "$folder/moved/$file" ] || { echo "$file is not installed"; failed=1; }
  done
}

# Manual pages are packed where there is a gzip.
suffix=
command -v gzip >/dev/null && suffix=.gz

expect bin/quarn-batch "share/man/man1/quarn-batch.1$suffix" share/quarn/colors.txt share/quarn/surface.shader \
  share/bash-completion/completions/quarn-batch share/quarn/point.shader share/quarn/examples/damascene/damascene.gds share/doc/quarn/README.md
if [ "$window" = window ]; then
  expect bin/quarn "share/man/man1/quarn.1$suffix" share/applications/quarn.desktop share/mime/packages/quarn.xml \
    share/metainfo/quarn.metainfo.xml share/icons/hicolor/scalable/apps/quarn.svg
  for size in 16 22 24 32 48 64 128 256 512; do
    expect "share/icons/hicolor/${size}x$size/apps/quarn.png"
  done
  "$folder/moved/bin/quarn" --version | grep -q '^Quarn [0-9]' || { echo "quarn does not start"; failed=1; }
elif [ -e "$folder/moved/share/applications" ]; then
  echo "A menu entry is installed without its program"
  failed=1
fi

# The pages lead to each other and to pictures that are there, and name no file that only the sources have.
(cd "$folder/moved/share/doc/quarn" && sh "$tests/installed_docs.sh") || failed=1

# It finds its colour names in the folder that was moved: --check needs them.
example=$folder/moved/share/quarn/examples/damascene/damascene
(cd "$folder" && moved/bin/quarn-batch --check "$example.gds" "$example.txt" >"$folder/log" 2>&1) ||
  { cat "$folder/log"; failed=1; }
rm -rf "$folder"
exit $failed
