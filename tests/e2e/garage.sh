# A garage for the end-to-end jobs: a folder with a calibration, the simulated ZEM on its terminal,
# the program beside it. Sourced after display.sh.

# prepare_garage BUILD_FOLDER OUT_FOLDER
prepare_garage() {
  built=$(cd "$1" && pwd)
  mkdir -p "$2"
  out=$(cd "$2" && pwd)
  rm -rf "${out:?}"/*.png "$out"/zem-* "$out/garage" "$out/config"
  garage=$out/garage
  mkdir -p "$garage" "$out/config"
  cp "$built/base.bin" "$garage/base.bin"
  cp "$built/base.bin" "$garage/V8.bin"
  find "$here/../../data" -maxdepth 1 \( -name '*.txt' -o -name '*.TIP' \) ! -name CMakeLists.txt \
    -exec cp {} "$garage/" \;
  export XDG_CONFIG_HOME=$out/config XDG_RUNTIME_DIR=$out/config HOME=$garage
  export LC_ALL=C.UTF-8 QT_ACCESSIBILITY=0
  chmod 700 "$out/config"
}

# single FILE N: single number N of a BIN file, as text.
single() { od -An -j $((4 * $2)) -N 4 -t f4 "$1" | tr -d ' '; }

tell() { printf '  %3d s  %s\n' "$SECONDS" "$*"; }

# start_zem OPTION...: the simulated ZEM is COM1.
start_zem() {
  "$built/zemsim" --link "$out/zem-terminal" --image "$out/zem-memory" --control "$out/zem-control" \
    --log "$out/zem-traffic" "$@" >"$out/zem-says" &
  program=$!
  pieces+=("$program")
  wait_for 10 "the simulated ZEM" test -e "$out/zem-terminal"
  export HALVANE2_COM1=$out/zem-terminal
}

start_program() {
  cd "$garage"
  "$built/halvane2" 2>"$out/program.log" &
  program=$!
  pieces+=("$program")
  wait_for 90 "the main frame" window_titled '^Halvane2 Version'
  wait_for 30 "the keys of the main frame" activate '^Halvane2 Version'
}

# The program ends by itself, with exit code 0 and without a word of the sanitizers.
expect_end() {
  local code=0 try
  for try in $(seq 600); do
    kill -0 "$program" 2>/dev/null || break
    sleep 0.05
  done
  kill -0 "$program" 2>/dev/null && die "the program did not end"
  wait "$program" || code=$?
  [ "$code" = 0 ] || die "the program ended with exit code $code: $(tail -n 20 "$out/program.log")"
  ! grep -qE 'ERROR: [A-Za-z]*Sanitizer|runtime error' "$out/program.log" ||
    die "$(cat "$out/program.log")"
}

# ---- the program's windows ----------------------------------------------------------------------

frame='^Halvane2 Version'
monitor='^Click Form to Activate Keys'

main_frame() { wait_for 20 "the keys of the main frame" activate "$frame"; }

# answer TITLE KEY: a box of this title comes up, and goes with this key.
answer() {
  wait_for 30 "the box '$1'" activate "$1"
  keys "$2"
  wait_for 10 "the end of the box '$1'" no_window_titled "$1"
}

# The screen options, then the monitor. The main menu is up and stays.
choose_monitor() { # KEY of the choice
  main_frame
  keys alt+o
  wait_for 20 "the screen options" activate 'SCREEN OPTIONS'
  keys "$1" Escape
  wait_for 10 "the main menu" no_window_titled 'SCREEN OPTIONS'
  main_frame
}

# V8.bin is open, the calibration screen is up.
open_calibration() {
  keys alt+e
  wait_for 20 "the open dialog" activate 'Open Halvane2 User BIN Files'
  type_text "$garage/V8.bin"
  keys Return
  wait_for 20 "the opened file in the caption" window_titled "Currently Open 'BIN' File"
  main_frame
}

# ---- the simulated ZEM --------------------------------------------------------------------------

zem_said() { [ "$(grep -c "^$1" "$out/zem-says")" -gt "$2" ]; }

# zem COMMAND: a line of its control file, in force when this returns.
zem() {
  local before
  before=$(grep -c '^control: ' "$out/zem-says" || true)
  echo "$1" >>"$out/zem-control"
  wait_for 10 "the simulated ZEM to take '$1'" zem_said 'control: ' "$before"
}

# zem_byte N: byte N of its memory.
zem_byte() { od -An -t u1 -j "$1" -N 1 "$out/zem-memory" | tr -d ' '; }
zem_holds() { [ "$(zem_byte "$1")" = "$2" ]; }

# The bytes that have reached it, "52 33 15 46 ...".
zem_heard() { sed -n 's/^ *[0-9.]* > //p' "$out/zem-traffic" | tr '\n' ' '; }
times_heard() { zem_heard | { grep -o "$1" || true; } | wc -l; }
# heard_more_than TIMES BYTES
heard_more_than() { [ "$(times_heard "$2")" -gt "$1" ]; }

# Whether the program has closed its terminal.
terminal() { sed -n 's/^terminal //p' "$out/zem-says" | tail -n 1; }
port_is_free() { [ -z "$(find "/proc/$program/fd" -lname "$(terminal)" 2>/dev/null)" ]; }

frames_flow() {
  local before
  before=$(times_heard 46)
  wait_for 30 "frames" heard_more_than $((before + 5)) 46
}
