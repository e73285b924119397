#!/usr/bin/env bash
# The main job by itself, with real keys on a virtual display against the simulated ZEM: open a
# calibration, change two injector values, save, program, verify; then the 512 bytes in the ZEM are
# compared with the S19 file.
#   main_job.sh BUILD_FOLDER OUT_FOLDER
here=$(cd "$(dirname "$0")" && pwd)
. "$here/display.sh"
. "$here/garage.sh"

prepare_garage "$1" "$2"
start_display 1024 768
# shellcheck disable=SC2086
start_zem ${ZEMSIM_OPTIONS:-}
start_program
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
expect_end
tell "ended"
printf 'PROGRAM VERIFIED: pictures and files are in %s\n' "$(basename "$out")/"
