#include "services/bank_statement_component.h"

#include "services/statement_properties.h"

namespace orvelan {
namespace {

using S = BankStatementService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::AccountId, &S::SetAccountId>(BANKSTATEMENT_PROP_ACCOUNTID, "AccountId", ""),
      P::Int<&S::AccountType, &S::SetAccountType>(BANKSTATEMENT_PROP_ACCOUNTTYPE, "AccountType", true, 0),
      P::Text<&S::BankId, &S::SetBankId>(BANKSTATEMENT_PROP_BANKID, "BankId", ""),
  };
  AppendNamedRows(table, StatementRows<S>(),
                  {
                      {BANKSTATEMENT_PROP_AVAILABLEBALANCE, "AvailableBalance"},
                      {BANKSTATEMENT_PROP_AVAILABLEBALANCEDATE, "AvailableBalanceDate"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOCOUNT, "ClosingInfoCount"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOAGGREGATE, "ClosingInfoAggregate"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE, "ClosingInfoBalanceClose"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, "ClosingInfoBalanceOpen"},
                      {BANKSTATEMENT_PROP_CLOSINGINFODATECLOSE, "ClosingInfoDateClose"},
                      {BANKSTATEMENT_PROP_CLOSINGINFODATEEND, "ClosingInfoDateEnd"},
                      {BANKSTATEMENT_PROP_CLOSINGINFODATEOPEN, "ClosingInfoDateOpen"},
                      {BANKSTATEMENT_PROP_CLOSINGINFODATESTART, "ClosingInfoDateStart"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOFITID, "ClosingInfoFITID"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREF, "ClosingInfoImageRef"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE, "ClosingInfoImageRefType"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS, "ClosingInfoTotalCredits"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS, "ClosingInfoTotalDebits"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOTOTALFEES, "ClosingInfoTotalFees"},
                      {BANKSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, "ClosingInfoTotalInterest"},
                      {BANKSTATEMENT_PROP_CURRENCYCODE, "CurrencyCode"},
                      {BANKSTATEMENT_PROP_ENDDATE, "EndDate"},
                      {BANKSTATEMENT_PROP_FIID, "FIId"},
                      {BANKSTATEMENT_PROP_FIORGANIZATION, "FIOrganization"},
                      {BANKSTATEMENT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {BANKSTATEMENT_PROP_FIREWALLTYPE, "FirewallType"},
                      {BANKSTATEMENT_PROP_FIREWALLHOST, "FirewallHost"},
                      {BANKSTATEMENT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {BANKSTATEMENT_PROP_FIREWALLPORT, "FirewallPort"},
                      {BANKSTATEMENT_PROP_FIREWALLUSER, "FirewallUser"},
                      {BANKSTATEMENT_PROP_FIURL, "FIUrl"},
                      {BANKSTATEMENT_PROP_IMAGEFILE, "ImageFile"},
                      {BANKSTATEMENT_PROP_INCLUDEIMAGES, "IncludeImages"},
                      {BANKSTATEMENT_PROP_LEDGERBALANCE, "LedgerBalance"},
                      {BANKSTATEMENT_PROP_LEDGERBALANCEDATE, "LedgerBalanceDate"},
                      {BANKSTATEMENT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {BANKSTATEMENT_PROP_OFXAPPID, "OFXAppId"},
                      {BANKSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {BANKSTATEMENT_PROP_OFXPASSWORD, "OFXPassword"},
                      {BANKSTATEMENT_PROP_OFXREQUEST, "OFXRequest"},
                      {BANKSTATEMENT_PROP_OFXRESPONSE, "OFXResponse"},
                      {BANKSTATEMENT_PROP_OFXUSER, "OFXUser"},
                      {BANKSTATEMENT_PROP_OFXVERSION, "OFXVersion"},
                      {BANKSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {BANKSTATEMENT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {BANKSTATEMENT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {BANKSTATEMENT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {BANKSTATEMENT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {BANKSTATEMENT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {BANKSTATEMENT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {BANKSTATEMENT_PROP_STARTDATE, "StartDate"},
                      {BANKSTATEMENT_PROP_TIMEOUT, "Timeout"},
                      {BANKSTATEMENT_PROP_TXCOUNT, "TxCount"},
                      {BANKSTATEMENT_PROP_TXAGGREGATE, "TxAggregate"},
                      {BANKSTATEMENT_PROP_TXAMOUNT, "TxAmount"},
                      {BANKSTATEMENT_PROP_TXCHECKNUMBER, "TxCheckNumber"},
                      {BANKSTATEMENT_PROP_TXDATEINITIATED, "TxDateInitiated"},
                      {BANKSTATEMENT_PROP_TXDATEPOSTED, "TxDatePosted"},
                      {BANKSTATEMENT_PROP_TXFITID, "TxFITID"},
                      {BANKSTATEMENT_PROP_TXMEMO, "TxMemo"},
                      {BANKSTATEMENT_PROP_TXPAYEENAME, "TxPayeeName"},
                      {BANKSTATEMENT_PROP_TXTYPE, "TxType"},
                      {BANKSTATEMENT_PROP_TXTYPEDESCRIPTION, "TxTypeDescription"},
                  });
  return table;
}

}  // namespace

const ComponentTables<BankStatementService>& BankStatementTables() {
  static const ComponentTables<BankStatementService> tables(
      Properties(), StatementMethods<S>({BANKSTATEMENT_METHOD_CONFIG, BANKSTATEMENT_METHOD_GETCLOSINGINFO,
                                         BANKSTATEMENT_METHOD_GETIMAGE, BANKSTATEMENT_METHOD_GETSTATEMENT,
                                         BANKSTATEMENT_METHOD_READOFXDATAFILE, BANKSTATEMENT_METHOD_RESET,
                                         BANKSTATEMENT_METHOD_WRITEOFXDATAFILE}));
  return tables;
}

}  // namespace orvelan
