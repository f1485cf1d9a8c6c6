#!/bin/sh
# The shared library must export the documented C entry points and nothing
# else: no C++ symbol, no helper, no template instantiation.
set -eu
lib="$1"
nm_tool="${NM:-nm}"
status=0

soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
if [ "$soname" != "liborvelan.so.3" ]; then
  echo "SONAME is '$soname', expected liborvelan.so.3"
  status=1
fi

components='Account|BankStatement|BankTransfer|BillPayment|CCStatement|FIProfile|InvStatement|LoanStatement|OFXAggregate|OFXBatch'
operations='StaticInit|StaticDestroy|Create|Destroy|CheckIndex|Get|Set|GetLastError|GetLastErrorCode|Do'
unexpected=$("$nm_tool" -D --defined-only "$lib" | awk '{print $NF}' \
  | grep -v -E "^(($components)_($operations)|atof)\$" || true)
if [ -n "$unexpected" ]; then
  echo "undocumented exported symbols:"
  echo "$unexpected" | head -20
  status=1
fi

for component in Account BankStatement BankTransfer BillPayment CCStatement FIProfile InvStatement LoanStatement OFXBatch; do
  for op in StaticInit StaticDestroy Create Destroy CheckIndex Get Set GetLastError GetLastErrorCode Do; do
    "$nm_tool" -D --defined-only "$lib" | awk '{print $NF}' | grep -q -x "${component}_$op" \
      || { echo "missing export ${component}_$op"; status=1; }
  done
done
"$nm_tool" -D --defined-only "$lib" | awk '{print $NF}' | grep -q -x atof || { echo "missing export atof"; status=1; }

[ "$status" -eq 0 ] && echo "exports ok: $("$nm_tool" -D --defined-only "$lib" | wc -l) symbols, SONAME $soname"
exit "$status"
