#!/usr/bin/env bash
# Makes the certificates for tests: authority.pem, and NAME.pem and NAME.key for each of these names.
# Usage: make-certificates.sh FOLDER
#   localhost   for localhost and 127.0.0.1, signed by the authority
#   elsewhere   signed by the authority, for another name
#   commonname  signed by the authority, for localhost, without alternative names
#   expired     as localhost, but expired since yesterday
#   foreign     as localhost, but signed by an authority that is not kept
#   stranger    as localhost, but signed by itself
set -euo pipefail
folder=$1
mkdir -p "$folder"
cd "$folder"

new_key=(-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes)
here="subjectAltName=DNS:localhost,IP:127.0.0.1"

authority() { # NAME SUBJECT
    openssl req -x509 "${new_key[@]}" -keyout "$1.key" -out "$1.new" -days 30 -subj "/CN=$2" \
        -addext "basicConstraints=critical,CA:TRUE" \
        -addext "keyUsage=critical,keyCertSign" 2>/dev/null
}
sign() { # NAME COMMON-NAME EXTENSION [AUTHORITY [DAYS]]
    openssl req "${new_key[@]}" -keyout "$1.key" -out "$1.csr" -subj "/CN=$2" 2>/dev/null
    openssl x509 -req -in "$1.csr" -CA "${4:-authority}.new" -CAkey "${4:-authority}.key" \
        -CAcreateserial -days "${5:-30}" -extfile <(echo "$3") -out "$1.pem" 2>/dev/null
    rm "$1.csr"
}
authority authority "Test authority"
authority other "Another authority"
sign localhost localhost "$here"
sign elsewhere elsewhere "subjectAltName=DNS:elsewhere.example"
sign commonname localhost "keyUsage=digitalSignature"
sign expired localhost "$here" authority -1
sign foreign localhost "$here" other
openssl req -x509 "${new_key[@]}" -keyout stranger.key -out stranger.pem -days 30 \
    -subj "/CN=localhost" -addext "$here" 2>/dev/null

rm authority.key other.key other.new
mv authority.new authority.pem # last: the build takes this file as the sign that all are there
