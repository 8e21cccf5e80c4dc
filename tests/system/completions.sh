#!/usr/bin/env bash
# Completes some command lines of vospeak in bash and, where they are there, in zsh and fish, by what the build
# made.
# Usage: completions.sh FOLDER
set -euo pipefail
folder=$1
here=$(dirname "$0")
found=$(mktemp)
trap 'rm -f "$found"' EXIT
failed=0

# Each prints what the last WORD can become.

in_bash() { # WORD...
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); words=($(complete -p vospeak))
        "${words[2]}" 2>/dev/null; printf "%s\n" "${COMPREPLY[@]}"' "$folder/bash/vospeak" vospeak "$@"
}

# zsh completes for a user at a terminal only.
in_zsh() { # WORD...
    : >"$found"
    FOLDER=$folder/zsh FOUND=$found zsh -f -c 'zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell "source $1"
        zpty -n -w shell "vospeak $argv[2,-1]"$'\''\t'\''
        while zpty -r shell; do :; done' zsh "$here/completions.zsh" "$@" >/dev/null
    cat "$found"
}

in_fish() { # WORD...
    fish --no-config -c 'source $argv[1]; complete -C "vospeak $argv[2..]"' \
        "$folder/fish/vospeak.fish" "$@" | cut -f1
}

expect() { # WANTED WORD...
    local wanted=$1 shell answer
    shift
    for shell in bash zsh fish; do
        command -v $shell >/dev/null || continue
        answer=$(in_$shell "$@" | sort -u | xargs)
        [ "$answer" = "$wanted" ] && continue
        echo "$shell completes \"vospeak $*\" by \"$answer\", not by \"$wanted\"" >&2
        failed=1
    done
}

expect "say" sa
expect "logout" logo
expect "--format" say --fo
expect "pcm wav" say --format ""
expect "json txt" recognize --output ""
expect "--resume" fetch --res
expect "" voices --res
expect "say" help sa
expect "options" help op
exit $failed
