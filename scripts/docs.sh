#!/usr/bin/env bash
# Draws the pictures of the documents, docs/*.dot, and makes build/docs/html of the public headers and
# the documents; build/docs/html/index.html is the guide. A public name without a comment is an error.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh docs

fail() {
    echo "docs: $1" >&2
    exit 1
}

for picture in docs/*.dot; do
    dot -Tsvg "$picture" -o "${picture%.dot}.svg"
done

# The public headers are those in the lists of that name; generated ones are left out.
public_headers() { # FOLDER
    sed -n '/^set(public_headers/,/)/s/^ *\([a-z]*[.]h\).*/\1/p' "$1/CMakeLists.txt" | sed "s|^|$1/|"
}
inputs=({,localservice/,benchmarks/}README.md CONTRIBUTING.md CHANGELOG.md docs/*.md docs/decisions/*.md)
for folder in hostkit http network; do
    mapfile -t headers < <(public_headers "$folder")
    [ ${#headers[@]} -gt 0 ] || fail "there are no public headers in $folder/"
    inputs+=("${headers[@]}")
done

rm -rf build/docs
mkdir -p build/docs
{ cat docs/Doxyfile && echo "INPUT = ${inputs[*]}"; } | doxygen -

# Links out of the pages lead into the sources.
grep -rhoE '(href|src)="\.\./[^"#]*' build/docs/html --include='*.html' | sed 's/^[^"]*"//' | sort -u |
    while read -r link; do
        [ -e "build/docs/html/$link" ] || fail "a page leads to $link, which is not there"
    done

# Doxygen lets values of enumerations pass; those without a comment are no links in the lists of values.
if grep -rhoE '(\{ |&#160;|^, )<b>[A-Za-z0-9_]+</b>' build/docs/html --include='*.html'; then
    fail "these values of enumerations have no comment"
fi

# A header without a page would have its enumerations and functions neither shown nor checked.
for header in "${inputs[@]}"; do
    page=$(basename "$header" .h)_8h.html
    [ "${header##*.}" != h ] || [ -e "build/docs/html/$page" ] || fail "$header has no page"
done
