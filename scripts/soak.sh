#!/usr/bin/env bash
# Keeps the toolkit and the local service busy for longer than a test may, and prints their memory and
# speed: many requests through one client, with aborts and deletions from inside callbacks, as many
# POSTs over TLS whose bodies have to arrive whole, and 200 clients of the local service. Takes about
# four minutes after the build. For the POSTs under AddressSanitizer, build post-soak with the preset
# asan and run it: 100000 of them take about eight minutes.
# Usage: scripts/soak.sh [REQUESTS [SECONDS]]   50000 requests, 60 seconds of clients by default
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh test
. scripts/compiler-cache.sh
cmake --preset gcc >/dev/null
cmake --build --preset gcc --target toolkit-soak post-soak service-soak

soaked=0
echo "== the toolkit"
build/gcc/tests/soak/toolkit-soak "${1:-50000}" || soaked=$?
echo "== small bodies"
build/gcc/tests/soak/post-soak "${1:-50000}" || soaked=$?
echo "== the local service"
build/gcc/tests/soak/service-soak "${2:-60}" || soaked=$?
exit "$soaked"
