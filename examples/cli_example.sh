#!/bin/sh
# Prints a statement file, then downloads a statement over HTTPS.
#   ORVELAN_PASSWORD=secret sh examples/cli_example.sh https://127.0.0.1:8443/ofx bank.pem
# The password comes from ORVELAN_PASSWORD (or a prompt), never the command line.
set -e
url=$1 certificate=$2

orvelan statement examples/statement.ofx --format csv

orvelan statement --url "$url" --accept-cert "$certificate" --org "Orvelan Test Bank" --fid 9999 \
  --user user --bank-id 121000248 --account 4412345678 --from 01/01/2026 --format json
