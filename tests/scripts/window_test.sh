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
    # shellcheck source=tests/support/realwindow.sh
    . "$(dirname "${BASH_SOURCE[0]}")/../support/realwindow.sh"
    plexa=$1 samples=$2
    work=$(mktemp -d "${TMPDIR:-/tmp}/plexa window ä XXXXXX")
    stand_in=$(mktemp -d /tmp/plexa-window-XXXXXX) # without a blank: it becomes part of a command line
    server=''
    trap '[[ -z $server ]] || kill "$server" 2>/dev/null || true; rm -rf "$work" "$stand_in"' EXIT
    start_display 1280x800
    # A bus that starts no services, and a substitute for xdg-open, which opens folders without a file manager.
    write_bus_configuration ''
    ln -s "$(realpath "${BASH_SOURCE[0]}")" "$stand_in/xdg-open"
    export PATH=$stand_in:$PATH PLEXA_OPENED=$work/opened.txt
    dbus-run-session --config-file="$work/bus.conf" -- "${BASH_SOURCE[0]}" --inside "$plexa" "$samples" "$work"
    exit
fi

plexa=$2 samples=$3 work=$4
settings=$XDG_CONFIG_HOME/Quorvel/Plexa.conf
# shellcheck source=tests/support/realwindow.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/realwindow.sh"
trap '[[ -z $program ]] || kill "$program" 2>/dev/null || true' EXIT

# Closes the window; the program explains that it keeps running and asks.
answer_first_close() { # KEY...
    xdotool key ctrl+w
    wait_until 'the first close was not explained' find_box
    xdotool windowfocus --sync "$box" key "$@"
}

stores() { grep -qx "$1" "$settings"; }

start_program --
wait_for_window 'at start'
picture empty

# A second start sends its files to the first and ends.
timeout 20 "$plexa" "$samples/apple.png" "$samples/still-life.jpg" || fail 'the second start did not hand over'
picture grid
differ empty grid
# The action of the desktop file asks for photos.
timeout 20 "$plexa" --add-photos || fail 'the action was not handed over'
wait_until 'the action did not ask for photos' xdotool search --onlyvisible --name '^Add Photos'
chooser=$(xdotool search --onlyvisible --name '^Add Photos' | tail -n 1)
xdotool windowfocus --sync "$chooser" key Escape
no_chooser() { ! xdotool search --onlyvisible --name '^Add Photos'; }
wait_until 'the question for photos stayed' no_chooser
xdotool windowfocus --sync "$window"
xdotool key ctrl+b # the table
picture two
differ grid two
xdotool key ctrl+a
picture selected
differ two selected
# The file manager receives their URLs.
dbus-monitor --session "type='method_call',interface='org.freedesktop.FileManager1'" \
    "type='method_call',interface='org.freedesktop.Notifications'" \
    "type='method_call',interface='org.freedesktop.portal.Inhibit'" \
    "type='method_call',interface='org.freedesktop.portal.Request'" >"$work/calls.txt" &
monitor=$!
wait_until 'the session bus is not watched' grep -q NameAcquired "$work/calls.txt"
xdotool key ctrl+shift+e
wait_until 'the file manager was not asked for the photos' grep -qF "\"file://$samples/still-life.jpg\"" "$work/calls.txt"
wait_until 'their folder was not opened instead' grep -q "$samples" "$work/opened.txt"

