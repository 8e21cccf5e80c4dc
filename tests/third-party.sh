#!/bin/sh
# Fails unless the table of PAGE has a row for each Debian package with which FILE is linked dynamically,
# and that row names USER, or all.
# Usage: third-party.sh PAGE FILE USER
set -eu

# The real path of each library that FILE asks for itself, twice: Debian has /lib and /usr/lib for one
# folder, and its packages name either. The loader, which comes with the C library, has no path.
libraries() { # FILE
    readelf --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' >"$scratch/needed"
    ldd "$1" >"$scratch/found"
    awk 'NR == FNR { needed[$1]; next } $1 in needed && $3 ~ "^/" { print $3 }' \
        "$scratch/needed" "$scratch/found" | xargs readlink -f | sed 's|^/usr||; p; s|^|/usr|'
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
libraries "$2" >"$scratch/libraries"
# Half of the paths are unknown to it, and this project's own library.
xargs dpkg-query -S <"$scratch/libraries" 2>/dev/null | cut -d : -f 1 | sort -u >"$scratch/packages"
grep -q . "$scratch/packages"
awk -F '|' -v page="$1" -v user="$3" '
    NR == FNR { if (user != "" && ($5 == " all " || index($5, user))) rows = rows $4; next }
    !index(rows, "`" $1 "`") { print page " has no row of " $1 " that is used by " user; missing = 1 }
    END { exit missing }' "$1" "$scratch/packages"
