#include "services/account_service.h"

#include "base/error_codes.h"

namespace orvelan {
namespace {

constexpr RequestForm kRequest = {
    MessageSetTable::kAccountInfo,
    "<ACCTINFOTRNRQ>\r\n<TRNUID>~0~\r\n<ACCTINFORQ>\r\n<DTACCTUP>~1~\r\n</ACCTINFORQ>\r\n</ACCTINFOTRNRQ>\r\n",
    "<ACCTINFOTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<ACCTINFORQ>\r\n<DTACCTUP>~1~</DTACCTUP>\r\n</ACCTINFORQ>\r\n"
    "</ACCTINFOTRNRQ>\r\n"};

constexpr char kTextInvalidAccIndex[] = "Invalid AccIndex (out of bounds).";

using A = AccountInfo;

// What each kind of account information holds, and where.
struct AccountKind {
  const char* info;          // the ...ACCTINFO child of ACCTINFO
  const char* service_type;  // AccServiceType
  const char* fixed_type;    // AccType when the account does not name one
  FieldReads info_fields;
  const char* from;  // the account aggregate inside `info`; null: none read
  FieldReads from_fields;
};

constexpr FieldRead kTransferInfo[] = {{A::kTransferDestination, "XFERDEST", true},
                                       {A::kTransferSource, "XFERSRC", true},
                                       {A::kSupportsTxDownload, "SUPTXDL", true},
                                       {A::kStatus, "SVCSTATUS", true}};
constexpr FieldRead kBankFrom[] = {{A::kType, "ACCTTYPE", true},
                                   {A::kBankId, "BANKID", true},
                                   {A::kBranchId, "BRANCHID", false},
                                   {A::kId, "ACCTID", true},
                                   {A::kKey, "ACCTKEY", false}};
constexpr FieldRead kCardFrom[] = {{A::kId, "ACCTID", true}, {A::kKey, "ACCTKEY", false}};
constexpr FieldRead kInvestmentInfo[] = {{A::kType, "INVACCTTYPE", false},
                                         {A::kChecking, "CHECKING", true},
                                         {A::kStatus, "SVCSTATUS", true},
                                         {A::kUSProductType, "USPRODUCTTYPE", true}};
constexpr FieldRead kInvestmentFrom[] = {{A::kId, "ACCTID", true}};
constexpr FieldRead kPaymentInfo[] = {{A::kStatus, "SVCSTATUS", true}};
constexpr FieldRead kCommon[] = {{A::kDescription, "DESC", false}, {A::kPhone, "PHONE", false}};

constexpr AccountKind kKinds[] = {
    {"BANKACCTINFO", "BANKING", nullptr, kTransferInfo, "BANKACCTFROM", kBankFrom},
    {"CCACCTINFO", "CREDITCARD", "CREDITCARD", kTransferInfo, "CCACCTFROM", kCardFrom},
    {"INVACCTINFO", "INVESTMENT", nullptr, kInvestmentInfo, "INVACCTFROM", kInvestmentFrom},
    {"BPACCTINFO", "PAYMENT", nullptr, kPaymentInfo, nullptr, kCommon},
};

}  // namespace

int AccountInfo::Parse(OFXClient& client) {
  MarkupDocument& doc = client.Document();
  if (int rc = text[kAggregate].Assign(doc.ElementSubtree()); rc != kOk) return client.ReportError(rc, nullptr);
  if (int rc = ReadFields(client, text, kCommon); rc != kOk) return rc;
  for (const AccountKind& kind : kKinds) {
    if (!doc.HasPath(kind.info)) continue;
    text[kServiceType].Assign(kind.service_type);
    if (kind.fixed_type != nullptr) text[kType].Assign(kind.fixed_type);
    if (int rc = SelectOrReport(client, kind.info); rc != kOk) return rc;
    if (int rc = ReadFields(client, text, kind.info_fields); rc != kOk) return rc;
    if (kind.from != nullptr) {
      if (int rc = SelectOrReport(client, kind.from); rc != kOk) return rc;
      if (int rc = ReadFields(client, text, kind.from_fields); rc != kOk) return rc;
      if (int rc = SelectOrReport(client, ".."); rc != kOk) return rc;
    }
    return SelectOrReport(client, "..");
  }
  return kOk;
}

int AccountService::InitDefaults() {
  if (OFXClient::InitDefaults() == 0) return 0;
  RestoreDefaults();
  return 1;
}

int AccountService::Reset() {
  RestoreDefaults();
  return OFXClient::Reset();
}

void AccountService::RestoreDefaults() {
  last_update_.Clear();
  ClearResponse();
}

int AccountService::ClearResponse() {
  accounts_.Clear();
  return OFXClient::ClearResponse();
}

int AccountService::CheckAccIndex(int32_t index) {
  if (index >= 0 && index < accounts_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidAccIndex);
}

int AccountService::BuildMessageSets(ByteString& out, bool wrapped) {
  ByteString trnuid;
  if (int rc = NewTransactionId(trnuid); rc != kOk) return rc;
  if (last_update_.IsEmpty() && last_update_.Assign(kDefaultLastUpdate) != kOk) {
    return ReportError(kErrOutOfMemory, nullptr);
  }
  const std::string_view arguments[] = {trnuid.View(), last_update_.View()};
  return ExpandRequest(*this, kRequest, request_, out, wrapped, arguments, 2);
}

int AccountService::ParseResponse() {
  MarkupDocument& doc = Document();
  doc.SelectPathIfPresent("SIGNUPMSGSRSV1");
  if (!doc.HasPath("ACCTINFOTRNRS") && std::string_view(doc.ElementName()) != "ACCTINFOTRNRS") {
    // An enrolment answer carries no list; only its status counts.
    return doc.HasPath("ENROLLTRNRS") ? CheckStatus("ENROLLTRNRS/") : kOk;
  }
  if (int rc = CheckWrapperStatus("ACCTINFOTRNRS"); rc != kOk) return rc;
  accounts_.Clear();
  if (!doc.HasPath("ACCTINFORS")) return kOk;
  if (int rc = SelectOrReport(*this, "ACCTINFORS"); rc != kOk) return rc;
  if (int rc = ReadResponseValue(last_update_, doc, "DTACCTUP", true); rc != kOk) return rc;
  if (int rc = SelectOrReport(*this, ".."); rc != kOk) return rc;
  return ReadRecords(*this, "ACCTINFO", accounts_, [this](AccountInfo& a) { return a.Parse(*this); });
}

}  // namespace orvelan
