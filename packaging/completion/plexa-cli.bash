# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later

# Completion of plexa-cli for bash, with the functions of bash-completion. The program names the words.

# Sets what a typed word stands for: `plain`; `quote`, the mark that is open at its end; `before`, the plain text
# before that mark. Expands nothing but "~".
_plexa_cli_unquote() { # WORD
    local rest=${1/#\~/$HOME} mark
    plain='' quote='' before=''
    while [[ -n $rest ]]; do
        mark=${rest:0:1} rest=${rest:1}
        case $quote$mark in
            "''" | '""') quote='' ;;
            \'?) plain+=$mark ;;
            \" | \') quote=$mark before=$plain ;;
            \\ | \"\\) plain+=${rest:0:1} rest=${rest:1} ;;
            *) plain+=$mark ;;
        esac
    done
}

_plexa_cli() {
    # shellcheck disable=SC2034 # _init_completion sets all
    local cur prev words cword
    _init_completion -n =: || return

    local arguments=() plain quote before word
    for word in "${words[@]:1:cword-1}"; do
        _plexa_cli_unquote "$word"
        arguments+=("$plain")
    done
    if [[ $cur == --*=* ]]; then
        arguments+=("${cur%%=*}")
        cur=${cur#*=}
    fi
    _plexa_cli_unquote "$cur"

    local lines
    mapfile -t lines < <("${1/#\~/$HOME}" --complete "${arguments[@]}" "$plain" 2>/dev/null)
    case ${lines[0]-} in
        files) _filedir; return ;;
        folders) _filedir -d; return ;;
    esac

    # readline replaces what follows the last one of these characters, or the open mark.
    local kept=${cur%"${cur##*[=:]}"}
    for word in "${lines[@]:1}"; do
        word=${word%%$'\t'*}
        case $quote in
            \') word=${word:${#before}} word=${word//\'/\'\\\'\'} ;;
            \") word=${word:${#before}} word=${word//\\/\\\\} word=${word//\"/\\\"} word=${word//\$/\\\$}
                word=${word//\`/\\\`} ;;
            *) printf -v word %q "$word"
                word=${word#"$kept"} ;;
        esac
        COMPREPLY+=("$word")
    done
    # A value follows, or more text.
    if ((${#COMPREPLY[@]} == 1)) && [[ ${COMPREPLY[0]} == *[=\}] ]]; then
        compopt -o nospace 2>/dev/null
    fi
} && complete -F _plexa_cli plexa-cli
