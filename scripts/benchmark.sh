#!/usr/bin/env bash
# Prints as one table what requests, downloads and catalogues cost beside the bare network access
# manager and libcurl. benchmarks/README.md explains the rows.
# Usage: scripts/benchmark.sh [--quick] [--row NAME ...] [--rounds N] [--json FILE] [--voices N]
#   --quick  what is counted, within three minutes; fails when an instruction ratio is beyond its goal
#            by more than 2 %
# What is measured is the build of the preset gcc, as the tests have it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh benchmark
. scripts/compiler-cache.sh
. scripts/service-port.sh
cmake --preset gcc >/dev/null
if [ "$(base_address build/gcc)" != https://localhost:8443 ]; then
    echo "benchmark: build/gcc has $(base_address build/gcc) built in; nginx serves https://localhost:8443" >&2
    exit 1
fi
cmake --build --preset gcc --target contest >&2

folder=build/gcc/benchmarks/served
bash tests/support/make-certificates.sh "$folder"
network=()
! tests/own-network.sh true 2>/dev/null || network=(tests/own-network.sh)
exec "${network[@]}" python3 -B benchmarks/run.py \
    --program build/gcc/benchmarks/contest --folder "$folder" "$@"
