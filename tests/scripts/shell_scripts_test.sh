#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Every shell script parses, has a help text, refuses unknown options and passes shellcheck, if that is installed.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
failures=0
complain() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

for script in scripts/* .ci/run tests/scripts/*.sh; do
    [[ $(head -n 1 "$script") == '#!'*bash ]] || continue
    [[ -x $script ]] || complain "$script is not executable"
    bash -n "$script" || complain "$script does not parse"
    if command -v shellcheck >/dev/null; then
        shellcheck -x "$script" || complain "$script: shellcheck"
    fi
done

for script in scripts/*; do
    [[ -x $script ]] || continue
    # From another folder and with an empty standard input.
    help=$(cd / && "$OLDPWD/$script" --help </dev/null) || complain "$script --help fails"
    [[ $help == "Usage: $script"* ]] || complain "$script --help does not begin with its usage"
    status=0
    "$script" --no-such-option </dev/null >/dev/null 2>&1 || status=$?
    ((status == 2)) || complain "$script --no-such-option ends with $status instead of 2"
done

if ((failures)); then
    echo "$failures failed"
    exit 1
fi
echo 'all passed'
