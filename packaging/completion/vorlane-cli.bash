# SPDX-License-Identifier: GPL-3.0-or-later
# bash completion for vorlane-cli: the commands, the options before them, and each command's own
# options. All three are read from the program's --help (a line for each form of a command, two
# spaces in, starting with its name and usage; its description after two spaces or on lines
# indented further; the options section after it), so a new command or option completes without
# an edit here. An option's argument and a command's operands complete as file names.

# Reads `program --help` into _vorlane_cli_commands (names), _vorlane_cli_usage (name -> its usage
# words), _vorlane_cli_globals (the options before the command) and _vorlane_cli_valued (options
# that take a value, the word after them being an argument).
_vorlane_cli_read_help() {
    local program=$1 line section= usage word previous
    _vorlane_cli_commands=() _vorlane_cli_globals=() _vorlane_cli_valued=()
    declare -gA _vorlane_cli_usage=()
    while IFS= read -r line; do
        case $line in
            Commands:*) section=commands; continue ;;
            Options*:) section=options; continue ;;
            "  "[!\ ]*) ;;                  # a command's (or option's) usage
            "   "*) continue ;;              # the rest of a description
            *) section=; continue ;;
        esac
        [[ -n $section ]] || continue
        # The usage ends where two spaces start the description.
        usage=${line#  }
        usage=${usage%%  *}
        usage=${usage//[\[\]|(),]/ }
        if [[ $section == commands ]]; then
            # A command with several forms has a line for each.
            word=${usage%% *}
            [[ -v _vorlane_cli_usage[$word] ]] || _vorlane_cli_commands+=("$word")
            _vorlane_cli_usage[$word]+=" $usage"
        fi
        previous=
        for word in $usage; do
            if [[ $word == -* && $section == options ]]; then
                _vorlane_cli_globals+=("$word")
            fi
            # An option followed by a placeholder in capitals takes a value.
            if [[ $previous == -* && $word =~ ^[A-Z][A-Z_-]*$ ]]; then
                _vorlane_cli_valued+=("$previous")
            fi
            previous=$word
        done
    done < <("$program" --help 2>/dev/null)
}

_vorlane_cli() {
    local cur=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]} command= word i
    [[ $program == "~/"* ]] && program=$HOME/${program#"~/"}
    _vorlane_cli_read_help "$program"
    COMPREPLY=()

    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ " ${_vorlane_cli_valued[*]} " == *" $word "* ]]; then
            ((++i)) # the option's value
        elif [[ $word != -* && -z $command ]]; then
            command=$word
        fi
    done
    # After an option that takes a value: a file name (readline's default), or a number.
    if ((COMP_CWORD > 1)) && [[ " ${_vorlane_cli_valued[*]} " == *" ${COMP_WORDS[COMP_CWORD - 1]} "* ]]; then
        return 0
    fi
    if [[ -z $command ]]; then
        if [[ $cur == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "${_vorlane_cli_globals[*]}" -- "$cur")
        else
            mapfile -t COMPREPLY < <(compgen -W "${_vorlane_cli_commands[*]}" -- "$cur")
        fi
    elif [[ $cur == -* ]]; then
        local options=()
        for word in ${_vorlane_cli_usage[$command]-}; do
            [[ $word == -* ]] && options+=("$word")
        done
        mapfile -t COMPREPLY < <(compgen -W "${options[*]}" -- "$cur")
    fi
    return 0
}

complete -o default -F _vorlane_cli vorlane-cli
