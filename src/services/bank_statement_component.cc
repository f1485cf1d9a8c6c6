#include "services/bank_statement_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = BankStatementService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::AccountId, &S::SetAccountId>(1, "AccountId", ""),
      P::Int<&S::AccountType, &S::SetAccountType>(2, "AccountType", true, 0),
      P::Text<&S::AvailableBalance>(3, "AvailableBalance"),
      P::Text<&S::AvailableBalanceDate>(4, "AvailableBalanceDate"),
      P::Text<&S::BankId, &S::SetBankId>(5, "BankId", ""),
      P::Int<&S::ClosingInfoCount>(6, "ClosingInfoCount"),
      P::IndexedText<&S::ClosingInfoAggregate, &S::CheckClosingIndex>(7, "ClosingInfoAggregate"),
      P::IndexedText<&S::ClosingInfoBalanceClose, &S::CheckClosingIndex>(8, "ClosingInfoBalanceClose"),
      P::IndexedText<&S::ClosingInfoBalanceOpen, &S::CheckClosingIndex>(9, "ClosingInfoBalanceOpen"),
      P::IndexedText<&S::ClosingInfoDateClose, &S::CheckClosingIndex>(10, "ClosingInfoDateClose"),
      P::IndexedText<&S::ClosingInfoDateEnd, &S::CheckClosingIndex>(11, "ClosingInfoDateEnd"),
      P::IndexedText<&S::ClosingInfoDateOpen, &S::CheckClosingIndex>(12, "ClosingInfoDateOpen"),
      P::IndexedText<&S::ClosingInfoDateStart, &S::CheckClosingIndex>(13, "ClosingInfoDateStart"),
      P::IndexedText<&S::ClosingInfoFITID, &S::CheckClosingIndex>(14, "ClosingInfoFITID"),
      P::IndexedText<&S::ClosingInfoImageRef, &S::CheckClosingIndex>(15, "ClosingInfoImageRef"),
      P::IndexedText<&S::ClosingInfoImageRefType, &S::CheckClosingIndex>(16, "ClosingInfoImageRefType"),
      P::IndexedText<&S::ClosingInfoTotalCredits, &S::CheckClosingIndex>(17, "ClosingInfoTotalCredits"),
      P::IndexedText<&S::ClosingInfoTotalDebits, &S::CheckClosingIndex>(18, "ClosingInfoTotalDebits"),
      P::IndexedText<&S::ClosingInfoTotalFees, &S::CheckClosingIndex>(19, "ClosingInfoTotalFees"),
      P::IndexedText<&S::ClosingInfoTotalInterest, &S::CheckClosingIndex>(20, "ClosingInfoTotalInterest"),
      P::Text<&S::CurrencyCode>(21, "CurrencyCode"),
      P::Text<&S::EndDate, &S::SetEndDate>(22, "EndDate", ""),
      P::Text<&S::LedgerBalance>(34, "LedgerBalance"),
      P::Text<&S::LedgerBalanceDate>(35, "LedgerBalanceDate"),
      P::Text<&S::StartDate, &S::SetStartDate>(51, "StartDate", ""),
      P::Int<&S::TxCount>(53, "TxCount"),
      P::IndexedText<&S::TxAggregate, &S::CheckTxIndex>(54, "TxAggregate"),
      P::IndexedText<&S::TxAmount, &S::CheckTxIndex>(55, "TxAmount"),
      P::IndexedText<&S::TxCheckNumber, &S::CheckTxIndex>(56, "TxCheckNumber"),
      P::IndexedText<&S::TxDateInitiated, &S::CheckTxIndex>(57, "TxDateInitiated"),
      P::IndexedText<&S::TxDatePosted, &S::CheckTxIndex>(58, "TxDatePosted"),
      P::IndexedText<&S::TxFITID, &S::CheckTxIndex>(59, "TxFITID"),
      P::IndexedText<&S::TxMemo, &S::CheckTxIndex>(60, "TxMemo"),
      P::IndexedText<&S::TxPayeeName, &S::CheckTxIndex>(61, "TxPayeeName"),
      P::IndexedInt<&S::TxType, &S::CheckTxIndex>(62, "TxType"),
      P::IndexedText<&S::TxTypeDescription, &S::CheckTxIndex>(63, "TxTypeDescription"),
  };
  CommonPropertyIds ids;
  ids.fi_id = 23;
  ids.fi_organization = 24;
  ids.firewall_auto_detect = 25;
  ids.firewall_type = 26;
  ids.firewall_host = 27;
  ids.firewall_password = 28;
  ids.firewall_port = 29;
  ids.firewall_user = 30;
  ids.fi_url = 31;
  ids.image_file = 32;
  ids.include_images = 33;
  ids.ofx_access_key = 36;
  ids.ofx_app_id = 37;
  ids.ofx_app_version = 38;
  ids.ofx_password = 39;
  ids.ofx_request = 40;
  ids.ofx_response = 41;
  ids.ofx_user = 42;
  ids.ofx_version = 43;
  ids.ssl_accept_server_cert_encoded = 44;
  ids.ssl_cert_encoded = 45;
  ids.ssl_cert_store = 46;
  ids.ssl_cert_store_password = 47;
  ids.ssl_cert_store_type = 48;
  ids.ssl_cert_subject = 49;
  ids.ssl_server_cert_encoded = 50;
  ids.timeout = 52;
  AppendCommonProperties(table, ids);
  return table;
}

int RunReset(S& s, MethodCall<S>&) { return s.Reset(); }
int RunGetStatement(S& s, MethodCall<S>&) { return s.GetStatement(); }
int RunGetClosingInfo(S& s, MethodCall<S>&) { return s.GetClosingInfo(); }
int RunReadOFXDataFile(S& s, MethodCall<S>& call) { return s.ReadOFXDataFile(call.Text(0)); }
int RunWriteOFXDataFile(S& s, MethodCall<S>& call) { return s.WriteOFXDataFile(call.Text(0)); }

// params: reference, reference type; out: the image bytes in the third slot
// with their length.
int RunGetImage(S& s, MethodCall<S>& call) {
  const char* data = "";
  int32_t length = 0;
  const int rc = s.GetImage(call.Text(0), call.Text(1), data, length);
  call.SetBytes(2, data, length);
  return rc;
}

std::vector<MethodDef<S>> Methods() {
  return {
      MethodDef<S>{2, "Config", RunConfigMethod<S>},
      MethodDef<S>{3, "GetClosingInfo", RunGetClosingInfo},
      MethodDef<S>{4, "GetImage", RunGetImage},
      MethodDef<S>{5, "GetStatement", RunGetStatement},
      MethodDef<S>{6, "ReadOFXDataFile", RunReadOFXDataFile},
      MethodDef<S>{7, "Reset", RunReset},
      MethodDef<S>{8, "WriteOFXDataFile", RunWriteOFXDataFile},
  };
}

}  // namespace

const ComponentTables<BankStatementService>& BankStatementTables() {
  static const ComponentTables<BankStatementService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
