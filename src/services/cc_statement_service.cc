#include "services/cc_statement_service.h"

#include "base/error_codes.h"

namespace orvelan {
namespace {

constexpr const char* kAccountTags[] = {"ACCTID"};
constexpr StatementLayout kLayout = {
    MessageSetTable::kCreditCardStatement, "CCACCTFROM", kAccountTags, 1, /*second_version=*/false,
    /*transaction_images=*/false, /*forced_version=*/nullptr, "BANKTRANLIST", "STMTTRN", "CCCLOSING", "0"};

constexpr char kTextCardNumberMissing[] = "Missing required field: CC Account Number is missing in the request.";
constexpr char kTextNoImages[] = "Transaction Images are not available for Credit Card statements.";

}  // namespace

CCStatementService::CCStatementService() : StatementServiceBase(kLayout) {}

void CCStatementService::RestoreDefaults() {
  card_number_.Clear();
  StatementServiceBase::RestoreDefaults();
}

int CCStatementService::CheckRequiredInputs() {
  if (card_number_.IsEmpty()) return ReportError(kErrMissingField, kTextCardNumberMissing);
  if (IncludeImages() && StatementType() == 0) return ReportError(kErrInvalidValue, kTextNoImages);
  return kOk;
}

int CCStatementService::ReadAccount(MarkupDocument& doc, bool closing) {
  if (closing) return kOk;
  if (int rc = ReadResponseValue(card_number_, doc, "CCACCTFROM/ACCTID", true); rc != kOk) return rc;
  return Select(doc, "../..");
}

}  // namespace orvelan
