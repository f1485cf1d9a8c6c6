#include "services/inv_statement_component.h"

#include "services/statement_properties.h"

namespace orvelan {
namespace {

using S = InvStatementService;
using P = PropertyBuilder<S>;
using T = InvestmentTransaction;
using Q = InvestmentPosition;
using O = OpenOrder;
using B = InvestmentBalance;
using I = SecurityInfo;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Text<&S::AccountId, &S::SetAccountId>(INVSTATEMENT_PROP_ACCOUNTID, "AccountId", ""),
      P::Text<&S::AsOfDate, &S::SetAsOfDate>(INVSTATEMENT_PROP_ASOFDATE, "AsOfDate", ""),
      P::Text<&S::AvailableCash>(INVSTATEMENT_PROP_AVAILABLECASH, "AvailableCash"),
      P::Int<&S::BalCount>(INVSTATEMENT_PROP_BALCOUNT, "BalCount"),
      P::IndexedText<&S::BalAggregate, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALAGGREGATE, "BalAggregate"),
      P::IndexedText<&S::BalAmount, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALAMOUNT, "BalAmount"),
      P::IndexedInt<&S::BalAmountType, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALAMOUNTTYPE, "BalAmountType"),
      P::IndexedText<&S::BalText<B::kDescription>, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALDESCRIPTION, "BalDescription"),
      P::IndexedText<&S::BalText<B::kName>, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALNAME, "BalName"),
      P::IndexedText<&S::BalTypeDescription, &S::CheckBalIndex>(INVSTATEMENT_PROP_BALTYPEDESCRIPTION, "BalTypeDescription"),
      P::Text<&S::BrokerId, &S::SetBrokerId>(INVSTATEMENT_PROP_BROKERID, "BrokerId", ""),
      P::Text<&S::BuyingPower>(INVSTATEMENT_PROP_BUYINGPOWER, "BuyingPower"),
      P::Int<&S::IncludeBalances, &S::SetIncludeBalances>(INVSTATEMENT_PROP_INCLUDEBALANCES, "IncludeBalances", true, 1),
      P::Int<&S::IncludeOpenOrders, &S::SetIncludeOpenOrders>(INVSTATEMENT_PROP_INCLUDEOPENORDERS, "IncludeOpenOrders", true, 1),
      P::Int<&S::IncludePositions, &S::SetIncludePositions>(INVSTATEMENT_PROP_INCLUDEPOSITIONS, "IncludePositions", true, 1),
      P::Int<&S::IncludeTransactions, &S::SetIncludeTransactions>(INVSTATEMENT_PROP_INCLUDETRANSACTIONS, "IncludeTransactions", true, 1),
      P::Text<&S::MarginBalance>(INVSTATEMENT_PROP_MARGINBALANCE, "MarginBalance"),
      P::Text<&S::MarketingInfo>(INVSTATEMENT_PROP_MARKETINGINFO, "MarketingInfo"),
      P::Int<&S::OOCount>(INVSTATEMENT_PROP_OOCOUNT, "OOCount"),
      P::IndexedText<&S::OOAggregate, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOAGGREGATE, "OOAggregate"),
      P::IndexedText<&S::OOText<O::kBuyType>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOBUYTYPE, "OOBuyType"),
      P::IndexedText<&S::OODatePlaced, &S::CheckOOIndex>(INVSTATEMENT_PROP_OODATEPLACED, "OODatePlaced"),
      P::IndexedText<&S::OOText<O::kDuration>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OODURATION, "OODuration"),
      P::IndexedText<&S::OOText<O::kFITID>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOFITID, "OOFITID"),
      P::IndexedText<&S::OOText<O::kMemo>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOMEMO, "OOMemo"),
      P::IndexedInt<&S::OOOrderType, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOORDERTYPE, "OOOrderType"),
      P::IndexedText<&S::OOText<O::kRestriction>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OORESTRICTION, "OORestriction"),
      P::IndexedText<&S::OOSecurityId, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOSECURITYID, "OOSecurityId"),
      P::IndexedText<&S::OOText<O::kSellType>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOSELLTYPE, "OOSellType"),
      P::IndexedText<&S::OOText<O::kSubAccount>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOSUBACCOUNT, "OOSubAccount"),
      P::IndexedText<&S::OOTypeDescription, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOTYPEDESCRIPTION, "OOTypeDescription"),
      P::IndexedText<&S::OOText<O::kUnits>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOUNITS, "OOUnits"),
      P::IndexedText<&S::OOText<O::kUnitType>, &S::CheckOOIndex>(INVSTATEMENT_PROP_OOUNITTYPE, "OOUnitType"),
      P::Int<&S::PosCount>(INVSTATEMENT_PROP_POSCOUNT, "PosCount"),
      P::IndexedText<&S::PosText<Q::kAccountType>, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSACCOUNTTYPE, "PosAccountType"),
      P::IndexedText<&S::PosAggregate, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSAGGREGATE, "PosAggregate"),
      P::IndexedText<&S::PosDatePriceAsOf, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSDATEPRICEASOF, "PosDatePriceAsOf"),
      P::IndexedText<&S::PosMarketValue, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSMARKETVALUE, "PosMarketValue"),
      P::IndexedText<&S::PosText<Q::kMemo>, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSMEMO, "PosMemo"),
      P::IndexedText<&S::PosText<Q::kPositionType>, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSPOSITIONTYPE, "PosPositionType"),
      P::IndexedInt<&S::PosSecType, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSSECTYPE, "PosSecType"),
      P::IndexedText<&S::PosSecurityId, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSSECURITYID, "PosSecurityId"),
      P::IndexedText<&S::PosTypeDescription, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSTYPEDESCRIPTION, "PosTypeDescription"),
      P::IndexedText<&S::PosText<Q::kUnitPrice>, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSUNITPRICE, "PosUnitPrice"),
      P::IndexedText<&S::PosText<Q::kUnits>, &S::CheckPosIndex>(INVSTATEMENT_PROP_POSUNITS, "PosUnits"),
      P::Int<&S::SecCount>(INVSTATEMENT_PROP_SECCOUNT, "SecCount"),
      P::IndexedText<&S::SecAggregate, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECAGGREGATE, "SecAggregate"),
      P::IndexedText<&S::SecText<I::kAssetClass>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECASSETCLASS, "SecAssetClass"),
      P::IndexedText<&S::SecText<I::kFIId>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECFIID, "SecFIId"),
      P::IndexedText<&S::SecText<I::kMemo>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECMEMO, "SecMemo"),
      P::IndexedText<&S::SecText<I::kName>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECNAME, "SecName"),
      P::IndexedInt<&S::SecSecType, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECSECTYPE, "SecSecType"),
      P::IndexedText<&S::SecSecurityId, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECSECURITYID, "SecSecurityId"),
      P::IndexedText<&S::SecText<I::kTicker>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECTICKER, "SecTicker"),
      P::IndexedText<&S::SecTypeDescription, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECTYPEDESCRIPTION, "SecTypeDescription"),
      P::IndexedText<&S::SecText<I::kUnitPrice>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECUNITPRICE, "SecUnitPrice"),
      P::IndexedText<&S::SecText<I::kYield>, &S::CheckSecIndex>(INVSTATEMENT_PROP_SECYIELD, "SecYield"),
      P::Text<&S::ShortBalance>(INVSTATEMENT_PROP_SHORTBALANCE, "ShortBalance"),
      P::Text<&S::StatementDate>(INVSTATEMENT_PROP_STATEMENTDATE, "StatementDate"),
      P::Int<&S::TxCount>(INVSTATEMENT_PROP_TXCOUNT, "TxCount"),
      P::IndexedText<&S::TxAggregate, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXAGGREGATE, "TxAggregate"),
      P::IndexedText<&S::TxDate, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXDATE, "TxDate"),
      P::IndexedText<&S::TxDateSettle, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXDATESETTLE, "TxDateSettle"),
      P::IndexedText<&S::TxText<T::kFITID>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXFITID, "TxFITID"),
      P::IndexedText<&S::TxText<T::kMemo>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXMEMO, "TxMemo"),
      P::IndexedText<&S::TxText<T::kName>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXNAME, "TxName"),
      P::IndexedText<&S::TxSecurityId, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXSECURITYID, "TxSecurityId"),
      P::IndexedText<&S::TxText<T::kSubAccountFund>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXSUBACCOUNTFUND, "TxSubAccountFund"),
      P::IndexedText<&S::TxText<T::kSubAccountSec>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXSUBACCOUNTSEC, "TxSubAccountSec"),
      P::IndexedText<&S::TxTotal, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXTOTAL, "TxTotal"),
      P::IndexedInt<&S::TxType, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXTYPE, "TxType"),
      P::IndexedText<&S::TxTypeDescription, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXTYPEDESCRIPTION, "TxTypeDescription"),
      P::IndexedText<&S::TxText<T::kUnitPrice>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXUNITPRICE, "TxUnitPrice"),
      P::IndexedText<&S::TxText<T::kUnits>, &S::CheckTxIndex>(INVSTATEMENT_PROP_TXUNITS, "TxUnits"),
  };
  AppendNamedRows(table, StatementRows<S>(),
                  {
                      {INVSTATEMENT_PROP_CLOSINGINFOCOUNT, "ClosingInfoCount"},
                      {INVSTATEMENT_PROP_CLOSINGINFOAGGREGATE, "ClosingInfoAggregate"},
                      {INVSTATEMENT_PROP_CLOSINGINFOFITID, "ClosingInfoFITID"},
                      {INVSTATEMENT_PROP_CLOSINGINFOIMAGEREF, "ClosingInfoImageRef"},
                      {INVSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE, "ClosingInfoImageRefType"},
                      {INVSTATEMENT_PROP_CURRENCYCODE, "CurrencyCode"},
                      {INVSTATEMENT_PROP_ENDDATE, "EndDate"},
                      {INVSTATEMENT_PROP_FIID, "FIId"},
                      {INVSTATEMENT_PROP_FIORGANIZATION, "FIOrganization"},
                      {INVSTATEMENT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {INVSTATEMENT_PROP_FIREWALLTYPE, "FirewallType"},
                      {INVSTATEMENT_PROP_FIREWALLHOST, "FirewallHost"},
                      {INVSTATEMENT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {INVSTATEMENT_PROP_FIREWALLPORT, "FirewallPort"},
                      {INVSTATEMENT_PROP_FIREWALLUSER, "FirewallUser"},
                      {INVSTATEMENT_PROP_FIURL, "FIUrl"},
                      {INVSTATEMENT_PROP_IMAGEFILE, "ImageFile"},
                      {INVSTATEMENT_PROP_INCLUDEIMAGES, "IncludeImages"},
                      {INVSTATEMENT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {INVSTATEMENT_PROP_OFXAPPID, "OFXAppId"},
                      {INVSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {INVSTATEMENT_PROP_OFXPASSWORD, "OFXPassword"},
                      {INVSTATEMENT_PROP_OFXREQUEST, "OFXRequest"},
                      {INVSTATEMENT_PROP_OFXRESPONSE, "OFXResponse"},
                      {INVSTATEMENT_PROP_OFXUSER, "OFXUser"},
                      {INVSTATEMENT_PROP_OFXVERSION, "OFXVersion"},
                      {INVSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {INVSTATEMENT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {INVSTATEMENT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {INVSTATEMENT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {INVSTATEMENT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {INVSTATEMENT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {INVSTATEMENT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {INVSTATEMENT_PROP_STARTDATE, "StartDate"},
                      {INVSTATEMENT_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

}  // namespace

const ComponentTables<InvStatementService>& InvStatementTables() {
  static const ComponentTables<InvStatementService> tables(
      Properties(),
      StatementMethods<S>({INVSTATEMENT_METHOD_CONFIG, INVSTATEMENT_METHOD_GETCLOSINGINFO, INVSTATEMENT_METHOD_GETIMAGE,
                           INVSTATEMENT_METHOD_GETSTATEMENT, INVSTATEMENT_METHOD_READOFXDATAFILE,
                           INVSTATEMENT_METHOD_RESET, INVSTATEMENT_METHOD_WRITEOFXDATAFILE}));
  return tables;
}

}  // namespace orvelan
