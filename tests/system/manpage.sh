#!/usr/bin/env bash
# Looks in vospeak's man page for what its help knows: every command, and every option in the command's section.
# Usage: manpage.sh VOSPEAK PAGE
set -euo pipefail
vospeak=$1
page=$(sed 's/\\-/-/g; s/\\f[BIR]//g' "$2")
failed=0

section() { # HEADING: the lines below it
    awk -v heading="$1" '/^\.S[SH]/ { here = index($0 " ", heading " ") == 1; next } here' <<<"$page"
}

expect_options() { # SUBJECT HEADING
    local option options
    options=$("$vospeak" help "$1" | grep -oE '^ +(-[a-z], )?--[a-z]+' | grep -oE -- '--[a-z]+')
    for option in $options; do
        section "$2" | grep -qE -- "(^|, )$option( |$)" && continue
        echo "the man page does not tell of $option under \"$2\"" >&2
        failed=1
    done
}

for command in $("$vospeak" help | awk '/^  [a-z]+  / { print $1 }'); do
    if [ -z "$(section ".SS $command")" ]; then
        echo "the man page does not tell of $command" >&2
        failed=1
    elif "$vospeak" help "$command" | grep -qE '^ +(-[a-z], )?--'; then
        expect_options "$command" ".SS $command"
    fi
done
expect_options options ".SH OPTIONS"
exit $failed
