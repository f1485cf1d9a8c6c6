#pragma once
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

// Byte helpers for tests that compare against reference values computed
// elsewhere.
namespace orvelan::test {

// Reproducible pseudo-random bytes from a 32-bit LCG (top byte of each state).
// Reference tables were computed over exactly these sequences: do not change.
inline std::string LcgBytes(uint32_t seed, size_t length) {
  std::string out(length, '\0');
  uint32_t state = seed;
  for (char& c : out) {
    state = state * 1664525u + 1013904223u;
    c = static_cast<char>(state >> 24);
  }
  return out;
}

// Lower-case hex, two digits per byte.
inline std::string Hex(const void* bytes, size_t length) {
  static const char kDigits[] = "0123456789abcdef";
  const auto* p = static_cast<const uint8_t*>(bytes);
  std::string out;
  for (size_t i = 0; i < length; ++i) {
    out += kDigits[p[i] >> 4];
    out += kDigits[p[i] & 15];
  }
  return out;
}
inline std::string Hex(std::string_view bytes) { return Hex(bytes.data(), bytes.size()); }

// The bytes spelt by pairs of hex digits (either case); other input is a test bug.
inline std::string Unhex(std::string_view hex) {
  auto nibble = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) out += static_cast<char>(nibble(hex[i]) << 4 | nibble(hex[i + 1]));
  return out;
}

// The hex digest of `data` fed to a fresh Digest in pieces cut at `cuts`
// (ascending offsets within data).
template <typename Digest>
std::string HexDigest(std::string_view data, std::initializer_list<size_t> cuts = {}) {
  Digest digest;
  size_t start = 0;
  for (size_t cut : cuts) {
    digest.Update(data.data() + start, cut - start);
    start = cut;
  }
  digest.Update(data.data() + start, data.size() - start);
  return Hex(digest.Finish(), Digest::kDigestLength);
}

}  // namespace orvelan::test
