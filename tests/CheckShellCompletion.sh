#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The shell completions of vorlane-cli against the real program:
#   CheckShellCompletion.sh VORLANE_CLI BASH_COMPLETION ZSH_COMPLETION
# bash is asked the way readline asks it (COMP_WORDS and COMP_CWORD, then the function that
# `complete -p vorlane-cli` names); every command it offers must be one the program runs, and it
# must offer as many as the program's --help lists. zsh must list the same commands.
set -uo pipefail
cli=$1 bash_completion=$2 zsh_completion=$3
failures=0

fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}

# shellcheck source=/dev/null
source "$bash_completion"
registration=$(complete -p vorlane-cli 2>/dev/null) || fail "sourcing the file registers no completion for vorlane-cli"
function=$(sed -n 's/.* -F \([^ ]*\) .*/\1/p' <<<"$registration")
[[ $registration == *"-o default"* ]] ||
  fail "no file names where the completion has no word to offer: $registration"

# Prints, sorted on one line, what the completion offers for the words given, the last being the
# one under the cursor.
offered() {
  COMP_WORDS=("$cli" "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  "$function" vorlane-cli "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
  printf '%s\n' "${COMPREPLY[@]}" | sort | xargs
}

expect() {
  local wanted=$1
  shift
  local got
  got=$(offered "$@")
  [[ $got == "$wanted" ]] || fail "vorlane-cli $* <TAB> offers \"$got\", not \"$wanted\""
}

# The commands: each one the program knows (it answers anything but "unknown command"), and as
# many as its --help lists between "Commands:" and the blank line after them (a line two spaces in
# for each form of a command, its description perhaps on lines indented further).
read -ra commands <<<"$(offered "")"
listed=$("$cli" --help | awk '/^Commands:/ { inside = 1; next } /^$/ { inside = 0 }
                              inside && /^  [^ ]/ { print $1 }' | sort -u | wc -l)
((${#commands[@]} == listed)) ||
  fail "the completion offers ${#commands[@]} commands (${commands[*]}), --help lists $listed"
((listed > 0)) || fail "--help lists no commands"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for command in "${commands[@]}"; do
  if "$cli" --vault "$scratch/vault.sqlite" "$command" --no-such-option </dev/null 2>&1 |
    grep -q 'unknown command'; then
    fail "the completion offers \"$command\", which vorlane-cli does not know"
  fi
done

# Global options, before the command and between them; their value is a file name (readline's
# own completion), and the command is found after them.
expect "--help --json --vault --version" --
expect "" --vault ""
expect "expired expiring" --vault "$scratch/vault.sqlite" --json exp
# A command's own options from its usage line; a command's operand is a file name.
expect "--within" expiring --
expect "--key-file --password-file" open-bundle bundle.vorlane --
expect "" open-bundle ""
expect "" --json search --

# zsh, typed at as a person would: an interactive zsh on a pseudo-terminal, with the completion
# system on and the file on its function path, lists each command with its description after
# "vorlane-cli <TAB>". It waits for the listing, up to 30 seconds.
if zsh -n "$zsh_completion"; then
  listing=$(COMPLETION_DIR=$(dirname "$zsh_completion") CLI_DIR=$(dirname "$cli") \
    COMMANDS="${commands[*]}" zsh -f <<'ZSH'
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PS1='> '; fpath=($COMPLETION_DIR \$fpath); path=($CLI_DIR \$path)"
zpty -w shell 'autoload -Uz compinit; compinit -u -D; LISTMAX=1000'
zpty -w -n shell $'vorlane-cli \t'
listing= deadline=$((SECONDS + 30))
while ((SECONDS < deadline)); do
  zpty -r -t shell chunk && listing+=$chunk || sleep 0.2
  missing=0
  for command in ${=COMMANDS}; do [[ $listing == *"$command "*" -- "* ]] || missing=1; done
  ((missing)) || break
done
zpty -d shell
print -r -- $listing
ZSH
  )
  # Without the terminal's escape sequences and carriage returns.
  listing=$(sed 's/\x1b\[[0-9;?]*[a-zA-Z]//g; s/\r//g' <<<"$listing")
  for command in "${commands[@]}"; do
    grep -q "^$command  *-- " <<<"$listing" ||
      fail "zsh does not list \"$command\" with its description after vorlane-cli <TAB>"
  done
else
  fail "zsh cannot parse $zsh_completion"
fi

((failures == 0)) || exit 1
echo "the completions offer the ${#commands[@]} commands of vorlane-cli and their options"
