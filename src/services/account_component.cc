#include "services/account_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = AccountService;
using P = PropertyBuilder<S>;
using A = AccountInfo;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Int<&S::AccCount>(ACCOUNT_PROP_ACCCOUNT, "AccCount"),
      P::IndexedText<&S::AccText<A::kType>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCTYPE, "AccType"),
      P::IndexedText<&S::AccText<A::kAggregate>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCAGGREGATE, "AccAggregate"),
      P::IndexedText<&S::AccText<A::kBankId>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCBANKID, "AccBankId"),
      P::IndexedText<&S::AccText<A::kBranchId>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCBRANCHID, "AccBranchId"),
      P::IndexedBool<&S::AccFlag<A::kChecking>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCCHECKING, "AccChecking"),
      P::IndexedText<&S::AccText<A::kDescription>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCDESCRIPTION, "AccDescription"),
      P::IndexedText<&S::AccText<A::kId>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCID, "AccId"),
      P::IndexedBool<&S::AccFlag<A::kTransferDestination>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCISTRANSFERDESTINATION,
                                                                              "AccIsTransferDestination"),
      P::IndexedBool<&S::AccFlag<A::kTransferSource>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCISTRANSFERSOURCE,
                                                                         "AccIsTransferSource"),
      P::IndexedText<&S::AccText<A::kKey>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCKEY, "AccKey"),
      P::IndexedText<&S::AccText<A::kPhone>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCPHONE, "AccPhone"),
      P::IndexedText<&S::AccText<A::kServiceType>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCSERVICETYPE, "AccServiceType"),
      P::IndexedText<&S::AccText<A::kStatus>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCSTATUS, "AccStatus"),
      P::IndexedBool<&S::AccFlag<A::kSupportsTxDownload>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCSUPPORTSTXDOWNLOAD,
                                                                             "AccSupportsTxDownload"),
      P::IndexedText<&S::AccText<A::kUSProductType>, &S::CheckAccIndex>(ACCOUNT_PROP_ACCUSPRODUCTTYPE,
                                                                        "AccUSProductType"),
      P::Text<&S::LastUpdate, &S::SetLastUpdate>(ACCOUNT_PROP_LASTUPDATE, "LastUpdate"),
  };
  std::vector<PropertyDef<S>> pool;
  AppendCommonRows(pool);
  AppendNamedRows(table, pool,
                  {
                      {ACCOUNT_PROP_FIID, "FIId"},
                      {ACCOUNT_PROP_FIORGANIZATION, "FIOrganization"},
                      {ACCOUNT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {ACCOUNT_PROP_FIREWALLTYPE, "FirewallType"},
                      {ACCOUNT_PROP_FIREWALLHOST, "FirewallHost"},
                      {ACCOUNT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {ACCOUNT_PROP_FIREWALLPORT, "FirewallPort"},
                      {ACCOUNT_PROP_FIREWALLUSER, "FirewallUser"},
                      {ACCOUNT_PROP_FIURL, "FIUrl"},
                      {ACCOUNT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {ACCOUNT_PROP_OFXAPPID, "OFXAppId"},
                      {ACCOUNT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {ACCOUNT_PROP_OFXPASSWORD, "OFXPassword"},
                      {ACCOUNT_PROP_OFXREQUEST, "OFXRequest"},
                      {ACCOUNT_PROP_OFXRESPONSE, "OFXResponse"},
                      {ACCOUNT_PROP_OFXUSER, "OFXUser"},
                      {ACCOUNT_PROP_OFXVERSION, "OFXVersion"},
                      {ACCOUNT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {ACCOUNT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {ACCOUNT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {ACCOUNT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {ACCOUNT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {ACCOUNT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {ACCOUNT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {ACCOUNT_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

std::vector<MethodDef<S>> Methods() {
  std::vector<MethodDef<S>> methods = CommonMethods<S>(
      {ACCOUNT_METHOD_CONFIG, ACCOUNT_METHOD_READOFXDATAFILE, ACCOUNT_METHOD_RESET, ACCOUNT_METHOD_WRITEOFXDATAFILE});
  methods.push_back({ACCOUNT_METHOD_GETINFO, "GetInfo", [](S& s, MethodCall<S>&) { return s.GetInfo(); }});
  return methods;
}

}  // namespace

const ComponentTables<AccountService>& AccountTables() {
  static const ComponentTables<AccountService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
