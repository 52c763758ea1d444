# Completion of bash for quarn-batch and quarn. The options are those that the program's --help names, so that
# they are always its own.

# _quarn_options PROGRAM: its options, a line each; those that take a value end in "=".
_quarn_options() {
  "$1" --help 2>/dev/null | awk '/^ +(-[a-zA-Z], )?--/ {
    sub(/^ +(-[a-zA-Z], )?/, "")
    print $1 ($0 ~ /^--[a-z-]+ [A-Z]/ ? "=" : "")
  }'
}

# _quarn_files WORD PATTERN...: folders, and the files whose names fit one of the patterns.
_quarn_files() {
  local word=$1 pattern
  shift
  compgen -d -- "$word"
  for pattern in "$@"; do
    compgen -f -X "!$pattern" -- "$word"
  done
}

# _quarn_formats WORD NAME...: the names that may follow the last comma of a list.
_quarn_formats() {
  local word=$1 before=
  shift
  case $word in
    *,*) before=${word%,*}, ;;
  esac
  compgen -P "$before" -W "$(printf '%s\n' "$@")" -- "${word##*,}"
}

_quarn() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  # bash takes "--format=b" apart at the sign.
  if [ "$word" = "=" ]; then
    word=
  elif [ "$before" = "=" ]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  local IFS=$'\n'
  COMPREPLY=()
  case $before in
    --format) COMPREPLY=($(compgen -W $'bmp\npng' -- "$word")); return ;;
    --quality) COMPREPLY=($(compgen -W $'plain\nfine' -- "$word")); return ;;
    --profile) COMPREPLY=($(_quarn_formats "$word" svg pdf csv gds)); return ;;
    --mesh) COMPREPLY=($(_quarn_formats "$word" glb stl)); return ;;
    --report)
      compopt -o filenames
      COMPREPLY=($(_quarn_files "$word" '*.@(html|HTML)'))
      return ;;
    -o | --output | --dump | --data)
      compopt -o filenames
      COMPREPLY=($(compgen -d -- "$word"))
      return ;;
    --cuts)
      compopt -o filenames
      COMPREPLY=($(_quarn_files "$word" '*.@(csv|CSV)'))
      return ;;
  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "$(_quarn_options "$1")" -- "$word"))
    if [[ ${COMPREPLY[0]-} == *= ]]; then compopt -o nospace; fi
    return
  fi
  compopt -o filenames
  COMPREPLY=($(_quarn_files "$word" '*.@(gds|GDS|gds2|gz|txt|TXT)'))
}

shopt -s extglob
complete -F _quarn quarn-batch quarn
