#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Types command lines and the tab key into bash and zsh.
# Usage: completion_test.sh PLEXA-CLI
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/plexa completion ä XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/home" "$work/functions" "$work/photos/copies"
ln -s "$(realpath "$1")" "$work/bin/plexa-cli"
cp "$root/packaging/completion/_plexa-cli" "$work/functions/"
cp "$root/resources/presets/example_wpresets.pxwpr" "$work/photos/studio.pxwpr"
# The user's own presets; one has a name with marks of the shells.
mkdir -p "$work/home/Quorvel/Plexa"
python3 - "$work/photos/studio.pxwpr" "$work/home/Quorvel/Plexa/WPresets.pxwpr" <<'PYTHON'
import plistlib, sys

with open(sys.argv[1], "rb") as file:
    presets = plistlib.load(file)
presets["$objects"] = ["Jo's \"ü\" $5" if each == "Film date" else each for each in presets["$objects"]]
with open(sys.argv[2], "wb") as file:
    plistlib.dump(presets, file, fmt=plistlib.FMT_BINARY)
PYTHON
export PATH=$work/bin:$PATH HOME=$work/home XDG_DATA_HOME=$work/home LC_ALL=C.UTF-8
cd "$work/photos"
failures=0

# What the shell makes of a line and the tab key.
# shellcheck disable=SC1003,SC2016 # nothing is to be expanded
cases=(
    'plexa-cli ins' 'plexa-cli inspect '
    'plexa-cli save --portab' 'plexa-cli save --portable-names '
    'plexa-cli save --set anchorP' 'plexa-cli save --set anchorPoint='
    'plexa-cli save --set type=I' 'plexa-cli save --set type=Image '
    'plexa-cli save --set=type=I' 'plexa-cli save --set=type=Image '
    'plexa-cli save --meta iptcCi' 'plexa-cli save --meta iptcCity='
    'plexa-cli save --clear gp' 'plexa-cli save --clear gps '
    'plexa-cli save --conflict=o' 'plexa-cli save --conflict=overwrite '
    "plexa-cli save --text '© {creator} in {sublo" "plexa-cli save --text '© {creator} in {sublocation}"
    "plexa-cli save --apply 'Caption" "plexa-cli save --apply 'Caption bar' "
    'plexa-cli save --apply caption' 'plexa-cli save --apply Caption\ bar '
    'plexa-cli save --wpresets studio.pxwpr --apply Discr' 'plexa-cli save --wpresets studio.pxwpr --apply Discreet\ copyright '
    'plexa-cli save --apply J' 'plexa-cli save --apply Jo\'\''s\ \"ü\"\ \$5 '
    'plexa-cli save --apply "J' 'plexa-cli save --apply "Jo'\''s \"ü\" \$5" '
    "plexa-cli save --apply 'J" "plexa-cli save --apply 'Jo'\\''s \"ü\" \$5' "
    'plexa-cli save --saving-preset TI' 'plexa-cli save --saving-preset TIFF\ archive '
    'plexa-cli save --output co' 'plexa-cli save --output copies/'
    'plexa-cli presets stu' 'plexa-cli presets studio.pxwpr '
    'plexa-cli fields offsetVerticalU' 'plexa-cli fields offsetVerticalUnit '
)

# Types each line and the tab key in a terminal; writes what the line has become.
type_in() { # SHELL
    python3 - "$@" "${cases[@]}" <<'PYTHON'
import os, pty, re, select, sys, time

shell, work, root, cases = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]
start = {
    "bash": ["bash", "--norc", "--noprofile", "-i"],
    "zsh": ["zsh", "-f", "-i"],
}[shell]
prepare = {
    "bash": ". /usr/share/bash-completion/bash_completion; . '%s/packaging/completion/plexa-cli.bash'; "
            "bind 'set enable-bracketed-paste off'; PS1='> '" % root,
    "zsh": "fpath=('%s/functions' $fpath); autoload -Uz compinit; compinit -u -d '%s/dump'; "
           "show() { print -r -- $BUFFER >'%s/line' }; zle -N show; bindkey '^T' show; PS1='> '"
           % (work, work, work),
}[shell]
if shell == "bash":
    prepare += "; show() { printf '%%s\\n' \"$READLINE_LINE\" >'%s/line'; }; bind -x '\"\\C-t\": show'" % work
pid, terminal = pty.fork()
if pid == 0:
    os.environ.update(TERM="dumb", COLUMNS="200", INPUTRC="/dev/null")
    os.execvp(start[0], start)

def drain(seconds):
    end = time.time() + seconds
    while time.time() < end:
        if select.select([terminal], [], [], 0.05)[0]:
            try:
                os.read(terminal, 65536)
            except OSError:
                return

def send(text):
    os.write(terminal, text.encode())

line = os.path.join(work, "line")
def typed(keys):
    if os.path.exists(line):
        os.remove(line)
    send(keys + "\x14")
    for _ in range(600 if keys else 20):
        drain(0.05)
        if os.path.exists(line) and os.path.getsize(line):
            with open(line, encoding="utf-8") as file:
                return file.read().rstrip("\n")
    return "no answer"

send(prepare + "\n")
while typed("") == "no answer":
    pass
failures = 0
for before, after in zip(cases[::2], cases[1::2]):
    found = typed(before + "\t")
    if found not in (after, after + "'"): # bash closes the quotation
        print(f'FAIL: {shell}: "{before}" becomes "{found}" instead of "{after}"')
        failures += 1
    send("\x15")
    drain(0.1)
os.close(terminal)
sys.exit(failures > 0)
PYTHON
}

type_in bash "$work" "$root" || failures=1
if command -v zsh >/dev/null; then
    type_in zsh "$work" "$root" || failures=1
else
    echo 'zsh is not installed'
fi
((failures == 0)) || exit 1
echo 'all passed'
