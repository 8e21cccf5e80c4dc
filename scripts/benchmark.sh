#!/usr/bin/env bash
# Prints what a GET of 200 bytes costs, in instructions per request of all threads: through the bare
# network access manager, through the toolkit, and with string connections on the manager. Valgrind
# counts the instructions, so the figures do not depend on what else the machine does.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh build valgrind
build=build/benchmark
cmake -G Ninja -B "$build" -DCMAKE_BUILD_TYPE=Release -DVONETWORK_BUILD_TESTS=OFF \
    -DVONETWORK_BUILD_EXAMPLES=OFF -DVONETWORK_BUILD_LOCALSERVICE=OFF >/dev/null
cmake --build "$build" --target request-cost >/dev/null
program=$build/benchmarks/request-cost
few=100
many=1100

coproc "$program" serve
server=$COPROC_PID
trap 'kill "$server" 2>/dev/null || true' EXIT
read -r port <&"${COPROC[0]}"

instructions() { # WAY COUNT
    valgrind --tool=callgrind --fair-sched=yes --callgrind-out-file=/dev/null "$program" "$1" "$port" "$2" 2>&1 |
        sed -n 's/.*Collected : *\([0-9]*\).*/\1/p'
}

per_request() { # WAY
    echo $((($(instructions "$1" "$many") - $(instructions "$1" "$few")) / (many - few)))
}

bare=$(per_request bare)
for way in bare toolkit strings; do
    cost=$([ "$way" = bare ] && echo "$bare" || per_request "$way")
    awk -v way="$way" -v cost="$cost" -v bare="$bare" \
        'BEGIN { printf "%-8s %8d instructions per request, %.3f times bare\n", way, cost, cost / bare }'
done
