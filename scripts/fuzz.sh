#!/usr/bin/env bash
# Builds the fuzzers with clang and runs each. The inputs that they find useful are kept in
# build/fuzz/corpus for the next time.
# Usage: scripts/fuzz.sh [SECONDS [NAME ...]]   for each fuzzer, 60 by default; all by default
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh fuzz
seconds=${1:-60}
shift $(($# > 0))
names=("$@")
[ $# -gt 0 ] || mapfile -t names < <(ls fuzz/seeds)
echo "== ${#names[@]} fuzzers, $seconds seconds each: $(((${#names[@]} * seconds + 59) / 60)) minutes after the build"

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

# Temporary files are in memory where the system allows it: some fuzzers write one per execution.
temporary=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$temporary"' EXIT

findings=0
for name in "${names[@]}"; do
    program=build/fuzz/fuzz/fuzz-$name
    corpus=build/fuzz/corpus/$name
    log=build/fuzz/$name.log
    mkdir -p "$corpus" build/fuzz/findings
    if TMPDIR=$temporary "$program" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=1500 \
        -malloc_limit_mb=600 -print_final_stats=1 -artifact_prefix="$PWD/build/fuzz/findings/$name-" \
        "$PWD/$corpus" "$PWD/fuzz/seeds/$name" >"$log" 2>&1; then
        awk -v name="$name" '/number_of_executed_units/ { count = $2 } /average_exec_per_sec/ { rate = $2 }
            END { printf "%-16s %10d executions, %d a second\n", name, count, rate }' "$log"
    else
        findings=$((findings + 1))
        grep -E '^broken promise|runtime error:|ERROR:|^SUMMARY' "$log" || tail -n 20 "$log"
        echo "$name: a finding. The log is $log; to see it again:"
        echo "    $program $(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)"
    fi
done
exit $((findings > 0))
