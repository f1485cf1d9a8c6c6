// Feeds untrusted proxy replies to the tunnel handshake of every type, cut
// into pieces at sizes taken from the input, and the same bytes to the NTLM
// challenge parser as a raw challenge.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "net/ntlm_auth.h"
#include "net/tunnel_handshake.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  using orvelan::TunnelHandshake;
  const int type = 1 + data[0] % 5;
  const size_t step = 1 + (data[0] >> 3) % 32;
  const bool lines = (data[1] & 1) != 0;  // delivered as cut lines, as with a line end set
  std::string_view wire(reinterpret_cast<const char*>(data) + 2, size - 2);

  orvelan::NtlmAuth ntlm;
  TunnelHandshake handshake;
  TunnelHandshake::Settings settings;
  settings.type = type;
  settings.host = (data[1] & 2) != 0 ? "*bank.example" : "bank.example";
  settings.port = 443;
  settings.address = (data[1] & 4) != 0 ? 0x0100007f : 0;
  settings.user = "CORP\\joe";
  settings.password = "secret";
  orvelan::ByteString out;
  TunnelHandshake::Result result = handshake.Start(settings, &ntlm, out);
  size_t pieces = 0;
  while (!wire.empty() && result == TunnelHandshake::kPending) {
    ++pieces;
    const size_t n = wire.size() < step ? wire.size() : step;
    out.Clear();
    result = handshake.Feed(wire.data(), static_cast<int32_t>(n), lines, "\r\n", out);
    wire.remove_prefix(n);
  }
  // What is handed on can only come from the input and the line ends put back.
  if (handshake.Leftover().size() > size + (lines ? 2 * pieces : 0)) std::abort();

  orvelan::NtlmAuth raw;
  raw.SetCredentials("NTLM", "CORP\\joe", "secret");
  orvelan::ByteString token;
  raw.CreateToken("NTLM", "proxy", nullptr, 0, token);
  const int rc = raw.CreateToken("NTLM", "proxy", data + 2, static_cast<int32_t>(size - 2), token);
  if (size > 2 && rc == 0 && token.Length() < 72) std::abort();  // an Authenticate message
  return 0;
}
