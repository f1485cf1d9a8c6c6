#!/bin/sh
# A README example as a reader meets it: README.md quotes FILE unchanged (the
# fenced block after the line `<!-- FILE -->`), and COMMAND, run from the
# source directory with the sandbox bank's URL and certificate appended,
# succeeds and prints EXPECTED.
#   check_example.sh SOURCE_DIR TESTBANK FILE EXPECTED COMMAND...
source_dir=$1 bank=$2 file=$3 expected=$4
shift 4
scratch=$(mktemp -d)
trap '[ -n "$bank_pid" ] && kill "$bank_pid"; rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

awk -v marker="<!-- $file -->" '$0 == marker { found = 1; next }
  found && /^```/ { if (inside) exit; inside = 1; next } inside' "$source_dir/README.md" >"$scratch/quoted"
diff -u "$source_dir/$file" "$scratch/quoted" || fail "README.md does not quote $file as it is"

"$bank" --tls --cert-out "$scratch/bank.pem" --port-file "$scratch/port" >/dev/null 2>&1 &
bank_pid=$!
for _ in $(seq 100); do [ "$(wc -l 2>/dev/null <"$scratch/port")" = 1 ] && break; sleep 0.1; done
[ -s "$scratch/port" ] || fail "orvelan-testbank did not start"
(cd "$source_dir" && ORVELAN_PASSWORD=secret "$@" "https://127.0.0.1:$(cat "$scratch/port")/ofx" "$scratch/bank.pem") \
  >"$scratch/out" 2>&1
status=$?
cat "$scratch/out"
[ "$status" -eq 0 ] || fail "exited $status"
grep -qF -e "$expected" "$scratch/out" || fail "the output lacks '$expected'"
