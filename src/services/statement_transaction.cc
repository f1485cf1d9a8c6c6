#include "services/statement_transaction.h"

#include <new>

#include "base/error_codes.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

// Where each field comes from, relative to the record's element.
constexpr const char* kPaths[StatementTransaction::kFieldCount] = {
    "TRNAMT",
    "CHECKNUM",
    "DTUSER",
    "DTPOSTED",
    "FITID",
    "MEMO",
    "IMAGEDATA/IMAGEREF",
    "IMAGEDATA/IMAGEREFTYPE",
    "NAME",
    "TRNTYPE",
    "LOANTRNAMT/PRINAMT",
    "LOANTRNAMT/INTAMT",
    "LOANTRNAMT/ESCRWAMT/ESCRWTOTAL"};

// ReadField's failure for `name` below the cursor, which it leaves in place.
int Missing(OFXClient& client, const char* name) {
  ByteString unused;
  return client.ReadField(client.Document(), name, unused, true);
}

}  // namespace

const char* const StatementTransaction::kTypeCodes[kTypeCount] = {
    "CREDIT", "DEBIT",   "INT",  "DIV",       "FEE",         "SRVCHG",    "DEP",  "ATM",     "POS",    "XFER",
    "CHECK",  "PAYMENT", "CASH", "DIRECTDEP", "DIRECTDEBIT", "REPEATPMT", "LATE", "ADVANCE", "BALLOON"};

const char* const StatementTransaction::kTypeDescriptions[kTypeCount] = {
    "Credit",
    "Debit",
    "Interest",
    "Dividend",
    "FI Fee",
    "Service Charge",
    "Deposit",
    "ATM",
    "Point of Sale",
    "Transfer",
    "Check",
    "Payment",
    "Cash Withdrawal",
    "Direct Deposit",
    "Direct Debit",
    "Repeat Payment",
    "Late Fee",
    "Cash Advance (adds to Principal Balance)",
    "Payment of Balloon Amount"};

const char* StatementTransaction::TypeDescription(int32_t type_index) {
  if (type_index < 0 || type_index >= kTypeCount) return "Other";
  return kTypeDescriptions[type_index];
}

int32_t StatementTransaction::TypeIndexOf(const char* code) {
  if (code == nullptr || CompareNoCase(code, "OTHER") == 0) return kTypeOther;
  for (int32_t i = 0; i < kTypeCount; ++i) {
    if (CompareNoCase(code, kTypeCodes[i]) == 0) return i;
  }
  return kTypeOther;
}

StatementTransaction* StatementTransaction::Clone() const {
  auto* copy = new (std::nothrow) StatementTransaction();
  if (copy == nullptr) return nullptr;
  *copy = *this;
  copy->parsed = false;
  return copy;
}

const char* StatementTransaction::Text(MarkupDocument& document, Field field) const {
  if (field < 0 || field >= filled) return "";
  const RecordSource source(document, element);
  if (field == kPayeeName) {
    const char* name = source.Text("NAME");
    return *name != '\0' ? name : source.Text("PAYEE/NAME");
  }
  if (field == kTypeCode) return source.Has("TRNTYPE") ? source.Text("TRNTYPE") : source.Text("LOANTRNTYPE");
  return source.Text(kPaths[field]);
}

int StatementTransaction::Parse(OFXClient& client) {
  MarkupDocument& document = client.Document();
  parsed = true;
  element = document.Tree().Cursor();
  const RecordSource source(document, element);
  type_index = kTypeOther;
  filled = 0;
  for (int8_t field = kAmount; field <= kPayeeName; ++field) {
    const bool required = field == kAmount || field == kDatePosted || field == kFITID;
    if (required && !source.Has(kPaths[field])) return Missing(client, kPaths[field]);
    filled = static_cast<int8_t>(field + 1);
  }
  filled = kTypeCode + 1;
  type_index = static_cast<uint8_t>(TypeIndexOf(Text(document, kTypeCode)));
  if (source.Has("LOANTRNAMT")) {
    if (!source.Has(kPaths[kPrincipalAmount])) return Missing(client, kPaths[kPrincipalAmount]);
    filled = kPrincipalAmount + 1;
    if (!source.Has(kPaths[kInterestAmount])) {
      // Named as the parse names it: from inside LOANTRNAMT.
      if (int rc = document.SelectPath("LOANTRNAMT"); rc != kOk) return client.ReportError(rc, document.GetLastError());
      return Missing(client, "INTAMT");
    }
  }
  filled = kFieldCount;
  return kOk;
}

}  // namespace orvelan
