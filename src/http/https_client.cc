#include "http/https_client.h"

namespace orvelan {

HttpsClient::HttpsClient() { SetDefaults("https", 443); }

int HttpsClient::InitDefaults() {
  HttpClient::InitDefaults();
  use_wininet_ = false;
  use_wininet_cookies_ = true;
  return 1;
}

int HttpsClient::HandleConfig(ConfigArgument& argument, const char*& out) {
  for (auto [name, value] : {std::pair{"UseWinInet", &use_wininet_}, std::pair{"UseWinInetCookies", &use_wininet_cookies_}}) {
    if (!argument.NameIs(name)) continue;
    if (argument.IsQuery()) return ReturnConfigValue(out, *value ? "True" : "False");
    *value = argument.ValueAsBool();
    return kOk;
  }
  return HttpClient::HandleConfig(argument, out);
}

}  // namespace orvelan
