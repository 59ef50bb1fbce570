#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Creates the Debian package of a build, checks it, installs it into a folder, runs both programs from there, the
# one with a window as a desktop does, and removes it. The packages of the machine stay as they are.
# Usage: package_test.sh BUILD-FOLDER FOLDER-WITH-SAMPLE-PHOTOS
set -euo pipefail

# shellcheck source=tests/support/realwindow.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/realwindow.sh"
id=com.quorvel.Plexa

is_off_the_bus() {
    [[ $(gdbus call --session -d org.freedesktop.DBus -o / -m org.freedesktop.DBus.NameHasOwner "$id") == '(false,)' ]]
}

use_window() { # SAMPLES: on a session bus that starts the program
    gapplication launch "$id" "$1/apple.png" || fail 'the bus did not start the program'
    wait_for_window 'from the bus'
    wait_until 'the program did not look for news' grep -q '^https://.*nocache=' "$work/asked.txt"
    [[ $(gapplication list-actions "$id") == add-photos ]] || fail 'other actions than add-photos'
    gapplication action "$id" add-photos
    wait_until 'the action did not ask for photos' xdotool search --onlyvisible --name '^Add Photos'
    xdotool windowfocus --sync "$(xdotool search --onlyvisible --name '^Add Photos' | tail -n 1)" key Escape
    xdotool windowfocus --sync "$window" key ctrl+q
    wait_until 'the program did not quit' is_off_the_bus
}

if [[ $1 == --inside ]]; then
    work=$3
    touch "$work/plexa.txt"
    use_window "$2"
    exit
fi

build=$1 samples=$2 server=''
work=$(mktemp -d "${TMPDIR:-/tmp}/plexa-package-XXXXXX")
trap '[[ -z $server ]] || kill "$server" 2>/dev/null || true; rm -rf "$work"' EXIT
touch "$work/plexa.txt"

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/cpack.txt" 2>&1 ||
    { cat "$work/cpack.txt"; exit 1; }
package=$(compgen -G "$work/packages/*.deb")
lintian --allow-root --fail-on error,warning "$package"

# The root knows the packages of the machine, so that dpkg looks for what this one needs.
root=$work/root
mkdir -p "$root/var/lib/dpkg/"{info,updates,triggers}
cp /var/lib/dpkg/status "$root/var/lib/dpkg/"
cp /var/lib/dpkg/info/*.list "$root/var/lib/dpkg/info/"
dpkg_in_root() {
    local as_root=()
    (($(id -u) == 0)) || as_root=(fakeroot)
    PATH=$PATH:/usr/sbin:/sbin ${as_root[@]+"${as_root[@]}"} dpkg --root="$root" --log="$work/dpkg.txt" \
        --path-include='*' --no-triggers "$@"
}
dpkg_in_root --install "$package"

desktop-file-validate "$root/usr/share/applications/$id.desktop"
appstreamcli validate --no-net "$root/usr/share/metainfo/$id.metainfo.xml"
for size in 16 48 512; do
    icon=$root/usr/share/icons/hicolor/${size}x$size/apps/$id.png
    [[ $(identify-im6.q16 -format '%wx%h' "$icon") == "${size}x$size" ]] || fail "the icon is not of size $size"
    (($(convert-im6.q16 "$icon" -unique-colors -format '%w' info:) > 20)) || fail "the icon of size $size is empty"
done
for page in plexa plexa-cli; do
    messages=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$root/usr/share/man/man1/$page.1.gz" 2>&1 >"$work/$page.txt")
    [[ -z $messages ]] || fail "$page(1): $messages"
done
grep -q -- '--ignore-assigned' "$work/plexa-cli.txt" || fail 'the manual page lacks an option'

export PATH=$root/usr/bin:$PATH
[[ $(command -v plexa-cli) == "$root/usr/bin/plexa-cli" ]]
start_display 1280x800
plexa-cli save --text '© {creator}' --require-watermark --output "$work/copies" "$samples/mountain-lake.jpg"
[[ $(identify-im6.q16 -format '%wx%h' "$work/copies/mountain-lake.jpg") == 720x480 ]] || fail 'a wrong copy'

# The programs that plexa starts. A substitute fetches the news, so that no server is asked.
"$root/usr/libexec/plexa/plexa-bulletin" --help >"$work/bulletin.txt" || fail 'plexa-bulletin does not start'
[[ $("$root/usr/libexec/plexa/plexa-fetch" 2>&1) == Usage* ]] || fail 'plexa-fetch does not start'
# shellcheck disable=SC2016
printf '#!/bin/sh\necho "$1" >%q\nexit 1\n' "$work/asked.txt" >"$root/usr/libexec/plexa/plexa-fetch"
sed -i /lastShownBulletinDate/d "$XDG_CONFIG_HOME/Quorvel/Plexa.conf"

# The bus starts the program of this root instead of that in /usr.
grep -qx 'Exec=/usr/bin/plexa' "$root/usr/share/dbus-1/services/$id.service" || fail 'the service names another program'
mkdir "$work/services"
sed "s|=/usr|=$root/usr|" "$root/usr/share/dbus-1/services/$id.service" >"$work/services/$id.service"
write_bus_configuration "<servicedir>$work/services</servicedir>"
XDG_DATA_DIRS=$root/usr/share:/usr/share dbus-run-session --config-file="$work/bus.conf" -- \
    "${BASH_SOURCE[0]}" --inside "$samples" "$work"

dpkg_in_root --purge plexa
left=$(find "$root" -path "$root/var" -prune -o ! -type d -print)
[[ -z $left ]] || fail "the package left files: $left"
echo 'all passed'
