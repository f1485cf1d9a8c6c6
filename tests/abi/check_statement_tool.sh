#!/bin/sh
# orvelan-statement as a user meets it: exit 0 with the statement printed,
# 1 with the library's code and text when the library fails, 2 for a bad
# command line.
#   check_statement_tool.sh TOOL SOURCE_DIR
tool=$1
source_dir=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# expect STATUS EXPECTED_STDERR_TEXT ARGS...: runs the tool, checks the exit
# status and that standard error holds the text ("" for none expected).
expect() {
  want_status=$1
  want_text=$2
  shift 2
  "$tool" "$@" >"$scratch/out" 2>"$scratch/err"
  status=$?
  if [ "$status" -ne "$want_status" ]; then
    echo "FAIL: $* exited $status, expected $want_status"; cat "$scratch/err"; failures=$((failures + 1))
  elif [ -n "$want_text" ] && ! grep -qF -e "$want_text" "$scratch/err"; then
    echo "FAIL: $*: stderr lacks '$want_text':"; cat "$scratch/err"; failures=$((failures + 1))
  fi
}

expect 0 "" "$source_dir/examples/statement.ofx" --format csv
rows=$(wc -l <"$scratch/out")
[ "$rows" -eq 5 ] || { echo "FAIL: csv has $rows lines, expected a header and 4 rows"; failures=$((failures + 1)); }
grep -q '^01/20/2026 00:00:00,Transfer,-500.00,HCB202601200003,' "$scratch/out" ||
  { echo "FAIL: csv row"; cat "$scratch/out"; failures=$((failures + 1)); }
expect 0 "" "$source_dir/examples/statement.ofx" --format json
grep -q '"fitid": "HCB202601310004"' "$scratch/out" || { echo "FAIL: json"; failures=$((failures + 1)); }

# A card file (OFX 1.x) and a loan file (OFX 2.x, with loan aggregates the
# dictionary lacks) are told apart by their content.
sonrs='<SIGNONMSGSRSV1><SONRS><STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS><DTSERVER>20260131</DTSERVER><LANGUAGE>ENG</LANGUAGE></SONRS></SIGNONMSGSRSV1>'
printf 'OFXHEADER:100\r\n\r\n<OFX>%s<CREDITCARDMSGSRSV1><CCSTMTTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS><CCSTMTRS><CURDEF>USD<CCACCTFROM><ACCTID>4111</CCACCTFROM><BANKTRANLIST><DTSTART>20260101<DTEND>20260131<STMTTRN><TRNTYPE>POS<DTPOSTED>20260105<TRNAMT>-12.5<FITID>C1<NAME>Bakery</STMTTRN></BANKTRANLIST><LEDGERBAL><BALAMT>-12.5<DTASOF>20260131</LEDGERBAL></CCSTMTRS></CCSTMTTRNRS></CREDITCARDMSGSRSV1></OFX>' "$sonrs" >"$scratch/card.ofx"
printf '<?OFX OFXHEADER="200" VERSION="211"?><OFX>%s<LOANMSGSRSV1><LOANSTMTTRNRS><TRNUID>1</TRNUID><STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS><LOANSTMTRS><CURDEF>USD</CURDEF><LOANACCTFROM><LOANACCTID>L7</LOANACCTID><LOANACCTTYPE>HOMEEQUITY</LOANACCTTYPE></LOANACCTFROM><PRINBAL><BALAMT>900</BALAMT><DTASOF>20260131</DTASOF></PRINBAL><LOANTRANLIST><DTSTART>20260101</DTSTART><DTEND>20260131</DTEND><LOANSTMTTRN><LOANTRNTYPE>PAYMENT</LOANTRNTYPE><DTPOSTED>20260102</DTPOSTED><TRNAMT>100</TRNAMT><LOANTRNAMT><PRINAMT>60</PRINAMT><INTAMT>30</INTAMT><ESCRWAMT><ESCRWTOTAL>10</ESCRWTOTAL></ESCRWAMT></LOANTRNAMT><FITID>L1</FITID></LOANSTMTTRN></LOANTRANLIST></LOANSTMTRS></LOANSTMTTRNRS></LOANMSGSRSV1></OFX>' "$sonrs" >"$scratch/loan.ofx"
expect 0 "" "$scratch/card.ofx" --format csv
grep -qx '01/05/2026 00:00:00,Point of Sale,-12.5,C1,Bakery,' "$scratch/out" || { echo "FAIL: card csv"; cat "$scratch/out"; failures=$((failures + 1)); }
expect 0 "" "$scratch/loan.ofx" --format json
grep -q '"account_type": "homeequity"' "$scratch/out" && grep -q '"principal": "60", "interest": "30", "escrow": "10"' "$scratch/out" ||
  { echo "FAIL: loan json"; cat "$scratch/out"; failures=$((failures + 1)); }
