#include "services/loan_statement_component.h"

#include "services/statement_properties.h"

namespace orvelan {
namespace {

using S = LoanStatementService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::AccountId, &S::SetAccountId>(LOANSTATEMENT_PROP_ACCOUNTID, "AccountId", ""),
      P::Int<&S::AccountType, &S::SetAccountType>(LOANSTATEMENT_PROP_ACCOUNTTYPE, "AccountType", true, 0),
      P::Text<&S::PrincipalBalance>(LOANSTATEMENT_PROP_PRINCIPALBALANCE, "PrincipalBalance"),
      P::Text<&S::PrincipalBalanceDate>(LOANSTATEMENT_PROP_PRINCIPALBALANCEDATE, "PrincipalBalanceDate"),
      P::Text<&S::TotalPrincipalLTD>(LOANSTATEMENT_PROP_TOTALPRINCIPALLTD, "TotalPrincipalLTD"),
      P::Text<&S::TotalPrincipalYTD>(LOANSTATEMENT_PROP_TOTALPRINCIPALYTD, "TotalPrincipalYTD"),
  };
  AppendNamedRows(table, StatementRows<S>(),
                  {
                      {LOANSTATEMENT_PROP_AVAILABLEBALANCE, "AvailableBalance"},
                      {LOANSTATEMENT_PROP_AVAILABLEBALANCEDATE, "AvailableBalanceDate"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOCOUNT, "ClosingInfoCount"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOAGGREGATE, "ClosingInfoAggregate"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, "ClosingInfoBalanceOpen"},
                      {LOANSTATEMENT_PROP_CLOSINGINFODATECLOSE, "ClosingInfoDateClose"},
                      {LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, "ClosingInfoDateDue"},
                      {LOANSTATEMENT_PROP_CLOSINGINFODATEEND, "ClosingInfoDateEnd"},
                      {LOANSTATEMENT_PROP_CLOSINGINFODATEOPEN, "ClosingInfoDateOpen"},
                      {LOANSTATEMENT_PROP_CLOSINGINFODATESTART, "ClosingInfoDateStart"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOFITID, "ClosingInfoFITID"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOIMAGEREF, "ClosingInfoImageRef"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE, "ClosingInfoImageRefType"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, "ClosingInfoPaymentDue"},
                      {LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, "ClosingInfoTotalInterest"},
                      {LOANSTATEMENT_PROP_CURRENCYCODE, "CurrencyCode"},
                      {LOANSTATEMENT_PROP_ENDDATE, "EndDate"},
                      {LOANSTATEMENT_PROP_FIID, "FIId"},
                      {LOANSTATEMENT_PROP_FIORGANIZATION, "FIOrganization"},
                      {LOANSTATEMENT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {LOANSTATEMENT_PROP_FIREWALLTYPE, "FirewallType"},
                      {LOANSTATEMENT_PROP_FIREWALLHOST, "FirewallHost"},
                      {LOANSTATEMENT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {LOANSTATEMENT_PROP_FIREWALLPORT, "FirewallPort"},
                      {LOANSTATEMENT_PROP_FIREWALLUSER, "FirewallUser"},
                      {LOANSTATEMENT_PROP_FIURL, "FIUrl"},
                      {LOANSTATEMENT_PROP_IMAGEFILE, "ImageFile"},
                      {LOANSTATEMENT_PROP_INCLUDEIMAGES, "IncludeImages"},
                      {LOANSTATEMENT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {LOANSTATEMENT_PROP_OFXAPPID, "OFXAppId"},
                      {LOANSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {LOANSTATEMENT_PROP_OFXPASSWORD, "OFXPassword"},
                      {LOANSTATEMENT_PROP_OFXREQUEST, "OFXRequest"},
                      {LOANSTATEMENT_PROP_OFXRESPONSE, "OFXResponse"},
                      {LOANSTATEMENT_PROP_OFXUSER, "OFXUser"},
                      {LOANSTATEMENT_PROP_OFXVERSION, "OFXVersion"},
                      {LOANSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {LOANSTATEMENT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {LOANSTATEMENT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {LOANSTATEMENT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {LOANSTATEMENT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {LOANSTATEMENT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {LOANSTATEMENT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {LOANSTATEMENT_PROP_STARTDATE, "StartDate"},
                      {LOANSTATEMENT_PROP_TIMEOUT, "Timeout"},
                      {LOANSTATEMENT_PROP_TXCOUNT, "TxCount"},
                      {LOANSTATEMENT_PROP_TXAGGREGATE, "TxAggregate"},
                      {LOANSTATEMENT_PROP_TXAMOUNT, "TxAmount"},
                      {LOANSTATEMENT_PROP_TXCHECKNUMBER, "TxCheckNumber"},
                      {LOANSTATEMENT_PROP_TXDATEPOSTED, "TxDatePosted"},
                      {LOANSTATEMENT_PROP_TXESCROWTOTAL, "TxEscrowTotal"},
                      {LOANSTATEMENT_PROP_TXFITID, "TxFITID"},
                      {LOANSTATEMENT_PROP_TXIMAGEREF, "TxImageRef"},
                      {LOANSTATEMENT_PROP_TXIMAGEREFTYPE, "TxImageRefType"},
                      {LOANSTATEMENT_PROP_TXINTERESTAMOUNT, "TxInterestAmount"},
                      {LOANSTATEMENT_PROP_TXMEMO, "TxMemo"},
                      {LOANSTATEMENT_PROP_TXPAYEENAME, "TxPayeeName"},
                      {LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, "TxPrincipalAmount"},
                      {LOANSTATEMENT_PROP_TXTYPE, "TxType"},
                      {LOANSTATEMENT_PROP_TXTYPEDESCRIPTION, "TxTypeDescription"},
                  });
  return table;
}

}  // namespace

const ComponentTables<LoanStatementService>& LoanStatementTables() {
  static const ComponentTables<LoanStatementService> tables(
      Properties(), StatementMethods<S>({LOANSTATEMENT_METHOD_CONFIG, LOANSTATEMENT_METHOD_GETCLOSINGINFO,
                                         LOANSTATEMENT_METHOD_GETIMAGE, LOANSTATEMENT_METHOD_GETSTATEMENT,
                                         LOANSTATEMENT_METHOD_READOFXDATAFILE, LOANSTATEMENT_METHOD_RESET,
                                         LOANSTATEMENT_METHOD_WRITEOFXDATAFILE}));
  return tables;
}

}  // namespace orvelan
