#!/usr/bin/env bash
# Holds the binary interface of a build against the recorded one, or records it anew.
# Usage: abi.sh check|accept library SHARED-LIBRARY     types, virtual functions and symbols
#        abi.sh check|accept metaobjects PROGRAM        what PROGRAM prints: signals, slots, enumerations
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "abi: $1" >&2
    exit 1
}

# --- What the build has. Nothing of the machine and of the folders is in it.

describe_library() { # FILE
    command -v abidw >/dev/null || fail "there is no abidw; scripts/install-packages.sh test brings it"
    abidw --exported-interfaces-only --suppressions "$here/foreign-types.ini" \
        --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --no-parameter-names \
        --out-file "$scratch/library" "$1"
    grep -q "class-decl name='VoNetworkIntf' size-in-bits" "$scratch/library" ||
        fail "$1 has no debug information"
    sed "s| path='[^']*/| path='|" "$scratch/library"
}

describe_metaobjects() { # PROGRAM
    "$1"
}

# --- How the build differs. Prints nothing where it does not.

compare_library() { # RECORDED FOUND
    abidiff --harmless --no-show-locs "$1" "$2" || [ "$(($? & 3))" = 0 ] || fail "abidiff failed"
}

compare_metaobjects() { # RECORDED FOUND
    diff --unchanged-line-format= --old-line-format='[D] %L' --new-line-format='[A] %L' "$1" "$2" ||
        [ $? = 1 ] || fail "diff failed"
}

# --- What that does to hosts: a pattern of the difference, and the sentence.

library_effects='
\[D\]|What is marked [D] is gone. A host that uses it is not started any more: undefined symbol.
vtable offset .* changed|The virtual functions have another order. A host that is not compiled again calls another operation than it means, and no message tells.
adds a new entry to the vtable|A virtual function is new. Behind all others it breaks no host that only calls; a host with a subclass of its own of that class has no such entry, and breaks when it is called.
removes an entry from the vtable|A virtual function is gone. A host that is not compiled again calls another operation than it means.
type size changed|A class or record has another size. A host that is not compiled again makes and deletes it with the old size, and corrupts memory.
data member|The fields of a record have changed. A host that is not compiled again reads and writes them at other places or takes one for another.
enumerator|An enumeration has changed. A host that is not compiled again takes a value for another or for none.
return type changed|parameter .* changed|A function takes or returns something else. A host that is not compiled again passes and reads the old.
SONAME changed|The library has another name for the loader. A host that is not linked again is not started.
\[A\]|What is marked [A] is new. That breaks no host; it is recorded so that it cannot go unseen.
'
metaobjects_effects='
\[D\]|What is marked [D] is gone, or has another index or other arguments. A host that connects to it by its text gets a warning and no signal, one that looks it up by its index gets another.
\[A\]|What is marked [A] is new. Behind all others of its class it breaks no host.
'

explain() { # SUBJECT REPORT
    local -n effects="$1_effects"
    local line
    while IFS= read -r line; do
        [ -z "$line" ] || ! grep -qE -e "${line%|*}" "$2" || echo "- ${line##*|}"
    done <<<"$effects"
}

check() { # SUBJECT FOUND
    compare_"$1" "$here/${recorded[$1]}" "$2" >"$scratch/report"
    [ -s "$scratch/report" ] || return 0
    cat "$scratch/report"
    echo
    echo "The binary interface differs from tests/abi/${recorded[$1]}:"
    explain "$1" "$scratch/report"
    cat <<'END'
If that is not meant, undo the change. If it is meant:
1. If hosts break, raise the first number of the version, and with it SOVERSION (docs/abi.md).
2. cmake --build --preset gcc --target accept-abi
3. Commit what that writes into tests/abi together with the change, and tell it in CHANGELOG.md.
END
    exit 1
}

declare -A recorded=([library]=library.xml [metaobjects]=metaobjects.txt)
[ $# = 3 ] && [ -n "${recorded[$2]:-}" ] || fail "usage: abi.sh check|accept library|metaobjects FILE"
describe_"$2" "$3" >"$scratch/found"
case $1 in
check) check "$2" "$scratch/found" ;;
accept) cp "$scratch/found" "$here/${recorded[$2]}" ;;
*) fail "neither check nor accept: $1" ;;
esac
