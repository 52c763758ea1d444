#!/usr/bin/env bash
# The program as it is shipped, used as a person uses it: unpacked into a folder with an odd name, started
# there, driven by keys, its dialogs typed into. Every example is loaded, run and saved, and compared with
# what the command line program of the building system makes of it. Needs a desktop session with Wine:
#   scripts/windows-session tests/win32/program_session.sh BUILD READER BATCH OUTPUT
# BUILD    build folder of the Windows programs
# READER   program_reader.exe
# BATCH    quarn-batch of the building system
# OUTPUT   folder for what is made: console texts, saved pictures, screenshots
set -euo pipefail

if [ ! -x "$3" ]; then
  echo "There is no $3 to compare with." >&2
  exit 77
fi
build=$(realpath "$1")
reader_program=$(realpath "$2")
batch=$(realpath "$3")
output=$4
wine=${QUARN_WINE:-wine}
rm -rf "$output"
mkdir -p "$output"
output=$(realpath "$output")

fail() {
  echo "FAILED: $*" >&2
  import -window root "$output/failed.png" 2>/dev/null || true
  exit 1
}

reader() {
  "$wine" "$reader_program" "$@" 2>/dev/null
}

expect() { # WHAT EXPECTED SEEN
  [ "$2" = "$3" ] || fail "$1: expected \"$2\", seen \"$3\""
  echo "ok: $1"
}

# The package.
(cd "$output" && cpack --config "$build/CPackConfig.cmake" -B "$output/package") >"$output/cpack.log" 2>&1 ||
  fail "no package: $(tail -n 3 "$output/cpack.log")"
