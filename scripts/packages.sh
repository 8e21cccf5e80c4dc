#!/usr/bin/env bash
# Builds the Debian packages libvonetwork1, libvonetwork-dev, vospeak, vodesk and vo-localservice into
# build/package/packages, and checks them with lintian. Two builds of a commit are the same.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh package
. scripts/compiler-cache.sh

SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
build=build/package
rm -rf "$build/packages"
cmake --preset package >/dev/null
cmake --build --preset package
(cd "$build" && cpack >/dev/null)
lintian --allow-root --fail-on error,warning --suppress-tags-from-file cmake/debian/lintian-accepted \
    "$build"/packages/*.deb
ls -sh "$build"/packages/*.deb
