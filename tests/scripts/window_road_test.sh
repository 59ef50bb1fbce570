#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# The whole road in a real window: drops folders of photos, makes a preset, applies two, drags one watermark to
# another place on one photo, saves all photos, answers conflicts, and measures the copies. Also takes the
# pictures of the window for the README.
# Usage: window_road_test.sh PLEXA DRAG-SOURCE FOLDER-WITH-SAMPLE-PHOTOS [FOLDER-FOR-PICTURES]
set -euo pipefail

# shellcheck source=tests/support/realwindow.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/realwindow.sh"
plexa=$1 drag_source=$2 samples=$3 pictures=${4-}
server='' source=''
if [[ -n $pictures ]]; then
    work=/tmp/anna # its paths are in the pictures
    home=$work
    mkdir "$work"
else
    work=$(mktemp -d "${TMPDIR:-/tmp}/plexa road ä XXXXXX")
fi
finish() {
    local process
    for process in "$program" "$source" "$server"; do
        [[ -z $process ]] || { kill "$process" && wait "$process"; } 2>/dev/null || true
    done
    rm -rf "$work"
}
trap finish EXIT
start_display 1280x800
copies=$HOME/Pictures/Plexa

# A photo of the same name in each of three folders, and photos of cameras where there are some.
mkdir "$work/photos" "$work/second" "$work/third" "$work/cameras"
cp "$samples"/*.jpg "$samples"/*.png "$work/photos"
cp "$samples/mountain-lake.jpg" "$work/second"
cp "$samples/mountain-lake.jpg" "$work/third"
real=()
if [[ -z $pictures && -d ${PLEXA_PHOTOS-} ]]; then
    real=(canon-s5-furnace-creek canon-powershot-a85-orientation-8 nikon-d60)
    for name in "${real[@]}"; do cp "$PLEXA_PHOTOS/jpeg/$name.jpg" "$work/cameras"; done
fi

keep_picture() { # NAME [WINDOW]: for the README
    [[ -n $pictures ]] || return 0
    local geometry
    picture "$1"
    geometry=$(xdotool getwindowgeometry --shell "${2-$window}" |
        awk -F= '{ v[$1] = $2 } END { print v["WIDTH"] "x" v["HEIGHT"] "+" v["X"] "+" v["Y"] }')
    convert-im6.q16 "$work/$1.png" -crop "$geometry" +repage -bordercolor '#b9bec4' -border 1 -strip \
        +dither -colors 256 -define png:compression-level=9 "PNG8:$pictures/$1.png"
    echo "$pictures/$1.png"
}

drag() { # X Y DX DY
    xdotool mousemove "$1" "$2" mousedown 1
    for i in 1 2 3 4 5 6 7 8; do
        sleep 0.05
        xdotool mousemove $(($1 + $3 * i / 8)) $(($2 + $4 * i / 8))
    done
    sleep 0.3
    xdotool mouseup 1
}

apply_preset() { # NAME, its beginning
    xdotool mousemove 1000 270 click 1 # the list of all presets
    sleep 0.3
    xdotool type "$1"
    sleep 0.3
    xdotool key Return
}

answer_box() { # KEY
    local id
    wait_until "no question for $1" find_box
    id=$box
    xdotool windowfocus --sync "$id" key "$1"
    is_answered() { ! find_box || [[ $box != "$id" ]]; }
    wait_until "the question was not answered by $1" is_answered
}

# The rectangle of what differs from the photo: "LEFT TOP RIGHT BOTTOM".
mark_on() { # COPY PHOTO
    local size x y
    read -r size x y < <(convert-im6.q16 "$copies/$1" \( "$2" -auto-orient -background white -flatten \) \
        -compose difference -composite -colorspace gray -threshold 18% -trim -format '%wx%h %X %Y\n' info:)
    echo "$((x)) $((y)) $((x + ${size%x*})) $((y + ${size#*x}))"
}

expect_within() { # WHAT VALUE LOWEST HIGHEST
    (($2 >= $3 && $2 <= $4)) || fail "$1 is $2, not between $3 and $4"
}

# At the first start the program asks about its license, and quits if the user does not agree.
sed -i /agreedLicense/d "$XDG_CONFIG_HOME/Quorvel/Plexa.conf"
for answer in alt+q alt+a; do
    start_program --
    license=$(timeout 20 xdotool search --sync --onlyvisible --name '^License of Plexa' | tail -n 1) || fail 'no license'
    sleep 0.5
    xdotool windowfocus --sync "$license" key "$answer"
    [[ $answer == alt+a ]] || wait_until 'the program did not quit' has_ended
done
wait_for_window 'at start'

# Folders are dropped on the window, from another program.
"$drag_source" 1190 750 "$work/photos" "$work/second" "$work/third" "$work/cameras" 2>/dev/null &
source=$!
timeout 20 xdotool search --sync --onlyvisible --name '^Drag source$' >/dev/null || fail 'no drag source'
picture before
drag 1230 770 -800 -400
sleep 1
picture dropped
differ before dropped

# The single watermark becomes a preset.
xdotool windowfocus --sync "$window"
xdotool mousemove 1008 200 click 1 key ctrl+a
xdotool type 'Studio Nordlicht'
xdotool mousemove 262 520 click 1 mousemove 600 4 # the second photo
keep_picture small-batch

# The photo's metadata, and the guide's page about them.
xdotool key ctrl+shift+i
metadata=$(timeout 20 xdotool search --sync --onlyvisible --name '^Image Metadata' | tail -n 1) || fail 'no metadata'
sleep 0.5
keep_picture metadata "$metadata"
xdotool windowfocus --sync "$metadata" key F1
help=$(timeout 20 xdotool search --sync --onlyvisible --name '^Plexa Help' | tail -n 1) || fail 'no guide'
xdotool windowfocus --sync "$help" key Escape
no_help() { ! xdotool search --onlyvisible --name '^Plexa Help'; }
wait_until 'the guide was not closed' no_help
xdotool windowfocus --sync "$metadata" key ctrl+w
no_metadata() { ! xdotool search --onlyvisible --name '^Image Metadata'; }
wait_until 'the metadata were not closed' no_metadata
xdotool windowfocus --sync "$window"
xdotool key alt+t
sleep 0.5
xdotool key e
stores_preset() { strings -e b -e l "$1" | grep -q "$2" || grep -qa "$2" "$1"; }
wait_until 'the preset was not stored' stores_preset "$XDG_DATA_HOME/Quorvel/Plexa/WPresets.pxwpr" 'Studio Nordlicht'

# The manager shows it, and is closed.
manager=$(timeout 20 xdotool search --sync --onlyvisible --name '^Watermark Presets' | tail -n 1) || fail 'no manager'
sleep 0.5
xdotool windowfocus --sync "$manager"
keep_picture manager "$manager"
xdotool key ctrl+w
no_manager() { ! xdotool search --onlyvisible --name '^Watermark Presets'; }
wait_until 'the manager was not closed' no_manager
xdotool windowfocus --sync "$window"

# Two presets. The second one is dragged on one photo. The preview shows it, 720x480, at 330/480.
xdotool key ctrl+shift+2
sleep 1
apply_preset 'Logo w'
sleep 0.5
apply_preset 'Saved Q'
picture applied
drag 275 332 220 -110
dragged_x=320 dragged_y=160
xdotool mousemove 600 4
picture dragged
differ applied dragged
keep_picture presets

# Saving: the second photo of the name gets unique names, the third one is skipped.
xdotool key ctrl+shift+s
wait_until 'the panel for saving was not shown' find_panel
keep_picture save-panel "$panel"
xdotool windowfocus --sync "$panel" key Return
for answer in Return Return Escape Escape; do answer_box "$answer"; done
wait_until 'the report was not shown' find_box
keep_picture report "$box"
answer_box Return

lake=$samples/mountain-lake.jpg
expected=(
    "apple-Logo with shadow_256x256.jpg" "apple-Saved Quick Preset_256x256.jpg"
    "mountain-lake-Logo with shadow_720x480-1.jpg" "mountain-lake-Logo with shadow_720x480.jpg"
    "mountain-lake-Saved Quick Preset_720x480-1.jpg" "mountain-lake-Saved Quick Preset_720x480.jpg"
    "sailing-boat-Logo with shadow_720x480.jpg" "sailing-boat-Saved Quick Preset_720x480.jpg"
    "still-life-Logo with shadow_480x720.jpg" "still-life-Saved Quick Preset_480x720.jpg")
for name in "${real[@]}"; do
    size=$(convert-im6.q16 "$work/cameras/$name.jpg" -auto-orient -format '%wx%h' info:)
    expected+=("$name-Logo with shadow_$size.jpg" "$name-Saved Quick Preset_$size.jpg")
done
[[ $(cd "$copies" && printf '%s\n' * | sort) == "$(printf '%s\n' "${expected[@]}" | sort)" ]] ||
    fail "other copies than expected: $(ls "$copies")"

# The dragged text, against the same text on the same photo: the distance of the drag, in pixels of the photo.
read -r left top right bottom < <(mark_on "mountain-lake-Saved Quick Preset_720x480.jpg" "$lake")
read -r left0 top0 right0 bottom0 < <(mark_on "mountain-lake-Saved Quick Preset_720x480-1.jpg" "$lake")
for pair in "$((left - left0)) $dragged_x" "$((right - right0)) $dragged_x" "$((top0 - top)) $dragged_y" \
    "$((bottom0 - bottom)) $dragged_y"; do
    expect_within 'the distance of the drag' "${pair% *}" $((${pair#* } - 4)) $((${pair#* } + 4))
done

# Elsewhere the text is at the bottom left, 1 % from the edges and of 8 % of the short edge; the logo is at the
# bottom right.
for copy in "${expected[@]}"; do
    # Measured already; or white on white.
    [[ $copy != *-1.jpg && $copy != "mountain-lake-Saved"* && $copy != "apple-Logo"* ]] || continue
    name=${copy%-*}
    photo=$(compgen -G "$work/*/$name.*" | head -n 1)
    IFS=x read -r width height < <(identify-im6.q16 -format '%wx%h\n' "$copies/$copy")
    edge=$((width < height ? width : height))
    read -r left top right bottom < <(mark_on "$copy" "$photo")
    if [[ $copy == *"Saved Quick Preset"* ]]; then
        expect_within "$copy: left" "$left" $((width / 100 - 1)) $((width * 2 / 100 + 2))
        expect_within "$copy: bottom" $((height - bottom)) $((height / 100 - 1)) $((height / 100 + edge * 4 / 100))
        expect_within "$copy: height" $((bottom - top)) $((edge * 4 / 100)) $((edge * 10 / 100))
    else
        expect_within "$copy: right" $((width - right)) 0 $((width * 6 / 100))
        expect_within "$copy: bottom" $((height - bottom)) 0 $((height * 8 / 100))
    fi
done
xdotool windowfocus --sync "$window" key ctrl+q
wait_until 'the program did not quit' has_ended
wait "$program" || fail "the program ended with status $?"
program=''
echo 'all passed'
