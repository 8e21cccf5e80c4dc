#!/usr/bin/env bash
# Completes some command lines of vospeak in bash and, if it is there, in fish, by what the build made.
# Usage: completions.sh FOLDER
set -euo pipefail
folder=$1
failed=0

in_bash() { # WORD...: what the last one can become
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vospeak 2>/dev/null
        printf "%s\n" "${COMPREPLY[@]}"' "$folder/bash/vospeak" vospeak "$@" | sort | tr '\n' ' ' | sed 's/ $//'
}

in_fish() { # WORD...
    fish --no-config -c 'source $argv[1]; complete -C "vospeak $argv[2..]"' \
        "$folder/fish/vospeak.fish" "$@" | cut -f1 | sort | tr '\n' ' ' | sed 's/ $//'
}

expect() { # WANTED WORD...
    local wanted=$1 shell answer
    shift
    for shell in bash fish; do
        command -v $shell >/dev/null || continue
        answer=$(in_$shell "$@")
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
exit $failed
