#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Byte helpers for tests that compare against values computed with openssl.
namespace orvelan::test {

// Reproducible pseudo-random bytes from a 32-bit LCG (top byte of each state).
// Reference values were computed over exactly these sequences: do not change.
inline std::string LcgBytes(uint32_t seed, size_t length) {
  std::string out(length, '\0');
  for (char& c : out) {
    seed = seed * 1664525u + 1013904223u;
    c = static_cast<char>(seed >> 24);
  }
  return out;
}

// Lower-case hex, two digits per byte.
inline std::string Hex(std::string_view bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char b : bytes) out += {kDigits[b >> 4], kDigits[b & 15]};
  return out;
}
inline std::string Hex(const void* bytes, size_t length) { return Hex({static_cast<const char*>(bytes), length}); }

// The bytes spelt by pairs of lower-case hex digits.
inline std::string Unhex(std::string_view hex) {
  auto nibble = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  std::string out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) out += static_cast<char>(nibble(hex[i]) << 4 | nibble(hex[i + 1]));
  return out;
}

}  // namespace orvelan::test
