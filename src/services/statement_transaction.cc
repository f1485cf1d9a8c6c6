#include "services/statement_transaction.h"

#include <new>

namespace orvelan {

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

StatementTransaction* StatementTransaction::Clone() const {
  auto* copy = new (std::nothrow) StatementTransaction();
  if (copy == nullptr) return nullptr;
  *copy = *this;
  return copy;
}

}  // namespace orvelan
