#!/bin/sh
# orvelan as a user meets it: every real file beside the checkout read in the
# three formats, the institutions file, and the older names.
#   check_cli_tool.sh TOOL_DIR SOURCE_DIR
tools=$1
source_dir=$2
corpus=${ORVELAN_CORPUS_DIR:-$source_dir/../shared/corpus}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAIL: $*"; sed 's/^/  /' "$scratch/err"; failures=$((failures + 1)); }

# A file prints its records (exit 0), or exits 1 with the server's error
# status (2001 and its text); never a parse error or a crash.
if [ -d "$corpus" ]; then
  for file in "$corpus"/*; do
    for format in table csv json; do
      "$tools/orvelan" read "$file" --format "$format" >"$scratch/out" 2>"$scratch/err"
      status=$?
      if [ "$status" -eq 1 ]; then
        grep -q 'failed: 2001 OFX server error ([0-9]*): .' "$scratch/err" || fail "read $file --format $format"
      elif [ "$status" -ne 0 ]; then
        fail "read $file --format $format exited $status"
      elif [ "$format" = json ] && ! python3 -m json.tool "$scratch/out" >/dev/null 2>>"$scratch/err"; then
        fail "read $file: JSON does not parse"
      fi
    done
  done
  "$tools/orvelan" read "$corpus/ofxparse-bank_small.ofx" --format json >"$scratch/out" 2>"$scratch/err"
  [ "$(cat "$scratch/out")" = "[]" ] || fail "an empty <OFX> reads as []"
else
  echo "no corpus at $corpus: the corpus rows are skipped"
fi

# expect STATUS TEXT ARGS...: the exit status, and TEXT in the output or errors.
expect() {
  want_status=$1 want_text=$2
  shift 2
  "$@" >"$scratch/out" 2>"$scratch/err"
  status=$?
  cat "$scratch/out" >>"$scratch/err"
  if [ "$status" -ne "$want_status" ] || ! grep -qF -e "$want_text" "$scratch/err"; then
    fail "$* exited $status (expected $want_status with '$want_text')"
  fi
}

cat >"$scratch/institutions.ini" <<'INI'
# a comment
[other]
url = http://127.0.0.1:1/never
[My Bank]
URL = http://127.0.0.1:9/ofx
org = O
FID = 1
user = u
app_id = ""
StrictServerRequests = yes
INI
export ORVELAN_PASSWORD=p
at="--institutions $scratch/institutions.ini"
# The file's empty application id reaches the library; the command line overrides it.
expect 1 "GetStatement failed: 2000 Missing required field: OFX Application Id" \
  "$tools/orvelan" statement $at --institution "my bank" --bank-id 2 --account 1
expect 1 "GetStatement failed: 2000 Missing required field: Bank Id" \
  "$tools/orvelan" statement $at --institution "my bank" --account 1 --app-id QWIN
expect 2 "no institution [nowhere]" "$tools/orvelan" statement $at --institution nowhere --account 1
echo "password = x" >>"$scratch/institutions.ini"
expect 2 "unknown key password" "$tools/orvelan" card $at --institution "my bank" --account 1

# The older names and the subcommands print the same.
statement=$source_dir/examples/statement.ofx
"$tools/orvelan-statement" "$statement" --format csv >"$scratch/older"
expect 0 "HCB202601200003" "$tools/orvelan" statement "$statement" --format csv
cmp -s "$scratch/older" "$scratch/out" || fail "orvelan-statement and orvelan statement differ"
expect 0 '"kind": "bank"' "$tools/orvelan" read "$statement" --format json
expect 2 "unknown command bogus" "$tools/orvelan" bogus
expect 2 "the password comes from ORVELAN_PASSWORD" "$tools/orvelan-profile" --password x

[ "$failures" -eq 0 ] && echo "orvelan: every file, the institutions file and the older names as expected"
exit "$failures"
