#!/usr/bin/env bash
# The program is asked to end by signals, as by a logout or a closed terminal, with real keys on a
# virtual display against the simulated ZEM: unsaved work is asked for, a session is given up in
# order, and who asks twice is obeyed at once. And it is started where there is no display.
#   leave_job.sh BUILD_FOLDER OUT_FOLDER
here=$(cd "$(dirname "$0")" && pwd)
. "$here/display.sh"
. "$here/garage.sh"

tog() { single "$garage/V8.bin" 232; }

change_tog() { # MS, on the injector screen
  open_calibration
  keys alt+p
  settle
  keys alt+o
  type_text "$1"
  keys Return
  settle
}

prepare_garage "$1" "$2"

code=0
DISPLAY=:9997 QT_QPA_PLATFORM=xcb "$built/halvane2" 2>"$out/no-display.log" || code=$?
[ "$code" = 1 ] || die "without a display the program ended with exit code $code"
grep -q '^halvane2: no display can be used (DISPLAY is ":9997")' "$out/no-display.log" ||
  die "nothing told that the display is missing: $(cat "$out/no-display.log")"
tell "a display that is not there was told"

start_display 1024 768
start_zem

# ---- unsaved work -------------------------------------------------------------------------------

start_program
change_tog 14.5
"$built/halvane2" 2>"$out/second.log" || die "a second program ended with exit code $?"
grep -q '^halvane2: Halvane2 runs already' "$out/second.log" ||
  die "a second program did not tell why it ends: $(cat "$out/second.log")"
tell "a second program told that one runs, and ended"
kill -TERM "$program"
wait_for 20 "the question to save" activate 'Save File Data'
picture asked-to-save
answer 'Save File Data' alt+y
expect_end
[ "$(tog)" = 14.5 ] || die "TOG was not saved"
tell "a logout asked, and the changed value was saved"

start_program
change_tog 12.25
kill -HUP "$program"
wait_for 20 "the question to save" activate 'Save File Data'
sleep 1.2
kill -HUP "$program"
code=0
wait "$program" || code=$?
[ "$code" = 129 ] || die "the second signal ended the program with exit code $code"
[ "$(tog)" = 14.5 ] || die "a value was saved that nobody wanted to save"
tell "the second signal ended the program at once"

# A finger that rests on Esc leaves the screen, not the program.
start_program
change_tog 16
xdotool keydown Escape
sleep 1.5
xdotool keyup Escape
settle
kill -0 "$program" 2>/dev/null || die "an Esc that was held down has ended the program"
no_window_titled 'Save' || die "an Esc that was held down has asked for something"
kill -TERM "$program"
answer 'Save File Data' alt+y
expect_end
[ "$(tog)" = 16 ] || die "the changed value was lost"
tell "Esc was held down, and left one screen"

# ---- a session ----------------------------------------------------------------------------------

start_program
open_calibration
keys Escape
choose_monitor alt+d
keys alt+m
wait_for 30 "the digital monitor" window_titled "$monitor"
frames_flow
wait_for 20 "the keys of the digital monitor" activate "$monitor"
keys c
wait_for 20 "the open loop in the ZEM" heard_more_than 0 '52 55 FF'
frames_flow
released=$(times_heard '52 55 00') # the opening of the session does it too
kill -TERM "$program"
expect_end
heard_more_than "$released" '52 55 00' || die "the ZEM was left in open loop"
tell "a session was given up, and the ZEM has its loop control again"
