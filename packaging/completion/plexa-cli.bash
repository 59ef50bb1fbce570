# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Completion of plexa-cli for bash, with the functions of bash-completion. The program names the words.

_plexa_cli() {
    # shellcheck disable=SC2034 # _init_completion sets all
    local cur prev words cword
    _init_completion -n =: || return

    # What is typed, without the marks that keep blanks in a word.
    local arguments=() typed quote='' word
    for word in "${words[@]:1:cword-1}"; do
        word=${word//[\"\'\\]/}
        arguments+=("${word/#\~/$HOME}")
    done
    if [[ $cur == --*=* ]]; then
        arguments+=("${cur%%=*}")
        cur=${cur#*=}
    fi
    case $cur in
        [\"\']*) quote=${cur:0:1} typed=${cur:1} ;;
        *) typed=${cur//\\/} ;;
    esac

    local lines
    mapfile -t lines < <("${1/#\~/$HOME}" --complete "${arguments[@]}" "$typed" 2>/dev/null)
    case ${lines[0]-} in
        files) _filedir; return ;;
        folders) _filedir -d; return ;;
    esac

    # readline replaces what follows the last one of these characters.
    local kept=''
    [[ -n $quote ]] || kept=${cur%"${cur##*[=:]}"}
    for word in "${lines[@]:1}"; do
        word=${word%%$'\t'*}
        [[ -n $quote ]] || printf -v word %q "$word"
        COMPREPLY+=("${word#"$kept"}")
    done
    # A value follows, or more text.
    if ((${#COMPREPLY[@]} == 1)) && [[ ${COMPREPLY[0]} == *[=\}] ]]; then
        compopt -o nospace 2>/dev/null
    fi
} && complete -F _plexa_cli plexa-cli
