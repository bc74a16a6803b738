#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# photograph.sh [BIN [PICTURES [SCENE...]]]: takes the pictures of docs/pictures with the programs in BIN
# (build/release/bin); all scenes, or those that are named. Needs Xvfb, xdotool and ImageMagick.
set -euo pipefail

here=$(cd "$(dirname "$0")/../.." && pwd)
bin=$(realpath "${1:-$here/build/release/bin}")
pictures=$(realpath "${2:-$here/docs/pictures}")
work=$(mktemp -d)
scenes=("${@:3}")
[ ${#scenes[@]} -gt 0 ] || scenes=(dialogs progress panel chart_simulated chart curve generic
  three_outputs vav_222 vav_223 jumper sequential compact transfer transfer_digital
  platform61 platform61_plain platform7 platform8 platform8_weight platform8_simulated
  safety safety_few safety_simulated safety_dialogs)
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

# window TITLE WIDTH [LIMIT]: the visible window of that title, at least that wide at 100 %, and below the limit.
window() {
  local id WIDTH
  for id in $(xdotool search --onlyvisible --name "^$1\$"); do
    # It may have closed meanwhile, and then has no width.
    WIDTH=0
    eval "$(xdotool getwindowgeometry --shell "$id" | grep WIDTH)"
    ((WIDTH >= $2 * scale && WIDTH < ${3:-9999} * scale)) && { echo "$id"; return 0; }
  done
  return 1
}

gone() { ! window "$@" >/dev/null; }

# alarmed WINDOW: one of its lamps is red. A pixel in sixteen is enough for a lamp, and soon looked at.
alarmed() {
  import -window "$1" miff:- | convert miff:- -sample 25% -depth 8 "txt:$work/pixels" &&
    grep -qi '#FF0000' "$work/pixels"
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
  start "$bin/brelant-sensor" --part $part --link "$work/sensor" "$@"
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

# type_values WINDOW X Y DX DY VALUE...: into the live values, the first one there; then a click on the ground.
type_values() {
  local id=$1 x=$2 y=$3 dx=$4 dy=$5
  shift 5
  for value in "$@"; do
    xdotool mousemove --window "$id" $((x * scale)) $((y * scale)) click 1
    sleep 0.2
    xdotool type "$value"
    x=$((x + dx)) y=$((y + dy))
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
  press "$(window "Simulated mode" 200)" End Home
  xdotool type "Platform 5 part $part"
  press "$(window "Simulated mode" 200)" Return
  until_seen window "BRELANT Simulated mode" 800 >/dev/null
  type_values "$(window "BRELANT Simulated mode" 800)" 126 158 0 110 23.5 2.15 48
  shoot panel-simulated "BRELANT Simulated mode" 800
  stop
}

photograph_progress() {
  settings "$work/sensor" 1
  # A line so bad that the box stays for a while.
  sensor --variant 0 --pace --fault silence=0.3,wrong=0.3
  program
  until_seen window BRELANT 200 >/dev/null
  # Past the two seconds of listening.
  sleep 3.2
  shoot progress BRELANT 200
  stop
}

photograph_panel() {
  settings "$work/sensor" 1
  sensor --variant 0
  program
  until_seen window BRELANT 800 >/dev/null
  # The first live values come with the first poll.
  sleep 2.5
  shoot panel BRELANT 800
  stop
}

photograph_chart_simulated() {
  settings /dev/ttyUSB0 0
  program
  until_seen window "Communication setup" 300 >/dev/null
  press "$(window "Communication setup" 300)" alt+m Return
  until_seen window "Simulated mode" 200 >/dev/null
  press "$(window "Simulated mode" 200)" End Home
  xdotool type "Platform 5 c"
  press "$(window "Simulated mode" 200)" Return
  until_seen window "BRELANT Simulated mode" 800 >/dev/null
  type_values "$(window "BRELANT Simulated mode" 800)" 150 130 300 0 23.5 1.62 0.48
  shoot chart-simulated "BRELANT Simulated mode" 800
  stop
}

# photograph_alarmed NAME PART VARIANT: a panel while one of its alarms is active.
photograph_alarmed() {
  local id part=$2
  settings "$work/sensor" 1
  sensor --variant "$3"
  program
  id=$(until_seen window BRELANT 800)
  # The gas of the virtual sensor rises and falls within a minute.
  seconds_to_wait=90 until_seen alarmed "$id"
  shoot "$1" BRELANT 800
  stop
}

photograph_chart() { photograph_alarmed chart $part 1; }
photograph_platform61() { photograph_alarmed platform61 215 0; }
photograph_platform7() { photograph_alarmed platform7 50 2; }

# photograph_unit NAME PART MODEL: the panel of a unit that has been read whole, while an alarm is active.
photograph_unit() {
  local id part=$2
  settings "$work/sensor" 1
  sensor --variant "$3"
  program
  id=$(until_seen window BRELANT 800)
  sleep 5
  seconds_to_wait=90 until_seen alarmed "$id"
  shoot "$1" BRELANT 800
  stop
}

photograph_safety() { photograph_unit safety 154 3; }
# A model without temperature 2 and weight.
photograph_safety_few() { photograph_unit safety-few 154 5; }

photograph_platform8() { photograph_unit platform8 40 1; }
photograph_platform8_weight() { photograph_unit platform8-weight 40 2; }

# Without a start in simulated mode the box is ticked by its letter.
photograph_platform8_simulated() {
  local id part=40
  settings "$work/sensor" 1
  sensor --variant 2
  program
  id=$(until_seen window BRELANT 800)
  sleep 5
  press "$id" alt+u
  shoot platform8-simulated "BRELANT Simulated mode" 800
  stop
}

photograph_safety_simulated() {
  settings /dev/ttyUSB0 0
  program
  until_seen window "Communication setup" 300 >/dev/null
  press "$(window "Communication setup" 300)" alt+m Return
  until_seen window "Simulated mode" 200 >/dev/null
  press "$(window "Simulated mode" 200)" End Home
  xdotool type "Vega"
  press "$(window "Simulated mode" 200)" Return
  until_seen window "BRELANT Simulated mode" 800 >/dev/null
  sleep 0.5
  shoot safety-simulated "BRELANT Simulated mode" 800
  stop
}

# The dialogs of the safety panel, each opened by the letters of its menu entry and left by Escape.
photograph_safety_dialogs() {
  local id part=154 name title keys
  settings "$work/sensor" 1
  sensor --variant 3
  program
  id=$(until_seen window BRELANT 800)
  sleep 3
  while IFS='|' read -r name title keys; do
    # shellcheck disable=SC2086
    press "$id" $keys
    shoot "$name" "$title" 150
    press "$(window "$title" 150)" Escape
    until_seen gone "$title" 150
  done <<'EOF'
safety-configuration|Sensor Configuration|alt+s e
safety-abc|ABC Configuration|alt+s a
safety-logger|Logger Configuration|alt+s l
safety-options|Options...|alt+f o
safety-about|About BRELANT|alt+a
EOF
  stop
}

photograph_curve() {
  settings "$work/sensor" 1
  sensor --variant 1
  program
  until_seen window BRELANT 800 >/dev/null
  sleep 2.5
  # Sensor, Calibrate, CO2 single point, Other.
  press "$(window BRELANT 800)" alt+s c c o
  # The question is narrower than the progress box behind it.
  press "$(until_seen window BRELANT 100 300)" 2 period 5 Return
  until_seen gone BRELANT 100 800
  # Sensor, Calibrate, Calibration curve.
  press "$(window BRELANT 800)" alt+s c a
  shoot curve "Calibration curve" 400
  stop
}

# photograph_face NAME PART VARIANT: a panel without alarms.
photograph_face() {
  local part=$2
  settings "$work/sensor" 1
  sensor --variant "$3"
  program
  until_seen window BRELANT 400 >/dev/null
  sleep 2.5
  shoot "$1" BRELANT 400
  stop
}

photograph_generic() { photograph_face generic 88 0; }
photograph_three_outputs() { photograph_face three-outputs 88 2; }
photograph_vav_222() { photograph_face vav-222 222 1; }
photograph_vav_223() { photograph_face vav-223 223 1; }
photograph_jumper() { photograph_face jumper 88 3; }
photograph_sequential() { photograph_face sequential 88 4; }
photograph_compact() { photograph_face compact 221 5; }
photograph_platform61_plain() { photograph_face platform61-plain 215 1; }

# photograph_output NAME OUTPUT: the transfer of an output of the generic face.
photograph_output() {
  local part=88 id
  settings "$work/sensor" 1
  sensor --variant 0
  program
  id=$(until_seen window BRELANT 800)
  sleep 2.5
  xdotool mousemove --window "$id" $((1101 * scale)) $(((111 + ($2 - 1) * 126) * scale)) click 1
  shoot "$1" "Transfer of Out $2" 300
  stop
}

photograph_transfer() { photograph_output transfer 3; }
photograph_transfer_digital() { photograph_output transfer-digital 4; }

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
    for scene in "${scenes[@]}"; do
      "photograph_$scene"
    done
  done
done
