#!/usr/bin/env bash
# Prints as one table what requests, downloads and catalogues cost beside the bare network access
# manager and libcurl. benchmarks/README.md explains the rows.
# Usage: scripts/benchmark.sh [--quick] [--row NAME ...] [--rounds N] [--json FILE] [--voices N]
#   --quick  what is counted, within three minutes; fails when a row is beyond its goal by over 2 %
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh benchmark
. scripts/compiler-cache.sh
build=build/benchmark
cmake -G Ninja -B "$build" -DCMAKE_BUILD_TYPE=Release -DVONETWORK_BUILD_BENCHMARKS=ON \
    -DVONETWORK_BUILD_TESTS=OFF -DVONETWORK_BUILD_EXAMPLES=OFF -DVONETWORK_BUILD_LOCALSERVICE=OFF >/dev/null
cmake --build "$build" --target contest >&2

folder=$build/served
bash tests/support/make-certificates.sh "$folder"
network=()
! tests/own-network.sh true 2>/dev/null || network=(tests/own-network.sh)
exec "${network[@]}" python3 -B benchmarks/run.py \
    --program "$build/benchmarks/contest" --folder "$folder" "$@"
