#pragma once
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <vector>

#include "core/property_table.h"
#include "ofx/ofx_client.h"

// The properties every OFX component has, as rows numbered 0. Each component
// numbers them by its own alphabetical order, so it picks the rows it has by
// name and gives each its id:
//
//   std::vector<PropertyDef<S>> pool;
//   AppendCommonRows(pool);
//   AppendNamedRows(table, pool, {{CCSTATEMENT_PROP_FIID, "FIId"}, ...});
namespace orvelan {

struct PropertyId {
  int id;
  const char* name;
};

// Appends to `table` the row of `pool` named by each of `ids`, numbered by it.
// A name missing from the pool is a mistake in a static table: it aborts, so
// the first creation of the component in any test shows it.
template <class S>
void AppendNamedRows(std::vector<PropertyDef<S>>& table, const std::vector<PropertyDef<S>>& pool,
                     std::initializer_list<PropertyId> ids) {
  for (const PropertyId& wanted : ids) {
    const auto row = std::find_if(pool.begin(), pool.end(),
                                  [&wanted](const PropertyDef<S>& p) { return std::strcmp(p.name, wanted.name) == 0; });
    if (row == pool.end()) std::abort();
    table.push_back(*row);
    table.back().id = wanted.id;
  }
}

inline constexpr int kDefaultTimeoutSeconds = 60;

// Adds the common rows, numbered 0, with their defaults at creation.
template <class S>
void AppendCommonRows(std::vector<PropertyDef<S>>& pool) {
  using P = PropertyBuilder<S>;
  const auto add = [&pool](PropertyDef<S> def) { pool.push_back(def); };
  add(P::template Text<&OFXClient::FIId, &OFXClient::SetFIId>(0, "FIId", ""));
  add(P::template Text<&OFXClient::FIOrganization, &OFXClient::SetFIOrganization>(0, "FIOrganization", ""));
  add(P::template Bool<&TcpClient::FirewallAutoDetect, &TcpClient::SetFirewallAutoDetect>(0, "FirewallAutoDetect", true,
                                                                                          false));
  add(P::template Int<&TcpClient::FirewallType, &TcpClient::SetFirewallType>(0, "FirewallType", true, 0));
  add(P::template Text<&TcpClient::FirewallHost, &TcpClient::SetFirewallHost>(0, "FirewallHost", ""));
  add(P::template Text<&TcpClient::FirewallPassword, &TcpClient::SetFirewallPassword>(0, "FirewallPassword", ""));
  add(P::template Int<&TcpClient::FirewallPort, &TcpClient::SetFirewallPort>(0, "FirewallPort", true, 0));
  add(P::template Text<&TcpClient::FirewallUser, &TcpClient::SetFirewallUser>(0, "FirewallUser", ""));
  add(P::template Text<&OFXClient::FIUrl, &OFXClient::SetFIUrl>(0, "FIUrl", ""));
  add(P::template Text<&OFXClient::ImageFile, &OFXClient::SetImageFile>(0, "ImageFile", ""));
  add(P::template Bool<&OFXClient::IncludeImages, &OFXClient::SetIncludeImages>(0, "IncludeImages", true, false));
  add(P::template Text<&OFXClient::OFXAccessKey, &OFXClient::SetOFXAccessKey>(0, "OFXAccessKey", ""));
  add(P::template Text<&OFXClient::OFXAppId, &OFXClient::SetOFXAppId>(0, "OFXAppId", ""));
  add(P::template Text<&OFXClient::OFXAppVersion, &OFXClient::SetOFXAppVersion>(0, "OFXAppVersion", ""));
  add(P::template Text<&OFXClient::OFXPassword, &OFXClient::SetOFXPassword>(0, "OFXPassword", ""));
  add(P::template Text<&OFXClient::OFXRequest>(0, "OFXRequest"));
  // No default at creation: writing an empty response is a failure.
  add(P::template Text<&OFXClient::OFXResponse, &OFXClient::SetOFXResponse>(0, "OFXResponse"));
  add(P::template Text<&OFXClient::OFXUser, &OFXClient::SetOFXUser>(0, "OFXUser", ""));
  add(P::template Text<&OFXClient::OFXVersion, &OFXClient::SetOFXVersion>(0, "OFXVersion", "102"));
  add(P::template Bytes<&TlsChannel::SSLAcceptServerCertEncoded, &TlsChannel::SetSSLAcceptServerCertEncoded>(
      0, "SSLAcceptServerCertEncoded", "", 0));
  add(P::template Bytes<&TlsChannel::SSLCertEncoded, &TlsChannel::SetSSLCertEncoded>(0, "SSLCertEncoded", "", 0));
  add(P::template Bytes<&TlsChannel::SSLCertStore, &TlsChannel::SetSSLCertStore>(0, "SSLCertStore", "MY", 2));
  add(P::template Text<&TlsChannel::SSLCertStorePassword, &TlsChannel::SetSSLCertStorePassword>(
      0, "SSLCertStorePassword", ""));
  add(P::template Int<&TlsChannel::SSLCertStoreType, &TlsChannel::SetSSLCertStoreType>(0, "SSLCertStoreType", true, 0));
  add(P::template Text<&TlsChannel::SSLCertSubject, &TlsChannel::SetSSLCertSubject>(0, "SSLCertSubject", ""));
  add(P::template Bytes<&TlsChannel::SSLServerCertEncoded>(0, "SSLServerCertEncoded"));
  add(P::template Int<&SocketCore::Timeout, &SocketCore::SetTimeout>(0, "Timeout", true, kDefaultTimeoutSeconds));
}

// The ids of the methods every OFX component has.
struct CommonMethodIds {
  int config, read_ofx_data_file, reset, write_ofx_data_file;
};

template <class S>
std::vector<MethodDef<S>> CommonMethods(const CommonMethodIds& ids) {
  return {
      {ids.config, "Config", RunConfigMethod<S>},
      {ids.read_ofx_data_file, "ReadOFXDataFile",
       [](S& s, MethodCall<S>& call) { return s.ReadOFXDataFile(call.Text(0)); }},
      {ids.reset, "Reset", [](S& s, MethodCall<S>&) { return s.Reset(); }},
      {ids.write_ofx_data_file, "WriteOFXDataFile",
       [](S& s, MethodCall<S>& call) { return s.WriteOFXDataFile(call.Text(0)); }},
  };
}

}  // namespace orvelan
