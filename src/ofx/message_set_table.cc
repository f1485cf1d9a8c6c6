#include "ofx/message_set_table.h"

namespace orvelan {
namespace {

constexpr const char* kRequestKinds[MessageSetTable::kCount] = {"ACCTINFO", "STMT",  "INTRA",   "CCSTMT", "LOANSTMT",
                                                                "INVSTMT",  "INTER", "BILLPAY", "PROF"};
constexpr const char* kMessageSets[MessageSetTable::kCount] = {"SIGNUP",  "BANK", "BANK",    "CREDITCARD", "LOAN",
                                                               "INVSTMT", "BANK", "BILLPAY", "PROF"};
constexpr const char* kStatementTypes[MessageSetTable::kStatementTypeCount] = {"TRANSACTIONS", "CLOSING"};

bool InTable(int32_t kind) { return kind >= 0 && kind < MessageSetTable::kCount; }

int AppendWrapper(ByteString& out, int32_t kind, const char* open) {
  if (!InTable(kind)) return kErrInvalidValue;
  if (int rc = out.Append(open); rc != kOk) return rc;
  if (int rc = out.Append(kMessageSets[kind]); rc != kOk) return rc;
  return out.Append("MSGSRQV1>\r\n");
}

}  // namespace

const char* MessageSetTable::RequestKind(int32_t kind) { return InTable(kind) ? kRequestKinds[kind] : ""; }

const char* MessageSetTable::MessageSet(int32_t kind) { return InTable(kind) ? kMessageSets[kind] : ""; }

const char* MessageSetTable::StatementType(int32_t type) {
  return type >= 0 && type < kStatementTypeCount ? kStatementTypes[type] : "";
}

int MessageSetTable::AppendOpen(ByteString& out, int32_t kind) { return AppendWrapper(out, kind, "<"); }

int MessageSetTable::AppendClose(ByteString& out, int32_t kind) { return AppendWrapper(out, kind, "</"); }

}  // namespace orvelan
