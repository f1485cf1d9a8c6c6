#!/usr/bin/env bash
# Times `orvelan-statement --format csv` and libofx's ofxdump (Debian package
# "ofx") on the same generated OFX 1.x statement, in one run, and prints the
# ratio. Both outputs are checked to hold every transaction.
# Usage: bench/compare_with_ofxdump.sh [build-dir] [transactions: 10000|100000]
# (ofxdump needs minutes for 100000.)
set -euo pipefail
build="${1:-build}"
transactions="${2:-10000}"
tool="$build/tools/orvelan-statement"
timing="$build/bench/statement_read_timing"
[ -x "$tool" ] && [ -x "$timing" ] || { echo "build orvelan-statement and statement_read_timing first"; exit 1; }
command -v ofxdump >/dev/null || { echo "ofxdump is missing: apt-get install ofx"; exit 1; }
dir=$(mktemp -d /tmp/orvelan-ofxdump-XXXXXX)
trap 'rm -rf "$dir"' EXIT
"$timing" --runs 1 --keep "$dir" >/dev/null
file="$dir/bank_statement_${transactions}_tx.ofx"
[ -f "$file" ] || { echo "no generated file for $transactions transactions"; exit 1; }

seconds() { python3 -c 'import sys,time,subprocess
start=time.monotonic()
with open(sys.argv[1],"wb") as out:
    subprocess.run(sys.argv[2:],stdout=out,stderr=subprocess.DEVNULL,check=True)
print("%.3f" % (time.monotonic()-start))' "$@"; }

ours=$(seconds "$dir/ours.csv" "$tool" "$file" --format csv)
theirs=$(seconds "$dir/theirs.txt" ofxdump "$file")
rows=$(($(wc -l <"$dir/ours.csv") - 1))
dumped=$(grep -c "Financial institution's ID for this transaction" "$dir/theirs.txt" || true)
echo "file: $transactions transactions, $(stat -c %s "$file") bytes"
echo "orvelan-statement --format csv: ${ours} s (${rows} rows)"
echo "ofxdump:                        ${theirs} s (${dumped} transactions)"
python3 -c "import sys; print('ofxdump / orvelan-statement = %.1f' % (float(sys.argv[2]) / float(sys.argv[1])))" "$ours" "$theirs"
[ "$rows" -eq "$transactions" ] && [ "$dumped" -eq "$transactions" ]
