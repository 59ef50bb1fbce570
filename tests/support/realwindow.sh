# SPDX-License-Identifier: GPL-3.0-or-later

# For tests of the program in a real window. They set $work, a folder of their own, and $plexa; $home, if the
# copies have to be elsewhere.
program=''

# Starts an X server and sets the environment of the program: private folders, no session bus.
start_display() { # SIZE
    local i
    exec 3>"$work/display"
    # A server that resets itself after its last program refuses the next one for a moment.
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp -noreset 2>"$work/xvfb.txt" &
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
    # News were fetched just now: the program asks no server for more. The user has agreed to the license.
    mkdir -p "$XDG_CONFIG_HOME/Quorvel"
    local now
    now=$(date -u +%FT%TZ)
    printf '%s\n' '[General]' agreedLicense=GPL-3.0-or-later "lastShownBulletinDate=$now" "lastUpdateCheckDate=$now" \
        >"$XDG_CONFIG_HOME/Quorvel/Plexa.conf"
    export HOME=${home:-$work/home} # copies go into its folder of pictures
    unset DBUS_SESSION_BUS_ADDRESS
}

# Writes $work/bus.conf: a session bus that starts no services, except those of an element <servicedir>.
write_bus_configuration() { # ELEMENT-OR-NOTHING
    cat >"$work/bus.conf" <<CONFIG
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  $1
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONFIG
}

fail() {
    echo "FAIL: $1"
    import -window root "${PLEXA_BINARY_DIR:-$work}/window-test-failure.png" || true
    cat "$work/plexa.txt"
    exit 1
}

start_program() { # ARGUMENTS...
    "$plexa" "$@" >"$work/plexa.txt" 2>&1 &
    program=$!
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
find_panel() { panel=$(xdotool search --onlyvisible --name '^Save Watermarked Copies' | tail -n 1) && [[ -n $panel ]]; }

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
