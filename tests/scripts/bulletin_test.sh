#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Uses the window of a bulletin on an X server of its own: the page of a web server, a link that opens in the
# browser, the box that suppresses the bulletin. Checks that the main program loads neither the browser engine
# nor the network libraries.
# Usage: bulletin_test.sh PLEXA PLEXA-BULLETIN
set -euo pipefail

if [[ ${0##*/} == xdg-open ]]; then
    echo "$1" >>"$PLEXA_OPENED"
    exit
fi

# shellcheck source=tests/support/realwindow.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/realwindow.sh"
plexa=$2 server='' web=''
work=$(mktemp -d "${TMPDIR:-/tmp}/plexa bulletin ä XXXXXX")
stand_in=$(mktemp -d /tmp/plexa-bulletin-XXXXXX) # without a blank: it becomes part of a command line
end() {
    for process in $program $web $server; do
        kill "$process" 2>/dev/null || true
    done
    rm -rf "$work" "$stand_in"
}
trap end EXIT

! ldd "$1" | grep -E 'Qt6(WebEngine|Quick|Qml|Network)' || fail 'the main program loads what only news need'

ln -s "$(realpath "${BASH_SOURCE[0]}")" "$stand_in/xdg-open"
export PATH=$stand_in:$PATH PLEXA_OPENED=$work/opened.txt
export QTWEBENGINE_DISABLE_SANDBOX=1 # tests may run as root, or in a container
# The browser engine frees with another size than it allocated; graphics drivers are unloaded before the check.
export ASAN_OPTIONS=new_delete_type_mismatch=0:detect_leaks=0
start_display 1280x800

address='https://www.example.org/more?x=1&y=%C3%A4'
mkdir "$work/site"
echo "<body style='background: #08f'><a href='$address' style='position: fixed; inset: 0'>more</a>" >"$work/site/page.html"
python3 -u -m http.server --bind 127.0.0.1 --directory "$work/site" 0 >"$work/web.txt" 2>&1 &
web=$!
wait_until 'no web server' grep -q 'port [0-9]' "$work/web.txt"
port=$(sed -n 's/.*port \([0-9]*\).*/\1/p' "$work/web.txt")

start_program --allow-suppress --center 640,400 "http://127.0.0.1:$port/page.html"
find_window() { window=$(xdotool search --onlyvisible --name '^News$') && [[ -n $window ]]; }
wait_until 'no window' find_window
xdotool windowfocus --sync "$window" key alt+d
shows_page() { import -window root -format '%[pixel:p{640,300}]' info: | grep -q 'srgb(0,136,255)'; }
wait_until 'no page' shows_page
eval "$(xdotool getwindowgeometry --shell "$window")"
# shellcheck disable=SC2153
((X >= 338 && X <= 342 && Y >= 223 && Y <= 227 && WIDTH == 600 && HEIGHT == 350)) ||
    fail "the window is at $X,$Y and has the size ${WIDTH}x$HEIGHT"
opens_link() { # more than one click: the page may not have been ready for the first
    xdotool mousemove 640 300 click 1 sleep 1
    [[ -s $PLEXA_OPENED ]]
}
wait_until 'the link did not open in the browser' opens_link
[[ $(head -n 1 "$PLEXA_OPENED") == "$address" ]] || fail "the browser got $(<"$PLEXA_OPENED")"
grep -qxF "Show the bulletin at $address" "$work/plexa.txt" || fail 'no line in the log'
shows_page || fail 'the page went away'
xdotool windowfocus --sync "$window" key Escape
wait_until 'the window did not close' has_ended
wait "$program" || fail 'a failure at the end'
[[ $(grep -xE 'shown|suppressed' "$work/plexa.txt" | tr '\n' ' ') == 'shown suppressed ' ]] || fail 'wrong reports'

# The window does not outlive a program that was killed.
# shellcheck disable=SC2016
sh -c '"$0" "$1" >"$2" 2>&1 & echo $! >"$3"; wait' "$plexa" "http://127.0.0.1:$port/page.html" \
    "$work/plexa.txt" "$work/child" &
parent=$!
wait_until 'no window of the other program' find_window
program=$(<"$work/child")
kill -KILL "$parent"
wait_until 'the window outlived its program' has_ended
echo 'all passed'
