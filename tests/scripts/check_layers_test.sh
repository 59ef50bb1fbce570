#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Runs scripts/check-layers on small valid and faulty source trees.
set -euo pipefail

check=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/scripts/check-layers
work=$(mktemp -d "${TMPDIR:-/tmp}/plexa layers ä XXXXXX")
trap 'rm -rf "$work"' EXIT
failures=0

# A tree with one file; %b turns "\n" into line ends.
tree_with() { # FILE TEXT
    rm -rf "$work/tree"
    mkdir -p "$work/tree/$(dirname "$1")"
    printf '%b\n' "$2" >"$work/tree/$1"
}

expect_valid() { # CASE FILE TEXT
    tree_with "$2" "$3"
    if ! output=$("$check" "$work/tree" 2>&1); then
        printf 'FAIL: %s: refused:\n%s\n' "$1" "$output"
        failures=$((failures + 1))
    fi
}

expect_fault() { # CASE FILE TEXT EXPECTED-MESSAGE
    tree_with "$2" "$3"
    if output=$("$check" "$work/tree" 2>&1); then
        printf 'FAIL: %s: not reported\n' "$1"
        failures=$((failures + 1))
    elif [[ $output != *"$2:"*"$4"* ]]; then
        printf 'FAIL: %s: expected "%s", got:\n%s\n' "$1" "$4" "$output"
        failures=$((failures + 1))
    fi
}

expect_valid 'own folder, lower folders, Qt and C++' src/watermark/a.cpp \
    '#include "watermark/a.h"\n#include "raster/b.h"\n#include <QImage>\n#include <QByteArrayView>\n#include <vector>\n#include "a.moc"'
expect_valid 'libraries in their rooms' src/imageio/codecs/jpeg/a.cpp \
    '#include "imageio/codecs/codec.h"\n#include <jpeglib.h>\n#include <png.h>'
expect_valid 'metadata library in its room' src/imageio/embedded/xmp/a.cpp '#include <exiv2/exiv2.hpp>'
expect_valid 'window system' src/ui/browser/a.cpp '#include <xcb/xcb.h>\n#include <QWidget>'
expect_valid 'widgets in a ui folder' src/ui/metadata/a.cpp '#include "ui/metadata/a.h"\n#include <QLabel>\n#include <QtWidgets/QDialog>'
expect_valid 'a commented include' src/raster/a.h '// #include "app/b.h"'
expect_valid 'exactly 600 lines' src/raster/a.cpp "$(printf 'int a;%.0s\\n' {1..599})int b;"

expect_fault 'a later folder' src/raster/a.cpp '#include "watermark/b.h"' 'raster may not include "watermark/b.h"'
expect_fault 'blanks in the line' src/raster/a.cpp '  #  include  "watermark/b.h"  // why not' 'may not include'
expect_fault 'DOS line end' src/raster/a.cpp '#include "watermark/b.h"\r' 'may not include'
expect_fault 'angled' src/raster/a.cpp '#include <watermark/b.h>' 'may not include'
expect_fault 'inside a condition' src/raster/a.cpp '#ifdef X\n#include "app/b.h"\n#endif' '2: raster may not include'
expect_fault 'no folder named' src/raster/a.cpp '#include "b.h"' 'does not name its folder'
expect_fault 'relative path' src/raster/a.cpp '#include "../platform/b.h"' 'relative path'
expect_fault 'macro' src/raster/a.cpp '#include HEADER' 'cannot be checked'
expect_fault 'widget in the core' src/watermark/a.cpp '#include <QApplication>' 'without a window'
expect_fault 'widget by its file' src/watermark/a.cpp '#include <qlabel.h>' 'without a window'
expect_fault 'a later pane' src/ui/widgets/a.cpp '#include "ui/browser/grid.h"' 'ui/widgets may not include'
expect_fault 'a codec below its room' src/imageio/container/a.cpp '#include "imageio/codecs/codec.h"' 'imageio/container may not include'
expect_fault 'JPEG library outside' src/raster/a.cpp '#include <jpeglib.h>' 'only imageio/codecs'
expect_fault 'locale library outside' src/watermark/a.cpp '#include <unicode/datefmt.h>' 'only platform'
expect_fault 'unknown folder' src/utils/a.h '#include <QString>' 'lies in none of the listed layers'
expect_fault 'no folder' src/a.h '#include <QString>' 'belongs in a folder'

body=$(printf '    a();%.0s\n' {1..250})
tree_with src/raster/a.h 'class Big final\n{\npublic:\n    void one();\n};'
for part in one two three; do
    printf '#include "raster/a.h"\n\nvoid Big::%s()\n{\n%s\n}\n' "$part" "$body" >"$work/tree/src/raster/$part.cpp"
done
if output=$("$check" "$work/tree" 2>&1) || [[ $output != *'lines of Big in 4 files'* ]]; then
    printf 'FAIL: a class over several files: got:\n%s\n' "$output"
    failures=$((failures + 1))
fi

expect_fault '601 lines' src/raster/a.cpp "$(printf 'int a;%.0s\\n' {1..600})int b;" '601 lines'

rm -rf "$work/tree" && mkdir -p "$work/tree/src"
if "$check" "$work/tree" >/dev/null 2>&1; then
    echo 'FAIL: a tree without sources passed'
    failures=$((failures + 1))
fi

if ((failures)); then
    echo "$failures failed"
    exit 1
fi
echo 'all passed'
