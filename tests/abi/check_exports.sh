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
# The single-instance facade, name for name, and its six objects.
facade='Initialize FiProfile_GetProfile Account_GetInfo BankStatement_GetStatement CCStatement_GetStatement
InvStatement_GetStatement BillPayment_PayBill BillPayment_ModifyBill BillPayment_SyncPayments BillPayment_CancelPayment
BillPayment_SyncPayees BillPayment_AddPayee BillPayment_DeletePayee BillPayment_ModifyPayee
BankStatement_ReadOFXDataFile CCStatement_ReadOFXDataFile InvStatement_ReadOFXDataFile
FiProfile_Config Account_Config BankStatement_Config CCStatement_Config InvStatement_Config BillPayment_Config
FiProfile_GetLastError2 Account_GetLastError2 BankStatement_GetLastError2 CCStatement_GetLastError2
InvStatement_GetLastError2 BillPayment_GetLastError2
FiProfile_MessageSetCount FiProfile_MessageSetName FiProfile_MessageSetAggregate FiProfile_MessageSetUrl
FiProfile_SignonPinChangeFirst FiProfile_SignonClientUIdReq Account_GetAccCount Account_GetAccBankId Account_GetAccId
Account_GetAccDescription Account_GetAccType Account_GetAccServiceType Account_AccAggregate BankStatement_AccountId
BankStatement_TxCount BankStatement_LedgerBalance BankStatement_TxCheckNumber BankStatement_TxTypeDescription
BankStatement_TxDatePosted BankStatement_TxPayeeName BankStatement_TxAmount BankStatement_TxMemo BankStatement_TxFITID
CCStatement_CardNumber CCStatement_TxCount CCStatement_LedgerBalance CCStatement_TxTypeDescription
CCStatement_TxDatePosted CCStatement_TxPayeeName CCStatement_TxAmount CCStatement_TxMemo CCStatement_TxFITID
InvStatement_AccountId InvStatement_TxCount InvStatement_AvailableCash InvStatement_TxType InvStatement_TxDate
InvStatement_TxTotal InvStatement_TxUnits InvStatement_TxUnitPrice InvStatement_TxMemo InvStatement_TxSecurityId
InvStatement_SecSecurityId InvStatement_SecTicker InvStatement_SecCount InvStatement_TxFITID
InvStatement_TxSubAccountFund InvStatement_TxSubAccountSec InvStatement_TxAggregate InvStatement_TxName
BillPayment_GetSyncPaymentCount BillPayment_GetSyncPaymentPayeeListId BillPayment_GetSyncPaymentAmount
BillPayment_GetSyncPaymentDateDue BillPayment_GetSyncPaymentStatus BillPayment_GetSyncPaymentId
BillPayment_GetSyncPaymentMemo BillPayment_GetSyncPaymentPayeeAccount BillPayment_GetSyncPayeeCount
BillPayment_GetSyncPayeeListId BillPayment_GetSyncPayeeName BillPayment_GetSyncPayeeAddress1
BillPayment_GetSyncPayeeAddress2 BillPayment_GetSyncPayeeAddress3 BillPayment_GetSyncPayeeCity
BillPayment_GetSyncPayeeState BillPayment_GetSyncPayeePostalCode BillPayment_GetSyncPayeeCountry
BillPayment_GetSyncPayeePhone BillPayment_GetSyncPayeeAccountNum BillPayment_GetPayeeListId
fiProfile1 account1 bankStatement1 ccStatement1 invStatement1 billPayment1'
# The wrapper classes: their members, virtual tables and type information.
classes="($components|MyFiProfile|MyAccount|MyBankStatement|MyCCStatement|MyInvStatement|MyBillPayment)"
exported=$("$nm_tool" -D --defined-only "$lib" | awk '{print $NF}' | c++filt)
unexpected=$(echo "$exported" \
  | grep -v -E "^(($components)_($operations)|atof|$(echo $facade | tr ' ' '|'))\$" \
  | grep -v -E "^$classes::|^(vtable|typeinfo|typeinfo name) for $classes\$" || true)
if [ -n "$unexpected" ]; then
  echo "undocumented exported symbols:"
  echo "$unexpected" | head -20
  status=1
fi
for name in $facade; do
  echo "$exported" | grep -q -x "$name" || { echo "missing export $name"; status=1; }
done

for component in Account BankStatement BankTransfer BillPayment CCStatement FIProfile InvStatement LoanStatement OFXBatch; do
  for op in StaticInit StaticDestroy Create Destroy CheckIndex Get Set GetLastError GetLastErrorCode Do; do
    echo "$exported" | grep -q -x "${component}_$op" \
      || { echo "missing export ${component}_$op"; status=1; }
  done
done
echo "$exported" | grep -q -x atof || { echo "missing export atof"; status=1; }

[ "$status" -eq 0 ] && echo "exports ok: $("$nm_tool" -D --defined-only "$lib" | wc -l) symbols, SONAME $soname"
exit "$status"
