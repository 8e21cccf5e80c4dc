#!/usr/bin/env bash
# Takes pictures of every page of vodesk, in both languages, light and dark, into docs/pictures/.
# As root, in a network of its own: the local service needs its port.
# Usage: scripts/screenshots.sh [FOLDER]
set -euo pipefail
export LC_ALL=C.UTF-8
cd "$(dirname "$0")/.."
folder=${1:-docs/pictures}

scripts/install-packages.sh test pictures
cmake --preset gcc >/dev/null
cmake --build --preset gcc --target vodesk-pictures
mkdir -p "$folder"
tests/own-network.sh xvfb-run -a -s "-screen 0 1280x1024x24" \
    build/gcc/tests/desktop/vodesk-pictures "$folder"
