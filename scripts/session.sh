# shellcheck shell=bash disable=SC2034
# What the scripts share that give a command a session of its own; sourced by them. Sets `folder`, a folder
# that $1 names a place and pattern for (mktemp -d), and removes it at the end, after the parts of the
# session have ended.

folder=$(mktemp -d ${1:+"$1"})
processes=()

# A script may have more to end before its parts do.
end_session() { :; }

clean_up() {
  local i
  end_session
  for ((i = ${#processes[@]} - 1; i >= 0; i--)); do
    kill "${processes[i]}" 2>/dev/null || true
    wait "${processes[i]}" 2>/dev/null || true
  done
  # A part may still be writing its last file.
  rm -rf "$folder" 2>/dev/null || { sleep 1 && rm -rf "$folder"; }
}
trap clean_up EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

# start NAME COMMAND...: starts a part of the session and waits until it has written $folder/NAME, where
# descriptor 3 leads. What it says goes to NAME.log. It ends with this script, however that ends.
start() {
  local name=$1 process tries=0
  shift
  setpriv --pdeathsig TERM -- "$@" 3>"$folder/$name" >"$folder/$name.log" 2>&1 </dev/null &
  process=$!
  processes+=("$process")
  until [ -s "$folder/$name" ]; do
    tries=$((tries + 1))
    if [ $tries -gt 600 ] || ! kill -0 "$process" 2>/dev/null; then
      echo "The session does not start; $name says:" >&2
      cat "$folder/$name.log" >&2
      exit 1
    fi
    sleep 0.05
  done
}

# start_display SIZE: an X server without a screen, whose display is DISPLAY from then on.
start_display() {
  start display Xvfb -displayfd 3 -screen 0 "${1}x24" -nolisten tcp -noreset
  DISPLAY=:$(cat "$folder/display")
  export DISPLAY
}

start_window_manager() {
  start manager openbox --startup "sh -c \"echo ready >'$folder/manager'\""
}

# run_and_exit COMMAND...: in the background, so that a signal to this script is handled at once.
run_and_exit() {
  local status=0
  setpriv --pdeathsig TERM -- "$@" <&0 &
  processes+=("$!")
  wait "$!" || status=$?
  exit "$status"
}
