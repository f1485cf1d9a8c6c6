#pragma once
#include <cstdint>

#include "base/byte_string.h"

// The request kinds the services send, the message set each belongs to, and
// the two statement types. A message set's wrapper is its name followed by
// "MSGSRQV1":
//
//   MessageSetTable::AppendOpen(out, MessageSetTable::kStatement);   // "<BANKMSGSRQV1>\r\n"
//   ... the STMTTRNRQ ...
//   MessageSetTable::AppendClose(out, MessageSetTable::kStatement);  // "</BANKMSGSRQV1>\r\n"
namespace orvelan {

class MessageSetTable {
 public:
  enum Kind : int32_t {
    kAccountInfo = 0,
    kStatement = 1,
    kIntraTransfer = 2,
    kCreditCardStatement = 3,
    kLoanStatement = 4,
    kInvestmentStatement = 5,
    kInterTransfer = 6,
    kBillPay = 7,
    kProfile = 8,
  };
  static constexpr int32_t kCount = 9;
  static constexpr int32_t kStatementTypeCount = 2;

  // "ACCTINFO", "STMT", ...; "" outside the table.
  static const char* RequestKind(int32_t kind);
  // "SIGNUP", "BANK", ...; "" outside the table.
  static const char* MessageSet(int32_t kind);
  // 0 "TRANSACTIONS", 1 "CLOSING"; "" for anything else.
  static const char* StatementType(int32_t type);

  // Append "<SETMSGSRQV1>\r\n" or "</SETMSGSRQV1>\r\n"; 0, 200, or 202 for a
  // kind outside the table.
  static int AppendOpen(ByteString& out, int32_t kind);
  static int AppendClose(ByteString& out, int32_t kind);
};

}  // namespace orvelan
