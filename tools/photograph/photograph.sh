#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# photograph.sh [BIN [PICTURES]]: takes the pictures of docs/pictures with the programs in BIN
# (build/release/bin). Needs Xvfb, xdotool and ImageMagick.
set -euo pipefail

here=$(cd "$(dirname "$0")/../.." && pwd)
bin=$(realpath "${1:-$here/build/release/bin}")
pictures=$(realpath "${2:-$here/docs/pictures}")
work=$(mktemp -d)
part=231
seconds_to_wait=20
started=()

start() {
  "$@" >>"$work/log.txt" 2>&1 &
  started+=($!)
}

stop() {
  for process in "${started[@]}"; do
    kill "$process" 2>>"$work/log.txt" || true
    wait "$process" || true
  done
  started=()
}

finish() {
  stop
  kill "$screen" 2>>"$work/log.txt" || true
  rm -rf "$work"
}

# until_seen COMMAND...: its output, as soon as it succeeds.
until_seen() {
  local end=$((SECONDS + seconds_to_wait))
  until "$@" 2>>"$work/log.txt"; do
    ((SECONDS < end)) || { echo "photograph.sh: waited in vain for: $*" >&2; cat "$work/log.txt" >&2; exit 1; }
    sleep 0.1
  done
}

# window TITLE WIDTH: the visible window of that title, at least that wide at 100 %.
window() {
  local id WIDTH
  for id in $(xdotool search --onlyvisible --name "^$1\$"); do
    eval "$(xdotool getwindowgeometry --shell "$id" | grep WIDTH)"
    ((WIDTH >= $2 * scale)) && { echo "$id"; return 0; }
  done
  return 1
}

# shoot NAME TITLE WIDTH
shoot() {
  local id
  id=$(until_seen window "$2" "$3")
  # What has changed last is on the screen a frame later.
  sleep 0.3
  import -window "$id" -strip -define png:compression-level=9 "$pictures/$1-$style$suffix.png"
}

# settings PORT DONT_SHOW_DIALOG
settings() {
  printf '[BRELANT]\nStart\\Com=%s\nStart\\StartMode0=True\nStart\\Dont=%s\nStart\\Prot=KiBus\n' \
    "$1" "$2" >"$work/settings.ini"
}

sensor() {
  start "$bin/brelant-sensor" --part $part --variant 0 --link "$work/sensor" "$@"
  until_seen test -e "$work/sensor"
}

program() {
  start env QT_SCALE_FACTOR=$scale "$bin/brelant" --app-dir "$work/app" --settings "$work/settings.ini" \
    --style $style
}

press() {
  xdotool windowfocus --sync "$1"
  shift
  for key in "$@"; do
    xdotool key "$key"
    sleep 0.2
  done
}

# type_values WINDOW VALUE...: into the live values, from the top; then a click on the ground.
type_values() {
  local id=$1 y=158
  shift
  for value in "$@"; do
    xdotool mousemove --window "$id" $((126 * scale)) $((y * scale)) click 1
    sleep 0.2
    xdotool type "$value"
    y=$((y + 110))
  done
  xdotool mousemove --window "$id" $((600 * scale)) $((40 * scale)) click 1
}

photograph_dialogs() {
  # No sensor is needed, and this is what technicians have.
  settings /dev/ttyUSB0 0
  program
  shoot dialog "Communication setup" 300
  # Simulated mode, Start.
  press "$(window "Communication setup" 300)" alt+m Return
  shoot chooser "Simulated mode" 200
  # The sensor of the same part, Next.
  press "$(window "Simulated mode" 200)" End Up Return
  until_seen window "BRELANT Simulated mode" 800 >/dev/null
  type_values "$(window "BRELANT Simulated mode" 800)" 23.5 2.15 48
  shoot panel-simulated "BRELANT Simulated mode" 800
  stop
}

photograph_progress() {
  settings "$work/sensor" 1
  # A line so bad that the box stays for a while.
  sensor --pace --fault silence=0.3,wrong=0.3
  program
  until_seen window BRELANT 200 >/dev/null
  # Past the two seconds of listening.
  sleep 3.2
  shoot progress BRELANT 200
  stop
}

photograph_panel() {
  settings "$work/sensor" 1
  sensor
  program
  until_seen window BRELANT 800 >/dev/null
  # The first live values come with the first poll.
  sleep 2.5
  shoot panel BRELANT 800
  stop
}

mkdir -p "$pictures" "$work/app"
cp "$bin"/*.PDT "$bin"/*.sim "$work/app"
export XDG_RUNTIME_DIR=$work
chmod 700 "$work"
# The server picks a free display by itself, and stays when its last client has gone.
Xvfb -displayfd 3 -noreset -screen 0 2900x2000x24 3>"$work/display" >"$work/log.txt" 2>&1 &
screen=$!
trap finish EXIT
until_seen test -s "$work/display"
export DISPLAY=:$(<"$work/display")
until_seen xdotool getdisplaygeometry >/dev/null

for style in light dark; do
  for scale in 1 2; do
    suffix=$([ $scale = 1 ] || echo -200)
    photograph_dialogs
    photograph_progress
    photograph_panel
  done
done
