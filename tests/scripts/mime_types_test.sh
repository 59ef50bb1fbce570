#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The file types of the program, as a desktop detects them.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

mkdir -p "$work/mime/packages" "$work/home"
cp "$root/packaging/plexa-mime.xml" "$work/mime/packages/"
# The types of the system, to which the types of the program refer.
cp /usr/share/mime/packages/freedesktop.org.xml "$work/mime/packages/"
messages=$(XDG_DATA_HOME=$work/home update-mime-database -V "$work/mime" 2>&1 | grep -i plexa || true)
if grep -iqE 'error|warning|unknown' <<<"$messages"; then
    echo "update-mime-database: $messages" >&2
    failed=1
fi

type_of() { # FILE
    XDG_DATA_DIRS=$work XDG_DATA_HOME=$work/home gio info -a standard::content-type "$1" |
        sed -n 's/ *standard::content-type: //p'
}

expect() { # FILE TYPE
    local found
    found=$(type_of "$1")
    if [[ $found != "$2" ]]; then
        echo "${1##*/}: \"$found\" instead of $2" >&2
        failed=1
    fi
}

cp "$root/resources/presets/example_wpresets.pxwpr" "$work/Mine.PXWPR"
cp "$root/resources/presets/example_spresets.pxspr" "$work/mine.pxspr"
cp "$root/resources/presets/example_spresets.pxspr" "$work/renamed.xml"
echo info >"$work/info.qtxf"
expect "$work/Mine.PXWPR" application/x-plexa-watermark-presets
expect "$work/mine.pxspr" application/x-plexa-saving-presets
expect "$work/info.qtxf" application/x-plexa-exchange-info
expect "$work/renamed.xml" application/xml
exit $failed
