#include "ofx/ofx_client.h"

namespace orvelan {

int OFXClient::InitDefaults() {
  HttpsClient::InitDefaults();
  max_transferred_data_ = 0;  // an OFX response is kept whole
  for (ByteString* text : {&fi_id_, &fi_organization_, &fi_url_, &image_file_, &access_key_, &app_id_,
                           &app_version_, &password_, &user_, &request_, &response_}) {
    text->Clear();
  }
  version_.Assign("102");
  include_images_ = false;
  return 1;
}

int OFXClient::SetIncludeImages(bool on) {
  include_images_ = on;
  return kOk;
}

const char* OFXClient::OFXRequest() {
  request_.Clear();
  return request_.Data();
}

int OFXClient::SetOFXResponse(const char* value) {
  if (value == nullptr || *value == '\0') return ReportError(kErrNoResponse, kTextNoResponse);
  return response_.Assign(value);
}

}  // namespace orvelan
