#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "http/https_client.h"

// The OFX engine every OFX service derives from. For now it holds the
// institution, user and application settings that each OFX component exposes;
// request building and response handling come with the engine.
namespace orvelan {

inline constexpr char kTextNoResponse[] = "No response available from the server.";

class OFXClient : public HttpsClient {
 public:
  OFXClient() = default;

  int InitDefaults() override;

  const char* FIId() const { return fi_id_.Data(); }
  int SetFIId(const char* value) { return fi_id_.Assign(value); }
  const char* FIOrganization() const { return fi_organization_.Data(); }
  int SetFIOrganization(const char* value) { return fi_organization_.Assign(value); }
  const char* FIUrl() const { return fi_url_.Data(); }
  int SetFIUrl(const char* value) { return fi_url_.Assign(value); }
  // Statement components: where a downloaded image is stored, without extension.
  const char* ImageFile() const { return image_file_.Data(); }
  int SetImageFile(const char* value) { return image_file_.Assign(value); }
  bool IncludeImages() const { return include_images_; }
  int SetIncludeImages(bool on);
  const char* OFXAccessKey() const { return access_key_.Data(); }
  int SetOFXAccessKey(const char* value) { return access_key_.Assign(value); }
  const char* OFXAppId() const { return app_id_.Data(); }
  int SetOFXAppId(const char* value) { return app_id_.Assign(value); }
  const char* OFXAppVersion() const { return app_version_.Data(); }
  int SetOFXAppVersion(const char* value) { return app_version_.Assign(value); }
  const char* OFXPassword() const { return password_.Data(); }
  int SetOFXPassword(const char* value) { return password_.Assign(value); }
  const char* OFXUser() const { return user_.Data(); }
  int SetOFXUser(const char* value) { return user_.Assign(value); }
  // The first character selects OFX 1.x SGML ("1") or OFX 2.x XML ("2").
  const char* OFXVersion() const { return version_.Data(); }
  int SetOFXVersion(const char* value) { return version_.Assign(value); }
  // The service's own request aggregate as it would be sent now; empty until
  // the engine can build requests.
  const char* OFXRequest();
  // The last response. Writing an empty text fails with 508.
  const char* OFXResponse() const { return response_.Data(); }
  int SetOFXResponse(const char* value);

 private:
  ByteString fi_id_;
  ByteString fi_organization_;
  ByteString fi_url_;
  ByteString image_file_;
  ByteString access_key_;
  ByteString app_id_;
  ByteString app_version_;
  ByteString password_;
  ByteString user_;
  ByteString version_;
  ByteString request_;
  ByteString response_;
  bool include_images_ = false;
};

}  // namespace orvelan
