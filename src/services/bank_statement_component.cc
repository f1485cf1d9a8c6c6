#include "services/bank_statement_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = BankStatementService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::AccountId, &S::SetAccountId>(BANKSTATEMENT_PROP_ACCOUNTID, "AccountId", ""),
      P::Int<&S::AccountType, &S::SetAccountType>(BANKSTATEMENT_PROP_ACCOUNTTYPE, "AccountType", true, 0),
      P::Text<&S::AvailableBalance>(BANKSTATEMENT_PROP_AVAILABLEBALANCE, "AvailableBalance"),
      P::Text<&S::AvailableBalanceDate>(BANKSTATEMENT_PROP_AVAILABLEBALANCEDATE, "AvailableBalanceDate"),
      P::Text<&S::BankId, &S::SetBankId>(BANKSTATEMENT_PROP_BANKID, "BankId", ""),
      P::Int<&S::ClosingInfoCount>(BANKSTATEMENT_PROP_CLOSINGINFOCOUNT, "ClosingInfoCount"),
      P::IndexedText<&S::ClosingInfoAggregate, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOAGGREGATE,
                                                                      "ClosingInfoAggregate"),
      P::IndexedText<&S::ClosingInfoBalanceClose, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE,
                                                                         "ClosingInfoBalanceClose"),
      P::IndexedText<&S::ClosingInfoBalanceOpen, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN,
                                                                        "ClosingInfoBalanceOpen"),
      P::IndexedText<&S::ClosingInfoDateClose, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFODATECLOSE,
                                                                      "ClosingInfoDateClose"),
      P::IndexedText<&S::ClosingInfoDateEnd, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFODATEEND,
                                                                    "ClosingInfoDateEnd"),
      P::IndexedText<&S::ClosingInfoDateOpen, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFODATEOPEN,
                                                                     "ClosingInfoDateOpen"),
      P::IndexedText<&S::ClosingInfoDateStart, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFODATESTART,
                                                                      "ClosingInfoDateStart"),
      P::IndexedText<&S::ClosingInfoFITID, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOFITID,
                                                                  "ClosingInfoFITID"),
      P::IndexedText<&S::ClosingInfoImageRef, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREF,
                                                                     "ClosingInfoImageRef"),
      P::IndexedText<&S::ClosingInfoImageRefType, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE,
                                                                         "ClosingInfoImageRefType"),
      P::IndexedText<&S::ClosingInfoTotalCredits, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS,
                                                                         "ClosingInfoTotalCredits"),
      P::IndexedText<&S::ClosingInfoTotalDebits, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS,
                                                                        "ClosingInfoTotalDebits"),
      P::IndexedText<&S::ClosingInfoTotalFees, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOTOTALFEES,
                                                                      "ClosingInfoTotalFees"),
      P::IndexedText<&S::ClosingInfoTotalInterest, &S::CheckClosingIndex>(BANKSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST,
                                                                          "ClosingInfoTotalInterest"),
      P::Text<&S::CurrencyCode>(BANKSTATEMENT_PROP_CURRENCYCODE, "CurrencyCode"),
      P::Text<&S::EndDate, &S::SetEndDate>(BANKSTATEMENT_PROP_ENDDATE, "EndDate", ""),
      P::Text<&S::LedgerBalance>(BANKSTATEMENT_PROP_LEDGERBALANCE, "LedgerBalance"),
      P::Text<&S::LedgerBalanceDate>(BANKSTATEMENT_PROP_LEDGERBALANCEDATE, "LedgerBalanceDate"),
      P::Text<&S::StartDate, &S::SetStartDate>(BANKSTATEMENT_PROP_STARTDATE, "StartDate", ""),
      P::Int<&S::TxCount>(BANKSTATEMENT_PROP_TXCOUNT, "TxCount"),
      P::IndexedText<&S::TxAggregate, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXAGGREGATE, "TxAggregate"),
      P::IndexedText<&S::TxAmount, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXAMOUNT, "TxAmount"),
      P::IndexedText<&S::TxCheckNumber, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXCHECKNUMBER, "TxCheckNumber"),
      P::IndexedText<&S::TxDateInitiated, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXDATEINITIATED, "TxDateInitiated"),
      P::IndexedText<&S::TxDatePosted, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXDATEPOSTED, "TxDatePosted"),
      P::IndexedText<&S::TxFITID, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXFITID, "TxFITID"),
      P::IndexedText<&S::TxMemo, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXMEMO, "TxMemo"),
      P::IndexedText<&S::TxPayeeName, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXPAYEENAME, "TxPayeeName"),
      P::IndexedInt<&S::TxType, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXTYPE, "TxType"),
      P::IndexedText<&S::TxTypeDescription, &S::CheckTxIndex>(BANKSTATEMENT_PROP_TXTYPEDESCRIPTION,
                                                              "TxTypeDescription"),
  };
  CommonPropertyIds ids;
  ids.fi_id = BANKSTATEMENT_PROP_FIID;
  ids.fi_organization = BANKSTATEMENT_PROP_FIORGANIZATION;
  ids.firewall_auto_detect = BANKSTATEMENT_PROP_FIREWALLAUTODETECT;
  ids.firewall_type = BANKSTATEMENT_PROP_FIREWALLTYPE;
  ids.firewall_host = BANKSTATEMENT_PROP_FIREWALLHOST;
  ids.firewall_password = BANKSTATEMENT_PROP_FIREWALLPASSWORD;
  ids.firewall_port = BANKSTATEMENT_PROP_FIREWALLPORT;
  ids.firewall_user = BANKSTATEMENT_PROP_FIREWALLUSER;
  ids.fi_url = BANKSTATEMENT_PROP_FIURL;
  ids.image_file = BANKSTATEMENT_PROP_IMAGEFILE;
  ids.include_images = BANKSTATEMENT_PROP_INCLUDEIMAGES;
  ids.ofx_access_key = BANKSTATEMENT_PROP_OFXACCESSKEY;
  ids.ofx_app_id = BANKSTATEMENT_PROP_OFXAPPID;
  ids.ofx_app_version = BANKSTATEMENT_PROP_OFXAPPVERSION;
  ids.ofx_password = BANKSTATEMENT_PROP_OFXPASSWORD;
  ids.ofx_request = BANKSTATEMENT_PROP_OFXREQUEST;
  ids.ofx_response = BANKSTATEMENT_PROP_OFXRESPONSE;
  ids.ofx_user = BANKSTATEMENT_PROP_OFXUSER;
  ids.ofx_version = BANKSTATEMENT_PROP_OFXVERSION;
  ids.ssl_accept_server_cert_encoded = BANKSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED;
  ids.ssl_cert_encoded = BANKSTATEMENT_PROP_SSLCERTENCODED;
  ids.ssl_cert_store = BANKSTATEMENT_PROP_SSLCERTSTORE;
  ids.ssl_cert_store_password = BANKSTATEMENT_PROP_SSLCERTSTOREPASSWORD;
  ids.ssl_cert_store_type = BANKSTATEMENT_PROP_SSLCERTSTORETYPE;
  ids.ssl_cert_subject = BANKSTATEMENT_PROP_SSLCERTSUBJECT;
  ids.ssl_server_cert_encoded = BANKSTATEMENT_PROP_SSLSERVERCERTENCODED;
  ids.timeout = BANKSTATEMENT_PROP_TIMEOUT;
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
      MethodDef<S>{BANKSTATEMENT_METHOD_CONFIG, "Config", RunConfigMethod<S>},
      MethodDef<S>{BANKSTATEMENT_METHOD_GETCLOSINGINFO, "GetClosingInfo", RunGetClosingInfo},
      MethodDef<S>{BANKSTATEMENT_METHOD_GETIMAGE, "GetImage", RunGetImage},
      MethodDef<S>{BANKSTATEMENT_METHOD_GETSTATEMENT, "GetStatement", RunGetStatement},
      MethodDef<S>{BANKSTATEMENT_METHOD_READOFXDATAFILE, "ReadOFXDataFile", RunReadOFXDataFile},
      MethodDef<S>{BANKSTATEMENT_METHOD_RESET, "Reset", RunReset},
      MethodDef<S>{BANKSTATEMENT_METHOD_WRITEOFXDATAFILE, "WriteOFXDataFile", RunWriteOFXDataFile},
  };
}

}  // namespace

const ComponentTables<BankStatementService>& BankStatementTables() {
  static const ComponentTables<BankStatementService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
