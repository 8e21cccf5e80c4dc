#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and runs every test.
# Usage: scripts/test.sh [PRESET ...]   gcc (the default), clang or asan; tsan: ThreadSanitizer, only
#                                       the tests that have threads of their own in them
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/service-port.sh

# The tests listen at the port of the built-in address and at the next. Where each has a network of
# its own, these are free; elsewhere this fails and names a port that is taken.
need_free_ports() { # BUILD
    local address port
    ! tests/own-network.sh true 2>/dev/null || return 0
    address=$(base_address "$1")
    for port in "${address##*:}" "$((${address##*:} + 1))"; do
        if is_taken "$port"; then
            echo "test: port $port of this machine is taken; end what listens there and try again" >&2
            exit 1
        fi
    done
}

for preset in "${@:-gcc}"; do
    echo "== $preset"
    packages=(test)
    [ "$preset" != clang ] || packages+=(clang)
    scripts/install-packages.sh "${packages[@]}"
    . scripts/compiler-cache.sh
    cmake --preset "$preset" >/dev/null
    need_free_ports "build/$preset"
    cmake --build --preset "$preset"
    ctest --preset "$preset" -j "$(($(nproc) + 2))" # many tests mostly wait
done
