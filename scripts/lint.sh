#!/usr/bin/env bash
# Builds with clang and clazy (level 1) with warnings as errors, and checks layout and clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh check

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run --Werror "${sources[@]}"

# clazy is clang with a plugin: one build is both.
export CLAZY_CHECKS=level1
export CLAZY_IGNORE_DIRS='(/usr/include|_autogen)'
cmake --preset clang -DCMAKE_CXX_COMPILER=clazy >/dev/null
cmake --build --preset clang

mapfile -t units < <(git ls-files '*.cpp')
printf '%s\n' "${units[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet
