#!/bin/sh
# orvelan-transfer and orvelan-pay against the sandbox bank: the server's ids,
# statuses and tokens they print, and their exit codes.
#   check_money_tools.sh TOOL_DIR TESTBANK
tools=$1
scratch=$(mktemp -d)
failures=0
if ! command -v python3 >/dev/null; then
  [ "$ORVELAN_REQUIRE_PEERS" = 1 ] && { echo "FAIL: python3 is required"; exit 1; }
  echo "SKIP: no python3"; exit 77
fi
python3 "$2" --port-file "$scratch/port" >"$scratch/bank.out" 2>&1 &
bank=$!
trap 'kill $bank; rm -rf "$scratch"' EXIT
for _ in $(seq 100); do [ -s "$scratch/port" ] && break; sleep 0.1; done
export ORVELAN_PASSWORD=secret
on="--url http://127.0.0.1:$(cat "$scratch/port")/ofx --org O --user joe"
from="--from-bank 111 --from-account A1"

# expect STATUS LINE TOOL ARGS...: the exit status and, unless empty, a line of the output.
expect() {
  want_status=$1 want_line=$2 tool=$3
  shift 3
  "$tools/$tool" "$@" >"$scratch/out" 2>&1
  status=$?
  if [ "$status" -ne "$want_status" ] || { [ -n "$want_line" ] && ! grep -qxF -e "$want_line" "$scratch/out"; }; then
    echo "FAIL: $tool $* exited $status (expected $want_status, with '$want_line'):"; cat "$scratch/out"
    failures=$((failures + 1))
  fi
}

expect 0 '"XF000001","WILLPROCESSON","25.00","USD","A1","111","B2","12/31/2099 00:00:00","","12/31/2099 00:00:00"' \
  orvelan-transfer add $on $from --to-account B2 --amount 25.00 --due 12/31/2099 --format csv
expect 0 '  "transfer": {"id": "XF000001", "status": "CANCELLED", "amount": "", "currency": "", "from_account": "", "to_bank": "", "to_account": "", "due": "", "posted": "", "processed": ""}' \
  orvelan-transfer cancel XF000001 $on --format json
expect 1 'orvelan-transfer: cancel failed: 2001 OFX server error (2017): Already canceled' orvelan-transfer cancel XF000001 $on
expect 0 '"CANCELLED","XF000001","CANCELLED","","","","","","",""' orvelan-transfer sync $on $from --format csv --ofx-version 211
expect 0 '"2","0"' orvelan-transfer sync $on $from --format csv
expect 1 'orvelan-transfer: the server lost the synchronization; run again with --refresh' \
  orvelan-transfer sync $on $from --user lostsync
expect 0 '"PL00001","ELEC01","Loopback Electric","PO Box 127","Localhost","CA","94001","555-0110","E-1","2"' \
  orvelan-pay add-payee $on --payee-id ELEC01 --payee-account E-1 --format csv
expect 0 '  check_number   ' orvelan-pay pay $on $from --amount 40 --due 12/01/2099 --payee-list-id PL00001 \
  --payee-account E-1 --payee-id ELEC01
expect 0 '"ADDED","BP000002","WILLPROCESSON","40","PL00001","ELEC01","E-1","12/01/2099 00:00:00","12/01/2099 00:00:00","",""' \
  orvelan-pay payments $on $from --refresh --format csv
expect 1 'orvelan-pay: pay failed: 2000 Missing required field: Payee ListId is missing in the request.' \
  orvelan-pay pay $on $from --amount 40 --payee-account E-1
expect 2 'orvelan-pay: --token and --refresh are for synchronizing' orvelan-pay pay $on --refresh
expect 2 'orvelan-pay: the command takes one server id' orvelan-pay cancel $on
expect 2 'orvelan-transfer: the password comes from ORVELAN_PASSWORD, never the command line' \
  orvelan-transfer add $on --password x

[ "$failures" -eq 0 ] && echo "orvelan-transfer, orvelan-pay: all answers and exit codes as expected"
exit "$failures"
