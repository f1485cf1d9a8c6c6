#include "services/ofx_batch_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = OFXBatchService;
using P = PropertyBuilder<S>;
using Item = OFXBatchItem;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Int<&S::ItemCount, &S::SetItemCount>(OFXBATCH_PROP_OFXBATCHITEMCOUNT, "OFXBatchItemCount", true, 0),
      P::IndexedText<&S::ItemText<Item::kRequest>, &S::CheckItemIndex, &S::SetItemRequest>(
          OFXBATCH_PROP_OFXBATCHITEMREQUEST, "OFXBatchItemRequest"),
      P::IndexedText<&S::ItemText<Item::kKind>, &S::CheckItemIndex>(OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE,
                                                                    "OFXBatchItemRequestType"),
      P::IndexedText<&S::ItemText<Item::kTRNUID>, &S::CheckItemIndex>(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID,
                                                                      "OFXBatchItemRequestUId"),
      P::IndexedText<&S::ItemText<Item::kResponse>, &S::CheckItemIndex, &S::SetItemResponse>(
          OFXBATCH_PROP_OFXBATCHITEMRESPONSE, "OFXBatchItemResponse"),
      P::Int<&HttpClient::ProxyAuthScheme, &HttpClient::SetProxyAuthScheme>(OFXBATCH_PROP_PROXYAUTHSCHEME,
                                                                           "ProxyAuthScheme", true, 0),
      P::Bool<&S::ProxyAutoDetect, &S::SetProxyAutoDetect>(OFXBATCH_PROP_PROXYAUTODETECT, "ProxyAutoDetect", true,
                                                           false),
      P::Text<&HttpClient::ProxyPassword, &HttpClient::SetProxyPassword>(OFXBATCH_PROP_PROXYPASSWORD, "ProxyPassword",
                                                                         ""),
      P::Int<&HttpClient::ProxyPort, &HttpClient::SetProxyPort>(OFXBATCH_PROP_PROXYPORT, "ProxyPort", true, 80),
      P::Text<&HttpClient::ProxyServer, &HttpClient::SetProxyServer>(OFXBATCH_PROP_PROXYSERVER, "ProxyServer", ""),
      P::Int<&HttpClient::ProxySSL, &HttpClient::SetProxySSL>(OFXBATCH_PROP_PROXYSSL, "ProxySSL", true, 0),
      P::Text<&HttpClient::ProxyUser, &HttpClient::SetProxyUser>(OFXBATCH_PROP_PROXYUSER, "ProxyUser", ""),
  };
  std::vector<PropertyDef<S>> pool;
  AppendCommonRows(pool);
  AppendNamedRows(table, pool,
                  {
                      {OFXBATCH_PROP_FIID, "FIId"},
                      {OFXBATCH_PROP_FIORGANIZATION, "FIOrganization"},
                      {OFXBATCH_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {OFXBATCH_PROP_FIREWALLTYPE, "FirewallType"},
                      {OFXBATCH_PROP_FIREWALLHOST, "FirewallHost"},
                      {OFXBATCH_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {OFXBATCH_PROP_FIREWALLPORT, "FirewallPort"},
                      {OFXBATCH_PROP_FIREWALLUSER, "FirewallUser"},
                      {OFXBATCH_PROP_FIURL, "FIUrl"},
                      {OFXBATCH_PROP_OFXAPPID, "OFXAppId"},
                      {OFXBATCH_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {OFXBATCH_PROP_OFXPASSWORD, "OFXPassword"},
                      {OFXBATCH_PROP_OFXUSER, "OFXUser"},
                      {OFXBATCH_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {OFXBATCH_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {OFXBATCH_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {OFXBATCH_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {OFXBATCH_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {OFXBATCH_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {OFXBATCH_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {OFXBATCH_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

std::vector<MethodDef<S>> Methods() {
  std::vector<MethodDef<S>> methods = CommonMethods<S>(
      {OFXBATCH_METHOD_CONFIG, OFXBATCH_METHOD_READOFXDATAFILE, OFXBATCH_METHOD_RESET, OFXBATCH_METHOD_WRITEOFXDATAFILE});
  methods.push_back({OFXBATCH_METHOD_POSTBATCH, "PostBatch", [](S& s, MethodCall<S>&) { return s.PostBatch(); }});
  return methods;
}

}  // namespace

const ComponentTables<OFXBatchService>& OFXBatchTables() {
  static const ComponentTables<OFXBatchService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
