#include "net/pem_block.h"

#include <cstdint>

#include "base/des_cipher.h"
#include "base/key_derivation.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

// The line starting at `at` without its line end; `at` moves past it.
std::string_view NextLine(std::string_view text, size_t& at) {
  const size_t start = at;
  size_t end = text.find('\n', start);
  if (end == std::string_view::npos) end = text.size();
  at = end < text.size() ? end + 1 : end;
  std::string_view line = text.substr(start, end - start);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

}  // namespace

bool PemBlock::Read(std::string_view text, std::string_view marker) {
  headers_.clear();
  body_.Clear();
  const std::string begin = "BEGIN " + std::string(marker);
  size_t at = 0;
  for (;;) {
    at = text.find(begin, at);
    if (at == std::string_view::npos) return false;
    // "-----BEGIN X" or "---- BEGIN X": dashes, perhaps one blank, at the line start.
    size_t p = at;
    if (p > 0 && text[p - 1] == ' ') --p;
    size_t dashes = 0;
    while (p > 0 && text[p - 1] == '-') --p, ++dashes;
    if (dashes >= 4 && (p == 0 || text[p - 1] == '\n')) break;
    at += begin.size();
  }
  NextLine(text, at);  // the rest of the BEGIN line
  size_t body_start = at;
  while (at < text.size()) {
    const size_t line_start = at;
    std::string_view line = NextLine(text, at);
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
      body_start = line_start;
      break;
    }
    std::string value(line.substr(colon + 1));
    value.erase(0, value.find_first_not_of(" \t") == std::string::npos ? value.size()
                                                                          : value.find_first_not_of(" \t"));
    while (!value.empty() && value.back() == '\\' && at < text.size()) {
      value.pop_back();
      value += NextLine(text, at);
    }
    headers_.emplace_back(std::string(line.substr(0, colon)), std::move(value));
    body_start = at;
  }
  size_t body_end = text.find("---", body_start);
  if (body_end == std::string_view::npos) body_end = text.size();
  if (body_.Assign(text.data() + body_start, static_cast<int32_t>(body_end - body_start)) != kOk) return false;
  return body_.DecodeBase64() == kOk;
}

const std::string* PemBlock::Header(std::string_view name) const {
  for (const auto& [n, value] : headers_) {
    if (EqualsNoCase(n, name)) return &value;
  }
  return nullptr;
}

bool PemBlock::Decrypt(std::string_view pass_phrase) {
  const std::string* info = Header("DEK-Info");
  if (info == nullptr) return true;
  const size_t comma = info->find(',');
  if (comma == std::string::npos) return false;
  const std::string_view cipher = std::string_view(*info).substr(0, comma);
  if (!EqualsNoCase(cipher, "DES-EDE3-CBC") && !EqualsNoCase(cipher, "3des-cbc")) return false;
  const std::string iv_hex = info->substr(comma + 1);
  if (iv_hex.size() != 16) return false;
  uint8_t iv[8];
  for (int i = 0; i < 8; ++i) {
    const int byte = ParseHexPair(iv_hex.c_str() + 2 * i);
    if (byte < 0) return false;
    iv[i] = static_cast<uint8_t>(byte);
  }
  const int32_t length = body_.Length();
  if (length == 0 || length % 8 != 0) return false;
  KeyDerivation derivation;
  if (derivation.SetPassPhrase(pass_phrase.data(), static_cast<int32_t>(pass_phrase.size())) != kOk ||
      derivation.SetSalt(iv, 8) != kOk || derivation.Derive(1, 24, 8) != kOk) {
    return false;
  }
  auto* data = reinterpret_cast<uint8_t*>(body_.MutableData());
  TripleDesCbcDecrypt(data, length / 8, reinterpret_cast<const uint8_t*>(derivation.Key().Data()), iv);
  const uint8_t pad = data[length - 1];
  if (pad == 0 || pad > 8) return false;
  for (int32_t i = length - pad; i < length; ++i) {
    if (data[i] != pad) return false;
  }
  return body_.SetLength(length - pad) == kOk;
}

}  // namespace orvelan
