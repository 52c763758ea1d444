#!/bin/sh
# completion_test.sh FOLDER PROGRAMS: what bash offers while a call is typed. PROGRAMS is the folder of the programs.
set -eu
command -v bash >/dev/null || { echo "There is no bash here."; exit 77; }
folder=$1 programs=$2
rm -rf "$folder"
mkdir -p "$folder/sub folder"
completion=$(pwd)/data/shell/quarn-batch.bash
cd "$folder"
touch "a b.gds" c.GDS p.txt list.csv picture.png page.html
exec bash -u -s "$completion" "$programs" <<'SCRIPT'
source "$1"
PATH=$2:$PATH
compopt() { :; }  # it works during a completion only
failed=0

# expect WORDS -- OFFERED...: what is offered for the last of the words, in any order.
expect() {
  COMP_WORDS=()
  while [ "$1" != "--" ] || [ ${#COMP_WORDS[@]} -eq 0 ]; do
    COMP_WORDS+=("$1")
    shift
  done
  shift
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _quarn "${COMP_WORDS[0]}"
  local wanted offered
  wanted=$(printf '%s\n' "$@" | sort)
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort)
  if [ "$wanted" != "$offered" ]; then
    printf 'For "%s" there is offered:\n%s\ninstead of:\n%s\n' "${COMP_WORDS[*]}" "$offered" "$wanted"
    failed=1
  fi
}

expect quarn-batch --cu -- --cut= --cuts=
expect quarn-batch --no -- --no-images
expect quarn-batch --format "" -- bmp png
expect quarn-batch --format = p -- png
expect quarn-batch --profile "" -- svg pdf csv gds
expect quarn-batch --profile svg,p -- svg,pdf
expect quarn-batch --profile = svg,pdf, -- svg,pdf,svg svg,pdf,pdf svg,pdf,csv svg,pdf,gds
expect quarn-batch --mesh g -- glb
expect quarn-batch --report "" -- "sub folder" page.html
expect quarn-batch --cuts "" -- "sub folder" list.csv
expect quarn-batch -o "" -- "sub folder"
expect quarn-batch "" -- "sub folder" "a b.gds" c.GDS p.txt
expect quarn-batch "a b.gds" p -- p.txt

# Every option of the help, and nothing else.
COMP_WORDS=(quarn-batch -) COMP_CWORD=1
_quarn quarn-batch
for option in $(quarn-batch --help | grep -o '^ *\(-[a-z], \)\?--[a-z-]*' | grep -o -e '--.*'); do
  printf '%s\n' "${COMPREPLY[@]}" | grep -qx -e "$option=\?" || { echo "$option is not offered"; failed=1; }
done
exit $failed
SCRIPT
