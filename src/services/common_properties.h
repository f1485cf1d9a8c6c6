#pragma once
#include <vector>

#include "core/property_table.h"
#include "ofx/ofx_client.h"

// The properties every OFX component has. Each component numbers them by its
// own alphabetical order, so it passes their ids; an id of 0 leaves a
// property out (ImageFile and IncludeImages exist on statement components only).
namespace orvelan {

struct CommonPropertyIds {
  int fi_id = 0;
  int fi_organization = 0;
  int firewall_auto_detect = 0;
  int firewall_type = 0;
  int firewall_host = 0;
  int firewall_password = 0;
  int firewall_port = 0;
  int firewall_user = 0;
  int fi_url = 0;
  int image_file = 0;
  int include_images = 0;
  int ofx_access_key = 0;
  int ofx_app_id = 0;
  int ofx_app_version = 0;
  int ofx_password = 0;
  int ofx_request = 0;
  int ofx_response = 0;
  int ofx_user = 0;
  int ofx_version = 0;
  int ssl_accept_server_cert_encoded = 0;
  int ssl_cert_encoded = 0;
  int ssl_cert_store = 0;
  int ssl_cert_store_password = 0;
  int ssl_cert_store_type = 0;
  int ssl_cert_subject = 0;
  int ssl_server_cert_encoded = 0;
  int timeout = 0;
};

inline constexpr int kDefaultTimeoutSeconds = 60;

template <class S>
void AppendCommonProperties(std::vector<PropertyDef<S>>& table, const CommonPropertyIds& ids) {
  using P = PropertyBuilder<S>;
  const auto add = [&table](int id, PropertyDef<S> def) {
    if (id != 0) table.push_back(def);
  };
  add(ids.fi_id, P::template Text<&OFXClient::FIId, &OFXClient::SetFIId>(ids.fi_id, "FIId", ""));
  add(ids.fi_organization, P::template Text<&OFXClient::FIOrganization, &OFXClient::SetFIOrganization>(
                               ids.fi_organization, "FIOrganization", ""));
  add(ids.firewall_auto_detect,
      P::template Bool<&TcpClient::FirewallAutoDetect, &TcpClient::SetFirewallAutoDetect>(
          ids.firewall_auto_detect, "FirewallAutoDetect", true, false));
  add(ids.firewall_type, P::template Int<&TcpClient::FirewallType, &TcpClient::SetFirewallType>(
                             ids.firewall_type, "FirewallType", true, 0));
  add(ids.firewall_host, P::template Text<&TcpClient::FirewallHost, &TcpClient::SetFirewallHost>(
                             ids.firewall_host, "FirewallHost", ""));
  add(ids.firewall_password, P::template Text<&TcpClient::FirewallPassword, &TcpClient::SetFirewallPassword>(
                                 ids.firewall_password, "FirewallPassword", ""));
  add(ids.firewall_port, P::template Int<&TcpClient::FirewallPort, &TcpClient::SetFirewallPort>(
                             ids.firewall_port, "FirewallPort", true, 0));
  add(ids.firewall_user, P::template Text<&TcpClient::FirewallUser, &TcpClient::SetFirewallUser>(
                             ids.firewall_user, "FirewallUser", ""));
  add(ids.fi_url, P::template Text<&OFXClient::FIUrl, &OFXClient::SetFIUrl>(ids.fi_url, "FIUrl", ""));
  add(ids.image_file,
      P::template Text<&OFXClient::ImageFile, &OFXClient::SetImageFile>(ids.image_file, "ImageFile", ""));
  add(ids.include_images, P::template Bool<&OFXClient::IncludeImages, &OFXClient::SetIncludeImages>(
                              ids.include_images, "IncludeImages", true, false));
  add(ids.ofx_access_key, P::template Text<&OFXClient::OFXAccessKey, &OFXClient::SetOFXAccessKey>(
                              ids.ofx_access_key, "OFXAccessKey", ""));
  add(ids.ofx_app_id,
      P::template Text<&OFXClient::OFXAppId, &OFXClient::SetOFXAppId>(ids.ofx_app_id, "OFXAppId", ""));
  add(ids.ofx_app_version, P::template Text<&OFXClient::OFXAppVersion, &OFXClient::SetOFXAppVersion>(
                               ids.ofx_app_version, "OFXAppVersion", ""));
  add(ids.ofx_password,
      P::template Text<&OFXClient::OFXPassword, &OFXClient::SetOFXPassword>(ids.ofx_password, "OFXPassword", ""));
  add(ids.ofx_request, P::template Text<&OFXClient::OFXRequest>(ids.ofx_request, "OFXRequest"));
  // No default at creation: writing an empty response is a failure.
  add(ids.ofx_response,
      P::template Text<&OFXClient::OFXResponse, &OFXClient::SetOFXResponse>(ids.ofx_response, "OFXResponse"));
  add(ids.ofx_user, P::template Text<&OFXClient::OFXUser, &OFXClient::SetOFXUser>(ids.ofx_user, "OFXUser", ""));
  add(ids.ofx_version,
      P::template Text<&OFXClient::OFXVersion, &OFXClient::SetOFXVersion>(ids.ofx_version, "OFXVersion", "102"));
  add(ids.ssl_accept_server_cert_encoded,
      P::template Bytes<&TlsChannel::SSLAcceptServerCertEncoded, &TlsChannel::SetSSLAcceptServerCertEncoded>(
          ids.ssl_accept_server_cert_encoded, "SSLAcceptServerCertEncoded", "", 0));
  add(ids.ssl_cert_encoded, P::template Bytes<&TlsChannel::SSLCertEncoded, &TlsChannel::SetSSLCertEncoded>(
                                ids.ssl_cert_encoded, "SSLCertEncoded", "", 0));
  add(ids.ssl_cert_store, P::template Bytes<&TlsChannel::SSLCertStore, &TlsChannel::SetSSLCertStore>(
                              ids.ssl_cert_store, "SSLCertStore", "MY", 2));
  add(ids.ssl_cert_store_password,
      P::template Text<&TlsChannel::SSLCertStorePassword, &TlsChannel::SetSSLCertStorePassword>(
          ids.ssl_cert_store_password, "SSLCertStorePassword", ""));
  add(ids.ssl_cert_store_type, P::template Int<&TlsChannel::SSLCertStoreType, &TlsChannel::SetSSLCertStoreType>(
                                   ids.ssl_cert_store_type, "SSLCertStoreType", true, 0));
  add(ids.ssl_cert_subject, P::template Text<&TlsChannel::SSLCertSubject, &TlsChannel::SetSSLCertSubject>(
                                ids.ssl_cert_subject, "SSLCertSubject", ""));
  add(ids.ssl_server_cert_encoded,
      P::template Bytes<&TlsChannel::SSLServerCertEncoded>(ids.ssl_server_cert_encoded, "SSLServerCertEncoded"));
  add(ids.timeout, P::template Int<&SocketCore::Timeout, &SocketCore::SetTimeout>(ids.timeout, "Timeout", true,
                                                                                  kDefaultTimeoutSeconds));
}

}  // namespace orvelan