expect 1 "ReadOFXDataFile failed: 208 No such child." "$scratch/card.ofx" --loan
# An investment file: the statement wrapper alone, its trade and position
# named by the security list's ticker in the table.
printf '<?OFX OFXHEADER="200" VERSION="211"?><INVSTMTTRNRS><TRNUID>1</TRNUID><STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS><INVSTMTRS><DTASOF>20260131</DTASOF><CURDEF>USD</CURDEF><INVACCTFROM><BROKERID>b.com</BROKERID><ACCTID>X9</ACCTID></INVACCTFROM><INVTRANLIST><DTSTART>20260101</DTSTART><DTEND>20260131</DTEND><BUYSTOCK><INVBUY><INVTRAN><FITID>T1</FITID><DTTRADE>20260105</DTTRADE></INVTRAN><SECID><UNIQUEID>123</UNIQUEID><UNIQUEIDTYPE>CUSIP</UNIQUEIDTYPE></SECID><UNITS>10</UNITS><UNITPRICE>5</UNITPRICE><TOTAL>-50</TOTAL><SUBACCTSEC>CASH</SUBACCTSEC><SUBACCTFUND>CASH</SUBACCTFUND></INVBUY><BUYTYPE>BUY</BUYTYPE></BUYSTOCK></INVTRANLIST><INVPOSLIST><POSSTOCK><INVPOS><SECID><UNIQUEID>123</UNIQUEID><UNIQUEIDTYPE>CUSIP</UNIQUEIDTYPE></SECID><HELDINACCT>CASH</HELDINACCT><POSTYPE>LONG</POSTYPE><UNITS>10</UNITS><UNITPRICE>6</UNITPRICE><MKTVAL>60</MKTVAL><DTPRICEASOF>20260131</DTPRICEASOF></INVPOS></POSSTOCK></INVPOSLIST></INVSTMTRS></INVSTMTTRNRS>' >"$scratch/inv.ofx"
expect 0 "" "$scratch/inv.ofx" --format csv
grep -qx '01/05/2026 00:00:00,Buy stock,-50,T1,,,CUSIP:123,10,5,' "$scratch/out" &&
  grep -qx 'CUSIP:123,Stock,10,6,60,01/31/2026 00:00:00,CASH' "$scratch/out" ||
  { echo "FAIL: investment csv"; cat "$scratch/out"; failures=$((failures + 1)); }

expect 1 "ReadOFXDataFile failed: 302 Cannot open OFX data file for reading." "$scratch/none.ofx"
printf 'OFXHEADER:100\r\n\r\n<OFX><BANKMSGSRSV1><STMTTRNRS><STATUS><CODE>0<SEVERITY>INFO</STATUS></STMTTRNRS></BANKMSGSRSV1></OFX>' \
  >"$scratch/short.ofx"
expect 1 "ReadOFXDataFile failed: 2000 Expected element missing from server response." "$scratch/short.ofx"
export ORVELAN_PASSWORD=p
expect 1 "GetStatement failed: 2000 Missing required field: Bank Id is missing in the request." \
  --url http://127.0.0.1:9/ofx --org O --fid 1 --user u --account 1
expect 1 "GetStatement failed: 2000 Missing required field: OFX Application Id is missing in the request." \
  --url http://127.0.0.1:9/ofx --org O --fid 1 --user u --account 1 --bank-id 2 --app-id ""

expect 2 "give either a file or --url"
expect 2 "unknown format" "$source_dir/examples/statement.ofx" --format xml
expect 2 "--org is required with --url" --url http://127.0.0.1:9/ofx --fid 1 --user u --account 1

expect 2 "the password comes from ORVELAN_PASSWORD" --url http://127.0.0.1:9/ofx --password p
unset ORVELAN_PASSWORD
expect 2 "no password: set ORVELAN_PASSWORD" --url http://127.0.0.1:9/ofx --org O --fid 1 --user u --account 1 </dev/null

[ "$failures" -eq 0 ] && echo "orvelan-statement: all exit codes as expected"
exit "$failures"
