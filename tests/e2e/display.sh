# A virtual display with a window manager, real keys and pictures. Sourced by the end-to-end jobs.
set -euo pipefail

pieces=()
display_is_up=
finish() {
  local piece signal
  for ((i = ${#pieces[@]} - 1; i >= 0; --i)); do
    piece=${pieces[i]}
    # Asked to end, the program would ask whether to save, and nobody is there to answer.
    signal=TERM
    [ "$piece" != "${program:-}" ] || signal=KILL
    kill -"$signal" "$piece" 2>/dev/null || true
    wait "$piece" 2>/dev/null || true
  done
}
trap finish EXIT

die() {
  printf 'FAILED: %s\n' "$*" >&2
  [ -n "$display_is_up" ] && picture failed || true
  exit 1
}
trap 'die "line $LINENO: $BASH_COMMAND"' ERR

# start_display WIDTH HEIGHT
start_display() {
  local number_file
  number_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 "$1x$2x24" -nolisten tcp 3>"$number_file" 2>/dev/null &
  pieces+=($!)
  local try
  for try in $(seq 200); do
    [ -s "$number_file" ] && break
    sleep 0.05
  done
  [ -s "$number_file" ] || die "no virtual display"
  DISPLAY=:$(tr -d '\n' <"$number_file")
  rm -f "$number_file"
  export DISPLAY
  display_is_up=1
  unset WAYLAND_DISPLAY
  local manager='' end=$((SECONDS + 60))
  # A window that is mapped while the window manager takes over the display is lost to both.
  until xdotool get_num_desktops >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || die "no window manager"
    # On a busy machine it can give up before the display answers.
    if ! kill -0 "$manager" 2>/dev/null; then
      openbox >/dev/null 2>&1 &
      manager=$!
      pieces+=("$manager")
    fi
    sleep 0.05
  done
}

# wait_for SECONDS WHAT COMMAND...: the command succeeds within the time.
wait_for() {
  local seconds=$1 what=$2
  shift 2
  local end=$((SECONDS + seconds))
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || die "waited in vain for $what"
    kill -0 "$program" 2>/dev/null || die "the program has ended while waiting for $what"
    sleep 0.05
  done
}

# The window of this title has the keys.
activate() {
  local window
  window=$(xdotool search --onlyvisible --name "$1" | head -n 1) || return 1
  [ -n "$window" ] || return 1
  [ "$(xdotool getactivewindow 2>/dev/null)" = "$window" ] && return 0
  xdotool windowactivate "$window" >/dev/null 2>&1
  sleep 0.1
  [ "$(xdotool getactivewindow 2>/dev/null)" = "$window" ]
}

has_the_keys() { xdotool getwindowname "$(xdotool getactivewindow)" | grep -q "$1"; }

window_titled() { xdotool search --onlyvisible --name "$1"; }
no_window_titled() { ! window_titled "$1"; }

# The picture has stood still for a moment.
settle() {
  local before='' now='' try
  for try in $(seq 60); do
    now=$(import -silent -window root -depth 8 rgb:- | cksum)
    [ "$now" = "$before" ] && return 0
    before=$now
    sleep 0.15
  done
}

step=0
picture() { # NAME: numbered picture of the whole display
  step=$((step + 1))
  import -silent -window root "$out/$(printf '%02d' "$step")-$1.png"
}

keys() { xdotool key --clearmodifiers --delay 30 "$@"; }
type_text() { xdotool type --clearmodifiers --delay 15 -- "$1"; }