place="$output/ein Ordner 半導体 Ωμ"
mkdir -p "$place"
(cd "$place" && cmake -E tar xf "$output"/package/*.zip)
cd "$place"/quarn-*
# A file dialog opens in the current folder when that holds a file of its kind; from there the paths to type
# have plain letters only, which is all that can be typed without a keyboard.
cp examples/cmos-inverter/cmos_inverter.gds .

grep -q $'^Quarn .* for Windows\r$' README.txt || fail "README.txt is not a text of Windows"

"$wine" quarn.exe >"$output/program.log" 2>&1 &
program=$!
reader wait Quarn || fail "the window does not come up"
window=$(xdotool search --sync --onlyvisible --name '^Quarn$' | tail -n 1)
xdotool windowactivate --sync "$window"

# key KEYS...: presses keys in the main window.
key() {
  xdotool windowactivate --sync "$window" key --clearmodifiers "$@"
}

# choose KEY TITLE PATH: picks a command by its letter and types a path into its dialog.
choose() {
  local tries=0
  key "alt+$1"
  reader wait "$2" || fail "no dialog \"$2\""
  until [ "$(reader field)" = "$3" ]; do
    tries=$((tries + 1))
    [ $tries -lt 4 ] || fail "the dialog \"$2\" cannot be typed into: $(reader field)"
    sleep 0.5
    xdotool key ctrl+a
    xdotool type --delay 4 "$3"
    sleep 0.3
  done
  xdotool key Return
  reader wait-gone "$2" || fail "the dialog \"$2\" stays"
}

# Texts without carriage returns and notes, figures of the clock and folders. Notes of the command line's program
# go elsewhere.
plain() {
  tr -d '\r' | sed -E '/^Note: /d; s/[0-9]+\.[0-9]{3} s/# s/g
    s#(database|file|folder)( "?).*[\\/]([^\\/]+\.(gds|txt))#\1\2\3#; s#(to folder) "[^"]*"#\1#'
}

run_example() { # FOLDER NAME
  choose l "Open GDS file" "$way\\$1\\$2.gds"
  way=..
  reader wait-console "finished loading" 60 || fail "$2 does not load: $(reader console)"
  expect "$2: the status bar names the layout" "$folder\\$1\\$2.gds" "$(reader status 1)"
  reader console >"$output/$2.console"
  choose r "Open process file" "$2.txt"
  if [ ! -f "$output/running.png" ]; then
    reader wait-console "Executing POLY deposition" 60 || fail "the run does not get on: $(reader console)"
    import -window root "$output/running.png"
  fi
  reader wait-console "Use left and right arrows" 150 || fail "$2 does not end: $(reader console)"
  key alt+s
  reader wait-console "Saved polygons to" 60 || fail "$2 is not saved: $(reader console)"
  reader console >>"$output/$2.console"
}

# The same example by the other build, in a folder of its own.
run_batch() { # FOLDER NAME
  mkdir -p "$output/batch/$2"
  (cd "$output/batch/$2" && "$batch" -o pictures "$place/examples/$1/$2.gds" "$place/examples/$1/$2.txt") \
    >"$output/batch/$2/console" 2>"$output/batch/$2/errors" || touch "$output/batch/$2/failed"
}

compare_example() { # FOLDER NAME
  local other="$output/batch/$2" saved
  saved=$(ls -d "examples/$1/$2 "*)
  [ ! -f "$other/failed" ] || fail "$2 by the other build: $(cat "$other/errors")"
  plain <"$other/console" >"$other/console.plain"
  plain <"$output/$2.console" >"$output/$2.plain"
  diff "$other/console.plain" "$output/$2.plain" >"$output/$2.diff" ||
    fail "$2: the console texts differ: $(head "$output/$2.diff")"
  echo "ok: $2: console text"
  cmp "$other/pictures/Polygon.gds" "$saved/Polygon.gds" || fail "$2: the polygons differ"
  echo "ok: $2: Polygon.gds"
  expect "$2: names of the files" "$(ls "$other/pictures")" "$(ls "$saved")"
  # Written to the current folder, which is the one that the dialog was left in.
  diff --strip-trailing-cr "$other/VertexData.txt" "examples/$1/VertexData.txt" >/dev/null ||
    fail "$2: the heights differ"
  echo "ok: $2: VertexData.txt"
  local figures
  figures=$(reader compare "Z:$other/pictures" "Z:$PWD/$saved") || fail "$2: pictures: $figures"
  echo "ok: $2: $figures"
}

# Every example, with the heights dumped at the end.
EXAMPLES=("cmos-inverter cmos_inverter" "damascene damascene" "standard-cell standard_cell"
  "mems-cantilever mems_cantilever" "waveguide-lens waveguide_lens")
for example in examples/*/*.txt; do
  if grep -q '^stop' "$example"; then
    sed -i '0,/^stop/s//dump\nstop/' "$example"
  elif ! grep -q '^dump' "$example"; then
    printf '\ndump\n' >>"$example"
  fi
done
place=$PWD
folder="Z:${place//\//\\}\\examples"
for example in "${EXAMPLES[@]}"; do
  # shellcheck disable=SC2086
  run_batch $example
done &
others=$!

way=examples  # then from one example's folder to the next
for example in "${EXAMPLES[@]}"; do
  # shellcheck disable=SC2086
  run_example $example
done

expect "title after the last run" "Cross section after COAT deposition" "$(reader title)"
key Right
sleep 0.5
expect "right arrow goes to the first picture" "The substrate" "$(reader title)"
key Left
sleep 0.5
expect "left arrow goes back" "Cross section after COAT deposition" "$(reader title)"
expect "the status bar names the run before" "$folder\\mems-cantilever\\mems_cantilever.txt" "$(reader status 3)"
import -window root "$output/done.png"
key alt+a
reader wait "Quarn 3.0.0" || fail "no About box"
case $(reader box) in
  "Quarn: software to render semicon process cross sections "*) echo "ok: About" ;;
  *) fail "About says $(reader box)" ;;
esac
xdotool key Return
reader wait-gone "Quarn 3.0.0" || fail "the About box stays"

key alt+F4
status=0
wait "$program" || status=$?
expect "exit status" 0 "$status"
wait "$others"
for example in "${EXAMPLES[@]}"; do
  # shellcheck disable=SC2086
  compare_example $example
done
