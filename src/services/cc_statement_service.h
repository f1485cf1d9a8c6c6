#pragma once

#include "base/byte_string.h"
#include "services/statement_service_base.h"

// The statement of one credit card account: the card number on top of what
// every statement has (StatementServiceBase). No settings of its own.
namespace orvelan {

class CCStatementService : public StatementServiceBase {
 public:
  CCStatementService();

  // OFX ACCTID in CCACCTFROM; replaced by the one a statement response names.
  const char* CardNumber() const { return card_number_.Data(); }
  int SetCardNumber(const char* value) { return card_number_.Assign(value); }

 protected:
  void RestoreDefaults() override;
  void AccountValues(std::string_view* values) override { values[0] = card_number_.View(); }
  // 2000 for an empty CardNumber, then 202 when images are asked of a
  // transaction statement.
  int CheckRequiredInputs() override;
  int ReadAccount(MarkupDocument& doc, bool closing) override;

 private:
  ByteString card_number_;
};

}  // namespace orvelan
