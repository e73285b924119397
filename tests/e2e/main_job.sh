#!/usr/bin/env bash
# The main job by itself, with real keys on a virtual display against the simulated ZEM: open a
# calibration, change two injector values, save, program, verify; then the 512 bytes in the ZEM are
# compared with the S19 file.
#   main_job.sh BUILD_FOLDER OUT_FOLDER
here=$(cd "$(dirname "$0")" && pwd)
. "$here/display.sh"

built=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
rm -rf "${out:?}"/*.png "$out/garage" "$out/config"
garage=$out/garage
mkdir -p "$garage" "$out/config"
cp "$built/base.bin" "$garage/base.bin"
cp "$built/base.bin" "$garage/V8.bin"
find "$here/../../data" -maxdepth 1 \( -name '*.txt' -o -name '*.TIP' \) ! -name CMakeLists.txt \
  -exec cp {} "$garage/" \;
# A first run with the tips switched off, so that the main menu is up at once.
export XDG_CONFIG_HOME=$out/config XDG_RUNTIME_DIR=$out/config HOME=$garage
export LC_ALL=C.UTF-8 QT_ACCESSIBILITY=0
chmod 700 "$out/config"

tell() { printf '  %s\n' "$*"; }

start_display 1024 768
"$built/zemsim" --quiet --link "$out/zem-terminal" --image "$out/zem-memory" ${ZEMSIM_OPTIONS:-} &
pieces+=($!)
program=$!
wait_for 10 "the simulated ZEM" test -e "$out/zem-terminal"
export HALVANE2_COM1=$out/zem-terminal
rm -f "$out/zem-memory"

cd "$garage"
"$built/halvane2" 2>"$out/program.log" &
program=$!
pieces+=("$program")
wait_for 30 "the main frame" window_titled '^Halvane2 Version'
wait_for 10 "the keys of the main frame" activate '^Halvane2 Version'
settle
picture main-menu
tell "started: the main menu is up"

keys alt+e
wait_for 10 "the open dialog" window_titled 'Open Halvane2 User BIN Files'
settle
type_text "$garage/V8.bin"
picture open-dialog
keys Return
wait_for 10 "the opened file in the caption" window_titled "Currently Open 'BIN' File"
settle
picture calibration-screen
tell "opened V8.bin"

keys alt+p
settle
picture injectors
keys alt+o
type_text "14.5"
keys Return
settle
picture tog-changed
keys alt+i
type_text "0.75"
keys Return
settle
picture offset-changed
tell "changed TOG to 14.5 ms and the injector offset to 0.75 ms"

before=$(cksum <"$garage/V8.bin")
keys ctrl+s
saved() { [ "$(cksum <"$garage/V8.bin")" != "$before" ] && [ -s "$garage/V8.S19" ]; }
wait_for 10 "the saved files" saved
settle
picture saved
tell "saved V8.bin and V8.S19"

keys Escape
settle
picture back-on-calibration-screen
keys Escape
settle
keys alt+p
wait_for 20 "the programmed ZEM" test -s "$out/zem-memory"
settle
picture program-verified
tell "programmed the ZEM"

# Single number N of a BIN file, as text.
single() { od -An -j $((4 * $2)) -N 4 -t f4 "$1" | tr -d ' '; }
[ "$(single "$garage/V8.bin" 232)" = 14.5 ] || die "TOG did not reach the BIN file"
[ "$(single "$garage/V8.bin" 2)" = 0.75 ] || die "the injector offset did not reach the BIN file"
cmp -s <(head -c 16 "$garage/base.bin") <(head -c 16 "$garage/V8.bin") && die "nothing was saved"

# The data bytes of the S1 lines against the memory of the ZEM.
of_file=$(tr -d '\r' <"$garage/V8.S19" | sed -n 's/^S113B[67]..\(.\{32\}\)..$/\1/p' | tr -d '\n')
of_zem=$(od -An -v -t x1 "$out/zem-memory" | tr -d ' \n' | tr 'a-f' 'A-F')
[ "${#of_file}" = 1024 ] || die "the S19 file does not hold 512 bytes"
[ "$of_file" = "$of_zem" ] || die "the ZEM does not hold what the S19 file says"
tell "the 512 bytes in the ZEM are those of V8.S19"

keys space
settle
picture main-menu-again
keys alt+e  # another file, then none after all
settle
keys Escape
wait_for 10 "the open dialog" window_titled 'Open Halvane2 User BIN Files'
keys Escape
settle
keys ctrl+x
for _ in $(seq 200); do
  kill -0 "$program" 2>/dev/null || break
  sleep 0.05
done
kill -0 "$program" 2>/dev/null && die "the program did not end"
wait "$program" || die "the program ended with exit code $?: $(tail -n 20 "$out/program.log")"
grep -qE 'ERROR: AddressSanitizer|runtime error' "$out/program.log" && die "$(cat "$out/program.log")"
tell "ended"
printf 'PROGRAM VERIFIED: pictures and files are in %s\n' "$(basename "$out")/"
