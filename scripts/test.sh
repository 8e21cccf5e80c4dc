#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and runs every test.
# Usage: scripts/test.sh [PRESET ...]   gcc (the default), clang or asan
set -euo pipefail
cd "$(dirname "$0")/.."
for preset in "${@:-gcc}"; do
    echo "== $preset"
    packages=(test)
    [ "$preset" != clang ] || packages+=(clang)
    scripts/install-packages.sh "${packages[@]}"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" -j "$(($(nproc) + 2))" # many of them mostly wait
done
