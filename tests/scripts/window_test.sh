#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Uses the program in a real window on an X server of its own: photos from the command line and from a second
# start, keys, saving, closing and reopening the window, quitting, stored settings.
# Usage: window_test.sh PLEXA FOLDER-WITH-SAMPLE-PHOTOS
set -euo pipefail

if [[ ${0##*/} == xdg-open ]]; then
    echo "$1" >>"$PLEXA_OPENED"
    exit
fi

if [[ ${1-} != --inside ]]; then
    plexa=$1 samples=$2
    work=$(mktemp -d "${TMPDIR:-/tmp}/plexa window ä XXXXXX")
    stand_in=$(mktemp -d /tmp/plexa-window-XXXXXX) # without a blank: it becomes part of a command line
    server=''
    trap '[[ -z $server ]] || kill "$server" 2>/dev/null || true; rm -rf "$work" "$stand_in"' EXIT
    exec 3>"$work/display"
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 2>"$work/xvfb.txt" &
    server=$!
    for ((i = 0; i < 100; i++)); do
        [[ ! -s $work/display ]] || break
        sleep 0.1
    done
    DISPLAY=:$(<"$work/display")
    export DISPLAY QT_QPA_PLATFORM=xcb
    export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
    export XDG_RUNTIME_DIR=$work/run
    mkdir -m 700 "$work/run"
    export HOME=$work/home # copies go into its folder of pictures
    # A bus that starts no services, and a substitute for xdg-open, which opens folders without a file manager.
    cat >"$work/bus.conf" <<'CONFIG'
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONFIG
    ln -s "$(realpath "${BASH_SOURCE[0]}")" "$stand_in/xdg-open"
    export PATH=$stand_in:$PATH PLEXA_OPENED=$work/opened.txt
    dbus-run-session --config-file="$work/bus.conf" -- "${BASH_SOURCE[0]}" --inside "$plexa" "$samples" "$work"
    exit
fi

plexa=$2 samples=$3 work=$4
settings=$XDG_CONFIG_HOME/Quorvel/Plexa.conf
program=''
trap '[[ -z $program ]] || kill "$program" 2>/dev/null || true' EXIT

fail() {
    echo "FAIL: $1"
    import -window root "${PLEXA_BINARY_DIR:-$work}/window-test-failure.png" || true
    cat "$work/plexa.txt"
    exit 1
}

# Sets $window.
wait_for_window() { # WHEN
    window=$(timeout 30 xdotool search --sync --onlyvisible --name '^Plexa$' | tail -n 1) || fail "no window $1"
    xdotool windowfocus --sync "$window"
}

wait_until() { # WHAT COMMAND...
    local what=$1 i
    shift
    for ((i = 0; i < 150; i++)); do
        ! "$@" >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    fail "$what"
}

has_ended() { ! kill -0 "$program" 2>/dev/null; }
is_hidden() { [[ -z $(xdotool search --onlyvisible --name '^Plexa$') ]]; }
find_box() { box=$(xdotool search --onlyvisible --name '^Plexa$' | grep -vx "$window"); }

# Closes the window; the program explains that it keeps running and asks.
answer_first_close() { # KEY...
    xdotool key ctrl+w
    wait_until 'the first close was not explained' find_box
    xdotool windowfocus --sync "$box" key "$@"
}

stores() { grep -qx "$1" "$settings"; }

picture() { # NAME: of the screen, once it no longer changes
    local former='' now
    for ((i = 0; i < 50; i++)); do
        import -window root "$work/$1.png"
        now=$(md5sum <"$work/$1.png")
        [[ $now != "$former" ]] || return 0
        former=$now
        sleep 0.3
    done
    fail "the window keeps changing ($1)"
}

differ() { # NAME NAME
    local pixels
    pixels=$(compare-im6.q16 -metric AE "$work/$1.png" "$work/$2.png" null: 2>&1 || true)
    ((${pixels%%.*} > 200)) || fail "the window looks the same: $1, $2"
}

"$plexa" >"$work/plexa.txt" 2>&1 &
program=$!
wait_for_window 'at start'
picture empty

# A second start sends its files to the first and ends.
timeout 20 "$plexa" "$samples/apple.png" "$samples/still-life.jpg" || fail 'the second start did not hand over'
picture grid
differ empty grid
xdotool key ctrl+b # the table
picture two
differ grid two
xdotool key ctrl+a
picture selected
differ two selected
# The file manager receives their URLs.
dbus-monitor --session "type='method_call',interface='org.freedesktop.FileManager1'" >"$work/calls.txt" &
monitor=$!
wait_until 'the session bus is not watched' grep -q NameAcquired "$work/calls.txt"
xdotool key ctrl+shift+e
wait_until 'the file manager was not asked for the photos' grep -qF "\"file://$samples/still-life.jpg\"" "$work/calls.txt"
wait_until 'their folder was not opened instead' grep -q "$samples" "$work/opened.txt"
kill "$monitor"

# The panel for saving: Enter saves.
find_panel() { panel=$(xdotool search --onlyvisible --name '^Save Watermarked Copies' | tail -n 1) && [[ -n $panel ]]; }
xdotool key ctrl+s
wait_until 'the panel for saving was not shown' find_panel
xdotool windowfocus --sync "$panel" key Return
copies=$HOME/Pictures/Plexa
wait_until 'the photos were not saved' test -s "$copies/still-life-Quick Preset_480x720.jpg"
convert-im6.q16 "$samples/apple.png" -background white -flatten "$work/apple.png"
marked=$(compare-im6.q16 -metric AE -fuzz 10% "$work/apple.png" "$copies"/apple-*.jpg null: 2>&1 || true)
((${marked%%.*} > 300)) || fail "the copy has no watermark ($marked)"
wait_until 'the report was not shown' find_box
xdotool windowfocus --sync "$box" key Return
xdotool windowfocus --sync "$window"
xdotool key slash
xdotool type apple
picture filtered
differ selected filtered

# The program keeps running without its window; a second start shows it again, with its photos.
xdotool windowsize --sync "$window" 1000 700
sleep 0.5
answer_first_close Return
wait_until 'the window was not closed' is_hidden
! has_ended || fail 'the program ended with its window'
timeout 20 "$plexa" || fail 'the second start did not raise the window'
wait_for_window 'after closing'
xdotool key ctrl+q
wait_until 'the program did not quit' has_ended
wait "$program" || fail "the program ended with status $?"
stores 'runNumber=1' || fail 'the run was not counted'
stores 'imageListIsInBrowserMode=false' || fail 'the batch mode was not stored'

# The first close can also quit.
sed -i '/^hasExplainedClosing=/d' "$settings"
"$plexa" >"$work/plexa.txt" 2>&1 &
program=$!
wait_for_window 'the second time'
answer_first_close Tab Return
wait_until 'the first close did not quit' has_ended
wait "$program" || fail "the program ended with status $?"
stores 'hasExplainedClosing=true' || fail 'the first close would be explained again'

# Without a session bus, each process runs for itself and ends with its window.
env -u DBUS_SESSION_BUS_ADDRESS "$plexa" "$samples" >"$work/plexa.txt" 2>&1 &
program=$!
wait_for_window 'without a session bus'
[[ $(xdotool getwindowgeometry "$window") == *'Geometry: 1000x700'* ]] || fail 'the size was not remembered'
xdotool key ctrl+w
wait_until 'the program without a session bus did not end with its window' has_ended
wait "$program" || fail "the program ended with status $?"
stores 'runNumber=3' || fail 'the third run was not counted'
[[ ! -s $work/plexa.txt ]] || fail 'the program printed messages'
program=''
echo 'all passed'
