#!/usr/bin/env bash
# Compiles the public headers as strict hosts do: with gcc and clang, as C++17, C++20 and C++23, partly
# without exceptions and run-time types, with Qt's strict macros, and with many warnings as errors.
# Usage: scripts/headers.sh         all headers in one source, for each of these hosts, and alone those
#                                   headers that no source of their own compiles alone
#        scripts/headers.sh --all   each header alone as well, for each host; takes minutes
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh check
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

hosts=(
    "g++ -std=c++17"
    "g++ -std=c++20 -fno-exceptions -fno-rtti"
    "g++ -std=c++2b"
    "clang++ -std=c++17 -fno-exceptions -fno-rtti"
    "clang++ -std=c++20"
    "clang++ -std=c++2b"
)

# In these folders there is no internal header.
cmake --preset lint >/dev/null
public=(build/lint/tests/{http,network,hostkit}/public)
mapfile -t headers < <(find "${public[@]}" -name '*.h' -printf '%P\n' | sort)

# Qt's headers count as the system's, so only what these headers do themselves is warned of.
cat >"$scratch/flags" <<END
-x c++ -fsyntax-only -fPIC
$(pkg-config --cflags Qt5Core Qt5Network | sed 's/-I/-isystem /g')
${public[*]/#/-I}
-DQT_NO_KEYWORDS -DQT_NO_FOREACH -DQT_STRICT_ITERATORS -DQT_USE_QSTRINGBUILDER
-DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII -DQT_NO_CAST_FROM_BYTEARRAY -DQT_NO_URL_CAST_FROM_STRING
-DQT_NO_NARROWING_CONVERSIONS_IN_CONNECT -DQT_DISABLE_DEPRECATED_BEFORE=0x060000
-Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-qual
-Wundef -Wextra-semi -Wnon-virtual-dtor -Woverloaded-virtual -Wzero-as-null-pointer-constant
END

write_source() { # NAME HEADER...
    printf '#include "%s"\n' "${@:2}" >"$scratch/$1.cpp"
}

is_first_in_its_source() { # HEADER
    [ "$(grep -m 1 '^#include' "${1%.h}.cpp" 2>/dev/null)" = "#include \"$1\"" ]
}

jobs() { # PATTERN HOST...   a line for each source whose name fits, with each host
    local host source
    for source in "$scratch"/$1.cpp; do
        for host in "${@:2}"; do echo "$host @$scratch/flags $source"; done
    done
}

# What hosts write joins the headers in one source, as in a unity build.
write_source together "${headers[@]}" "$PWD"/{examples/request/main,tests/network/headers/*}.cpp
for header in "${headers[@]}"; do
    [ "${1:-}" != --all ] && is_first_in_its_source "$header" ||
        write_source "alone-${header//\//-}" "$header"
done
alone=("${hosts[0]}")
[ "${1:-}" != --all ] || alone=("${hosts[@]}")

{
    jobs together "${hosts[@]}"
    jobs 'alone-*' "${alone[@]}"
} | xargs -P "$(nproc)" -L 1 nice