# The panel for saving: Enter saves.
xdotool key ctrl+s
wait_until 'the panel for saving was not shown' find_panel
xdotool windowfocus --sync "$panel" key Return
copies=$HOME/Pictures/Plexa
wait_until 'the photos were not saved' test -s "$copies/still-life-Quick Preset_480x720.jpg"
convert-im6.q16 "$samples/apple.png" -background white -flatten "$work/apple.png"
marked=$(compare-im6.q16 -metric AE -fuzz 10% "$work/apple.png" "$copies"/apple-*.jpg null: 2>&1 || true)
((${marked%%.*} > 300)) || fail "the copy has no watermark ($marked)"
# The keyboard focus went with the panel, so the desktop shows the result, too.
wait_until 'no notification was sent' grep -qF 'string "2 copies saved"' "$work/calls.txt"
# During the save, the desktop was asked to question a logout.
wait_until 'the desktop was not told of the end' grep -qF 'member=Close' "$work/calls.txt"
grep -qF 'string "Photos are being saved"' "$work/calls.txt" || fail 'the desktop was not told of the save'
token=$(sed -n 's/^ *variant *string "\(plexa_[0-9_]*\)"/\1/p' "$work/calls.txt")
grep -qE "path=/org/freedesktop/portal/desktop/request/[0-9_]+/$token;" "$work/calls.txt" ||
    fail 'the desktop was not told which request is over'
kill "$monitor"
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
start_program --
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

# A save goes on without the window. A signal lets the copies under way end, and stores the settings.
mkdir "$work/many"
convert-im6.q16 -size 2400x1800 plasma:red-blue "$work/many/0.png"
for ((i = 1; i < 250; i++)); do ln "$work/many/0.png" "$work/many/$i.png"; done
rm -r "$copies"
start_program "$work/many"
wait_for_window 'with many photos'
picture many
xdotool key ctrl+shift+s
wait_until 'the panel for saving was not shown' find_panel
xdotool windowfocus --sync "$panel" key Return
has_copies() { compgen -G "$copies/*.jpg"; }
wait_until 'no copy was saved' has_copies
xdotool windowfocus --sync "$window" key ctrl+w
wait_until 'closing during a save was not questioned' find_box
xdotool windowfocus --sync "$box" key Tab Return
wait_until 'the window was not closed during a save' is_hidden
! has_ended || fail 'the program ended with its window during a save'
kill -TERM "$program"
wait_until 'the signal did not end the program' has_ended
wait "$program" || fail "the program ended with status $?"
written=("$copies"/*.jpg)
((${#written[@]} < 250)) || fail 'the run was over too early'
for copy in "${written[@]}"; do
    [[ $(identify-im6.q16 -regard-warnings -format '%wx%h' "$copy") == 2400x1800 ]] || fail "half a copy: $copy"
done
! compgen -G "$copies/.*.tmp" || fail 'there is litter among the copies'
stores 'runNumber=4' || fail 'the fourth run was not counted'

# Edited metadata survive a crash.
rm -r "$copies"
sed -i '/^imageListIsInBrowserMode=/d' "$settings"
start_program "$samples/still-life.jpg"
wait_for_window 'with one photo'
picture one
xdotool key ctrl+a key ctrl+shift+i
find_metadata() { metadata=$(xdotool search --onlyvisible --name '^Image Metadata$') && [[ -n $metadata ]]; }
wait_until 'the metadata were not shown' find_metadata
xdotool windowfocus --sync "$metadata" key ctrl+Tab key ctrl+Tab key Tab key Tab type 'Crash proof'
xdotool key Return
wait_until 'edited metadata were not recorded' grep -qF 'Crash proof' "$XDG_DATA_HOME/Quorvel/Plexa/session.json"
kill -KILL "$program"
wait "$program" || true
start_program --
has_question() { (($(xdotool search --onlyvisible --name '^Plexa$' | wc -l) == 2)); }
wait_until 'the program did not offer to restore the session' has_question
for box in $(xdotool search --onlyvisible --name '^Plexa$'); do
    xdotool windowfocus --sync "$box" key Return || true # Return in the window itself does nothing
done
wait_for_window 'after the crash'
picture restored
xdotool key ctrl+shift+s
wait_until 'the panel for saving was not shown' find_panel
xdotool windowfocus --sync "$panel" key Return
wait_until 'the restored photo was not saved' has_copies
has_text() { exiftool -IPTC:all -XMP:all "$copies"/*.jpg | grep -qF 'Crash proof'; }
wait_until 'the copy lacks the edited metadata' has_text
kill -TERM "$program"
wait_until 'the signal did not end the program' has_ended
program=''
echo 'all passed'
