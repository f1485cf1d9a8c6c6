// Untrusted text that reaches the foundation: settings strings from a host,
// base64 and hex from certificates and headers, decimal amounts from
// responses. None of it may crash, hang or read out of bounds.
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/byte_string.h"
#include "base/text_util.h"
#include "services/bank_statement_component.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  const std::string text(reinterpret_cast<const char*>(data), size);  // NUL-terminated copy
  const char* c_text = text.c_str();

  ByteString decoded;
  decoded.Assign(c_text, static_cast<int32_t>(size));
  decoded.DecodeBase64();
  ByteString encoded;
  encoded.AppendBase64(decoded.Data(), decoded.Length(), size % 2 == 0);
  encoded.AppendHexDecoded(c_text);
  static const uint8_t kSafe[96] = {0, 1, 0, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                    1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1};
  encoded.AppendPercentEncoded(c_text, kSafe);
  encoded.Trim(c_text[0]);
  if (size > 2) encoded.Slice(static_cast<int32_t>(data[0]), static_cast<int32_t>(data[1]));
  (void)encoded.Find(c_text, static_cast<int32_t>(size % 7));

  const char* end = nullptr;
  (void)ParseDecimal(c_text, &end);
  if (end < c_text || end > c_text + size) __builtin_trap();
  (void)ParseInt64(c_text);
  (void)ParseHex(c_text);

  // A settings string through a whole component: parse, chain, answer.
  static BankStatementComponent component(nullptr, nullptr);
  void* params[2] = {const_cast<char*>(c_text), nullptr};
  int lengths[2] = {0, 0};
  component.Do(2, 2, params, lengths);
  if (params[1] == nullptr) __builtin_trap();
  return 0;
}
