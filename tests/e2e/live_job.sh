#!/usr/bin/env bash
# A live session and its faults, with real keys on a virtual display against the simulated ZEM:
# edits that arrive in the running unit, a unit that falls silent, refuses, cuts its answers short,
# is unplugged and plugged in again; the analog monitor; a window that is closed in the middle.
#   live_job.sh BUILD_FOLDER OUT_FOLDER
here=$(cd "$(dirname "$0")" && pwd)
. "$here/display.sh"
. "$here/garage.sh"

# edit MS BYTE: an injector offset typed in the editor arrives in the unit.
type_where_the_keys_are() {
  keys alt+i
  type_text "$1"
  keys Return
}
type_offset() {
  main_frame
  type_where_the_keys_are "$1"
}
arrives() { wait_for 20 "the offset of $1 ms in the ZEM" zem_holds 2 "$2"; }
edit() {
  type_offset "$1"
  arrives "$1" "$2"
}

# The monitor comes up again, and the keys are in the editor when nothing moves any more.
monitor_comes_back() { # AFTER WHAT
  wait_for 30 "the digital monitor $1" window_titled "$monitor"
  frames_flow
  wait_for 5 "the keys of the editor $1" has_the_keys "$frame"
}

# A click into the monitor's window.
click_monitor() { xdotool mousemove --window "$(window_titled "$monitor")" 30 30 click 1; }

prepare_garage "$1" "$2"
start_display 1024 768
start_zem
start_program

open_calibration
keys Escape
tell "opened V8.bin"

# ---- the digital monitor above an editor --------------------------------------------------------

choose_monitor alt+d
keys alt+m
wait_for 30 "the digital monitor" window_titled "$monitor"
frames_flow
main_frame
keys alt+e
answer 'File Open Query' alt+y
main_frame
keys alt+p
edit 1.5 12
picture first-edit
tell "an edit arrived in the running unit"

zem silent
wait_for 60 "the failure screen" window_titled 'COM ERROR'
picture com-error
zem clear
answer 'COM ERROR' Return
monitor_comes_back "after the silence"
type_where_the_keys_are 0.75
arrives 0.75 6
tell "the session went on after a silence, and an edit arrived"

zem unplug
wait_for 30 "the failure screen of the unplugged cable" window_titled 'COM ERROR'
picture unplugged
zem replug
answer 'COM ERROR' Return
wait_for 30 "the digital monitor on the replugged cable" window_titled "$monitor"
frames_flow
click_monitor
frames_flow
has_the_keys "$monitor" || die "the keys have left the window that was clicked"
edit 2.5 20
tell "the session went on after unplug and replug, and an edit arrived"

zem wrong-second:63:1@P2
type_offset 3
answer 'INVALID PROM ERROR' Return
answer '^Halvane2$' Return
frames_flow
zem_holds 2 20 || die "a refused write has changed the ZEM"
edit 3.5 28
tell "a wrong second byte refused an edit, and the next one arrived"

zem short:1:1@S1
type_offset 0.5
answer '^Halvane2$' Return
zem_holds 2 28 || die "a write without its end record has changed the ZEM"
edit 0.5 4
zem short:1:2@F
frames_flow
edit 1.25 10
tell "an answer cut short refused an edit, and the next one arrived"

wait_for 20 "the keys of the digital monitor" activate "$monitor"
keys Escape
wait_for 20 "the released port" port_is_free
tell "the digital monitor was left"

# ---- the analog monitor -------------------------------------------------------------------------

main_frame
keys Escape
choose_monitor alt+a
opened=$(times_heard 42)
keys alt+m
wait_for 30 "the analog monitor" heard_more_than "$opened" 42
frames_flow
sent=$(times_heard '52 33 15')
keys alt+3
type_text 5
keys Return
wait_for 20 "5 degrees of advance in the ZEM" heard_more_than "$sent" '52 33 15'
picture analog-monitor
tell "the analog monitor added 5 degrees"

keys Escape
wait_for 20 "the released port" port_is_free
zem silent@G
asked=$(times_heard 47)
main_frame
keys alt+m
wait_for 30 "the question for the offsets" heard_more_than "$asked" 47
keys Escape
wait_for 5 "the end of a session that has no answer" port_is_free
tell "Esc was answered while the unit was silent"

# ---- the window closed in the middle ------------------------------------------------------------

zem clear
main_frame
keys alt+m
frames_flow
main_frame
keys alt+F4
answer 'Save File Data' alt+n
expect_end
tell "the window was closed in the middle of a session, and the program ended"
