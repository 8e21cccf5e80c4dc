#!/usr/bin/env bash
# Brings the texts of vodesk in examples/desktop/translations/ up to date with the sources. What is new
# is marked as unfinished there, to be translated with Linguist or by hand.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh qttools5-dev-tools
lupdate=/usr/lib/qt5/bin/lupdate
[ -x "$lupdate" ] || lupdate=lupdate

"$lupdate" -I . -I examples/desktop -locations none -no-obsolete examples/desktop hostkit \
    -ts examples/desktop/translations/vodesk_zh_CN.ts
