#include "http/https_client.h"

#include "core/setting_table.h"

namespace orvelan {

HttpsClient::HttpsClient() { SetDefaults("https", 443); }

int HttpsClient::InitDefaults() {
  HttpClient::InitDefaults();
  use_wininet_ = false;
  use_wininet_cookies_ = true;
  return 1;
}

int HttpsClient::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<HttpsClient>;
  static constexpr R kSettings[] = {
      R::TrueFalse<&HttpsClient::use_wininet_>("UseWinInet"),
      R::TrueFalse<&HttpsClient::use_wininet_cookies_>("UseWinInetCookies"),
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return HttpClient::HandleConfig(argument, out);
}

}  // namespace orvelan
