#!/bin/sh
# mime_test.sh FOLDER: a desktop takes a layout for one by its name and by what is in it, and nothing else.
set -eu
for tool in update-mime-database gio; do
  command -v "$tool" >/dev/null || { echo "There is no $tool here."; exit 77; }
done
folder=$1
rm -rf "$folder"
mkdir -p "$folder/data/mime/packages"
cp data/desktop/quarn.xml "$folder/data/mime/packages"
export XDG_DATA_HOME="$folder/data"
update-mime-database "$folder/data/mime" >/dev/null 2>&1

failed=0

# expect KIND FILE: the kind of file that a desktop sees.
expect() {
  kind=$(gio info -a standard::content-type "$folder/$2" | sed -n 's/.*standard::content-type: //p')
  if [ "$kind" != "$1" ]; then
    echo "$2 is taken for $kind; expected $1"
    failed=1
  fi
}

layout=examples/damascene/damascene.gds
for name in layout.gds LAYOUT.GDS layout.gds2 layout.gdsii layout-without-extension; do
  cp "$layout" "$folder/$name"
  expect application/x-gdsii "$name"
done
# HEADER alone, and BGNLIB alone, are not enough.
printf '\000\006\000\002\000\003\001\002\003\004\005\006' >"$folder/header-only"
expect application/octet-stream header-only
printf '\000\000\000\000\000\003\000\034\001\002\000\001' >"$folder/bgnlib-only"
expect application/octet-stream bgnlib-only
printf 'settings -version 3\n' >"$folder/process.txt"
expect text/plain process.txt
rm -rf "$folder"
exit $failed
