#!/usr/bin/env bash
# Checks the layout of every source, compiles the public headers as strict hosts do, builds all but the
# tests with clang and clazy (level 1), and checks all with clang-tidy; compiler warnings are errors.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh check

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run --Werror "${sources[@]}"
scripts/headers.sh

# clazy is clang with a plugin: one build is both. The tests are not compiled besides, since
# clang-tidy reports the compiler's warnings too; it needs what the meta-object compiler makes of them.
# What tests share is a library, and compiled; clazy warns of callbacks bound to what stands on the
# stack, which is safe within a test.
export CLAZY_CHECKS=level1
export CLAZY_IGNORE_DIRS='(/usr/include|_autogen|/tests/)'
cmake --preset lint >/dev/null
mapfile -t generated < <(ninja -C build/lint -t targets all | sed -n 's/^\([^/]*_autogen\): phony$/\1/p')
cmake --build --preset lint --target "${generated[@]}" \
    {hostkit,http,network,localservice,examples,fuzz,benchmarks}/all

# The one that must not compile stays out.
git ls-files '*.cpp' ':!tests/http/misfit.cpp' |
    xargs -P "$(nproc)" -n 1 clang-tidy-22 -p build/lint --quiet 2> >(grep -v 'Processing file' >&2)
