#!/usr/bin/env bash
# The completions of each shell offer what the command's own help tells: all commands, all options of
# each, and the values of those that have a list.
#   completion_test.sh VORLANE
set -euo pipefail
vorlane=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work

fail() { echo "completion: $*" >&2; exit 1; }
same() { # what, offered, wanted: lines in any order
  local difference
  difference=$(diff <(sort -u <<<"$2") <(sort -u <<<"$3")) || fail "$1: $difference"
}

mapfile -t commands < <("$vorlane" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z-][a-z-]*\) .*/\1/p')
[ ${#commands[@]} -ge 6 ] || fail "the help names no commands"
options_of() { # command: the names that its help begins a line with
  "$vorlane" "$1" --help | sed -n 's/^  \(-[^ ]*\).*/\1/p' | tr ',' '\n'
}

# shellcheck disable=SC1090
source <("$vorlane" completion bash)
bash_offers() { # words of a line; the last one is begun
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  _vorlane
  [ ${#COMPREPLY[@]} = 0 ] || printf '%s\n' "${COMPREPLY[@]}"
}
same "bash, commands" "$(bash_offers vorlane "" | grep -v '^--')" "$(printf '%s\n' "${commands[@]}")"
for command in "${commands[@]}"; do
  same "bash, $command" "$(bash_offers vorlane "$command" -)" "$(options_of "$command")"
done
levels=$'bicubic\nbilinear\nnearest'
same "bash, values" "$(bash_offers vorlane straighten in.tif --interpolation '')" "$levels"
same "bash, values behind =" "$(bash_offers vorlane straighten --interpolation = bil)" bilinear
[ -z "$(bash_offers vorlane straighten -o s)" ] || fail "bash: a file's name is not left to the shell"

if command -v fish >/dev/null; then
  "$vorlane" completion fish > "$work/vorlane.fish"
  fish_offers() { fish --no-config -c "source $work/vorlane.fish; complete -C'$1'" | cut -f1; }
  same "fish, commands" "$(fish_offers 'vorlane ')" "$(printf '%s\n' "${commands[@]}")"
  for command in "${commands[@]}"; do
    same "fish, $command" "$(fish_offers "vorlane $command --")" "$(options_of "$command" | grep '^--')"
  done
  same "fish, values" "$(fish_offers 'vorlane straighten --interpolation ')" "$levels"
fi
if command -v zsh >/dev/null; then
  "$vorlane" completion zsh > "$work/_vorlane"
  zsh -n "$work/_vorlane"
  # A stand-in for zsh's own function tells what it is given.
  for command in "${commands[@]}"; do
    # shellcheck disable=SC2016
    offered=$(zsh -fc 'autoload -U compinit; compdef() { }; _describe() { }
      _arguments() { shift; print -rl -- ${${@%%\[*}:#\**}; }
      words=(vorlane $2 -); CURRENT=3; source $1' zsh "$work/_vorlane" "$command")
    same "zsh, $command" "$offered" "$(options_of "$command")"
  done
fi
echo "completion: $(printf '%s ' "${commands[@]}")"
