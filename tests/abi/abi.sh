#!/usr/bin/env bash
# Holds the binary interface of a build against the recorded one, or records it anew.
# Usage: abi.sh check|accept SUBJECT FILE    SUBJECT: library, the shared library; records, a library
#                                            that names every record; metaobjects, a program that
#                                            prints signals and slots
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "abi: $1" >&2
    exit 1
}

# What the build has. Nothing of the machine and of its folders is in it.
describe() { # FILE
    if [ "$subject" = metaobjects ]; then
        "$1"
        return
    fi
    command -v abidw >/dev/null ||
        fail "there is no abidw; scripts/install-packages.sh test installs it"
    abidw --exported-interfaces-only --suppressions "$here/foreign-types.ini" \
        --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --no-parameter-names \
        --type-id-style hash --out-file "$scratch/types" "$1"
    grep -q "class-decl name='TTSParams' size-in-bits" "$scratch/types" ||
        fail "$1 has no debug information"
    # Sources that add nothing stand in the order of their folders.
    sed -e "s| path='[^']*/| path='|" -e "/<abi-instr /{N;/<\/abi-instr>/d}" "$scratch/types"
}

# How the build differs; nothing where it does not. Both programs end with 1 or more then, abidiff with
# bits, of which the lowest two say that it failed itself. What its summary cannot show, such as two
# virtual functions in each other's places, is in its long report.
compare() { # RECORDED FOUND
    if [ "$subject" = metaobjects ]; then
        diff --unchanged-line-format= --old-line-format='[D] %L' --new-line-format='[A] %L' "$@" ||
            [ $? = 1 ] || fail "diff failed"
        return
    fi
    compare_types --leaf-changes-only --harmless "$@" >"$scratch/summary"
    if [ -s "$scratch/summary" ] && [ -z "$(explain "$effects" "$scratch/summary")" ]; then
        compare_types "$@"
    else
        cat "$scratch/summary"
    fi
}

compare_types() { # [OPTION...] RECORDED FOUND
    abidiff --no-show-locs "$@" || [ $(($? & 3)) = 0 ] || fail "abidiff failed"
}

# What that does to hosts: a pattern of the difference, and a sentence. A host is one that was compiled
# before.
type_effects='
\[D\]|What is marked [D] is gone: a host that uses it is not started any more (undefined symbol).
vtable offset .* changed|Virtual functions have moved: a host calls another operation than it means, and no message tells.
member function insertion|A function is new in a class. A virtual one behind all others breaks no host that only calls; a subclass in a host does not have it.
deletion|Something is gone from a class, record or enumeration: a host uses what is not there.
type size changed|A class or record has another size: a host makes and deletes it with the old one, and corrupts memory.
data member|Fields have changed: a host reads and writes them at their old places, and takes one for another.
enumerator|An enumeration has changed: a host takes a value for another, or for none.
(return type|parameter [0-9]+ .*) changed|A function takes or returns something else: a host passes and reads the old.
SONAME changed|The library has another name: a host that is not linked again does not find it.
\[A\]|What is marked [A] is new: it breaks no host, and is recorded so that it cannot go unseen.
'
metaobject_effects='
\[D\]|What is marked [D] is gone, or has another index or other arguments: a host that connects to it by its text gets a warning and never the signal, and one that looks it up by its index gets another.
\[A\]|What is marked [A] is new: behind all others of its class it breaks no host.
'

explain() { # EFFECTS REPORT
    local line
    while IFS= read -r line; do
        [ -z "$line" ] || ! grep -qE -e "${line%|*}" "$2" || echo "- ${line##*|}"
    done <<<"$1"
}

check() { # RECORDED FOUND
    compare "$1" "$2" >"$scratch/report"
    [ -s "$scratch/report" ] || return 0
    cat "$scratch/report"
    echo
    echo "The binary interface is not that of tests/abi/${1##*/}:"
    explain "$effects" "$scratch/report"
    cat <<'END'
If that is not meant, undo it. If it is meant:
1. Where hosts break, raise the first number of the version, and with it SOVERSION (docs/abi.md).
2. cmake --build --preset gcc --target accept-abi
3. Commit what that writes into tests/abi with the change, and say in CHANGELOG.md what hosts have to do.
END
    exit 1
}

[ $# = 3 ] || fail "usage: abi.sh check|accept library|records|metaobjects FILE"
subject=$2
case $subject in
library | records) recorded=$here/$subject.xml effects=$type_effects ;;
metaobjects) recorded=$here/$subject.txt effects=$metaobject_effects ;;
*) fail "no such subject: $subject" ;;
esac
describe "$3" >"$scratch/found"
case $1 in
check) check "$recorded" "$scratch/found" ;;
accept) cp "$scratch/found" "$recorded" ;;
*) fail "neither check nor accept: $1" ;;
esac
