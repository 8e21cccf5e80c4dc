#!/usr/bin/env bash
# Records vospeak at work in a terminal, with the local service, as docs/pictures/terminal.svg.
# As root, in a network of its own: the local service needs its port.
# Usage: scripts/recording.sh [PICTURE]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh test
cmake --preset gcc >/dev/null
cmake --build --preset gcc --target vospeak vo-localservice
tests/own-network.sh scripts/recording.py build/gcc "${1:-docs/pictures/terminal.svg}"
