#include "services/cc_statement_component.h"

#include "services/statement_properties.h"

namespace orvelan {
namespace {

using S = CCStatementService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::CardNumber, &S::SetCardNumber>(CCSTATEMENT_PROP_CARDNUMBER, "CardNumber", ""),
  };
  AppendNamedRows(table, StatementRows<S>(),
                  {
                      {CCSTATEMENT_PROP_AVAILABLEBALANCE, "AvailableBalance"},
                      {CCSTATEMENT_PROP_AVAILABLEBALANCEDATE, "AvailableBalanceDate"},
                      {CCSTATEMENT_PROP_CLOSINGINFOCOUNT, "ClosingInfoCount"},
                      {CCSTATEMENT_PROP_CLOSINGINFOAGGREGATE, "ClosingInfoAggregate"},
                      {CCSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE, "ClosingInfoBalanceClose"},
                      {CCSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, "ClosingInfoBalanceOpen"},
                      {CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, "ClosingInfoCreditLimit"},
                      {CCSTATEMENT_PROP_CLOSINGINFODATECLOSE, "ClosingInfoDateClose"},
                      {CCSTATEMENT_PROP_CLOSINGINFODATEDUE, "ClosingInfoDateDue"},
                      {CCSTATEMENT_PROP_CLOSINGINFODATEEND, "ClosingInfoDateEnd"},
                      {CCSTATEMENT_PROP_CLOSINGINFODATEOPEN, "ClosingInfoDateOpen"},
                      {CCSTATEMENT_PROP_CLOSINGINFODATESTART, "ClosingInfoDateStart"},
                      {CCSTATEMENT_PROP_CLOSINGINFOFITID, "ClosingInfoFITID"},
                      {CCSTATEMENT_PROP_CLOSINGINFOIMAGEREF, "ClosingInfoImageRef"},
                      {CCSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE, "ClosingInfoImageRefType"},
                      {CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, "ClosingInfoPaymentDue"},
                      {CCSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS, "ClosingInfoTotalCredits"},
                      {CCSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS, "ClosingInfoTotalDebits"},
                      {CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES, "ClosingInfoTotalFees"},
                      {CCSTATEMENT_PROP_CURRENCYCODE, "CurrencyCode"},
                      {CCSTATEMENT_PROP_ENDDATE, "EndDate"},
                      {CCSTATEMENT_PROP_FIID, "FIId"},
                      {CCSTATEMENT_PROP_FIORGANIZATION, "FIOrganization"},
                      {CCSTATEMENT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {CCSTATEMENT_PROP_FIREWALLTYPE, "FirewallType"},
                      {CCSTATEMENT_PROP_FIREWALLHOST, "FirewallHost"},
                      {CCSTATEMENT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {CCSTATEMENT_PROP_FIREWALLPORT, "FirewallPort"},
                      {CCSTATEMENT_PROP_FIREWALLUSER, "FirewallUser"},
                      {CCSTATEMENT_PROP_FIURL, "FIUrl"},
                      {CCSTATEMENT_PROP_IMAGEFILE, "ImageFile"},
                      {CCSTATEMENT_PROP_INCLUDEIMAGES, "IncludeImages"},
                      {CCSTATEMENT_PROP_LEDGERBALANCE, "LedgerBalance"},
                      {CCSTATEMENT_PROP_LEDGERBALANCEDATE, "LedgerBalanceDate"},
                      {CCSTATEMENT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {CCSTATEMENT_PROP_OFXAPPID, "OFXAppId"},
                      {CCSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {CCSTATEMENT_PROP_OFXPASSWORD, "OFXPassword"},
                      {CCSTATEMENT_PROP_OFXREQUEST, "OFXRequest"},
                      {CCSTATEMENT_PROP_OFXRESPONSE, "OFXResponse"},
                      {CCSTATEMENT_PROP_OFXUSER, "OFXUser"},
                      {CCSTATEMENT_PROP_OFXVERSION, "OFXVersion"},
                      {CCSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {CCSTATEMENT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {CCSTATEMENT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {CCSTATEMENT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {CCSTATEMENT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {CCSTATEMENT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {CCSTATEMENT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {CCSTATEMENT_PROP_STARTDATE, "StartDate"},
                      {CCSTATEMENT_PROP_TIMEOUT, "Timeout"},
                      {CCSTATEMENT_PROP_TXCOUNT, "TxCount"},
                      {CCSTATEMENT_PROP_TXAGGREGATE, "TxAggregate"},
                      {CCSTATEMENT_PROP_TXAMOUNT, "TxAmount"},
                      {CCSTATEMENT_PROP_TXDATEINITIATED, "TxDateInitiated"},
                      {CCSTATEMENT_PROP_TXDATEPOSTED, "TxDatePosted"},
                      {CCSTATEMENT_PROP_TXFITID, "TxFITID"},
                      {CCSTATEMENT_PROP_TXMEMO, "TxMemo"},
                      {CCSTATEMENT_PROP_TXPAYEENAME, "TxPayeeName"},
                      {CCSTATEMENT_PROP_TXTYPE, "TxType"},
                      {CCSTATEMENT_PROP_TXTYPEDESCRIPTION, "TxTypeDescription"},
                  });
  return table;
}

}  // namespace

const ComponentTables<CCStatementService>& CCStatementTables() {
  static const ComponentTables<CCStatementService> tables(
      Properties(),
      StatementMethods<S>({CCSTATEMENT_METHOD_CONFIG, CCSTATEMENT_METHOD_GETCLOSINGINFO, CCSTATEMENT_METHOD_GETIMAGE,
                           CCSTATEMENT_METHOD_GETSTATEMENT, CCSTATEMENT_METHOD_READOFXDATAFILE,
                           CCSTATEMENT_METHOD_RESET, CCSTATEMENT_METHOD_WRITEOFXDATAFILE}));
  return tables;
}

}  // namespace orvelan
