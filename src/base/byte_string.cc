#include "base/byte_string.h"

#include <array>

namespace orvelan::byte_string_detail {
namespace {

constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kHexLower[] = "0123456789abcdef";
constexpr char kHexUpper[] = "0123456789ABCDEF";
constexpr int32_t kBase64LineInput = 48;  // 48 input bytes make one 64-character line

constexpr std::array<int8_t, 256> MakeBase64Values() {
  std::array<int8_t, 256> values{};
  for (auto& v : values) v = -1;
  for (int i = 0; i < 64; ++i) values[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<int8_t>(i);
  return values;
}
constexpr std::array<int8_t, 256> kBase64Values = MakeBase64Values();

bool IsPercentSafe(unsigned char c, const uint8_t* safe) {
  return c >= 32 && c <= 127 && safe != nullptr && (safe[c - 32] & 1) != 0;
}

}  // namespace

int32_t Base64EncodedLength(int32_t length, bool line_breaks) {
  const int64_t groups = (static_cast<int64_t>(length) + 2) / 3;
  int64_t total = groups * 4;
  if (line_breaks && length > 0) total += 2 * ((static_cast<int64_t>(length) - 1) / kBase64LineInput);
  return total > INT32_MAX ? INT32_MAX : static_cast<int32_t>(total);
}

void Base64Encode(const uint8_t* bytes, int32_t length, bool line_breaks, char* out) {
  for (int32_t i = 0; i < length; i += 3) {
    if (line_breaks && i != 0 && i % kBase64LineInput == 0) {
      *out++ = '\r';
      *out++ = '\n';
    }
    const int32_t left = length - i;
    const uint32_t b0 = bytes[i];
    const uint32_t b1 = left > 1 ? bytes[i + 1] : 0;
    const uint32_t b2 = left > 2 ? bytes[i + 2] : 0;
    const uint32_t triple = (b0 << 16) | (b1 << 8) | b2;
    *out++ = kBase64Alphabet[(triple >> 18) & 63];
    *out++ = kBase64Alphabet[(triple >> 12) & 63];
    *out++ = left > 1 ? kBase64Alphabet[(triple >> 6) & 63] : '=';
    *out++ = left > 2 ? kBase64Alphabet[triple & 63] : '=';
  }
}

int32_t Base64DecodeInPlace(char* data, int32_t length) {
  // The write position never passes the read position: four characters read
  // give at most three bytes written.
  int32_t written = 0;
  uint32_t accumulator = 0;
  int pending = 0;
  for (int32_t i = 0; i < length; ++i) {
    const unsigned char c = static_cast<unsigned char>(data[i]);
    if (c == '=') break;
    const int8_t value = kBase64Values[c];
    if (value < 0) continue;
    accumulator = (accumulator << 6) | static_cast<uint32_t>(value);
    if (++pending == 4) {
      data[written++] = static_cast<char>((accumulator >> 16) & 0xFF);
      data[written++] = static_cast<char>((accumulator >> 8) & 0xFF);
      data[written++] = static_cast<char>(accumulator & 0xFF);
      accumulator = 0;
      pending = 0;
    }
  }
  if (pending == 2) {
    data[written++] = static_cast<char>((accumulator >> 4) & 0xFF);
  } else if (pending == 3) {
    data[written++] = static_cast<char>((accumulator >> 10) & 0xFF);
    data[written++] = static_cast<char>((accumulator >> 2) & 0xFF);
  }
  return written;
}

void HexEncode(const uint8_t* bytes, int32_t length, char* out) {
  for (int32_t i = 0; i < length; ++i) {
    *out++ = kHexLower[bytes[i] >> 4];
    *out++ = kHexLower[bytes[i] & 15];
  }
}

int32_t PercentEncodedLength(const char* text, const uint8_t* safe) {
  int64_t total = 0;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
    total += IsPercentSafe(*p, safe) ? 1 : 3;
  }
  return total > INT32_MAX ? INT32_MAX : static_cast<int32_t>(total);
}

void PercentEncode(const char* text, const uint8_t* safe, char* out) {
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
    if (IsPercentSafe(*p, safe)) {
      *out++ = static_cast<char>(*p);
    } else {
      *out++ = '%';
      *out++ = kHexUpper[*p >> 4];
      *out++ = kHexUpper[*p & 15];
    }
  }
}

int32_t FindBytes(const char* haystack, int32_t haystack_length, int32_t start, const char* needle,
                  int32_t needle_length) {
  if (start < 0 || start > haystack_length) return -1;
  if (needle_length == 0) return start;
  if (needle_length > haystack_length - start) return -1;
  const char* last = haystack + haystack_length - needle_length;
  for (const char* p = haystack + start; p <= last; ++p) {
    p = static_cast<const char*>(std::memchr(p, static_cast<unsigned char>(needle[0]),
                                             static_cast<size_t>(last - p + 1)));
    if (p == nullptr) return -1;
    if (std::memcmp(p, needle, static_cast<size_t>(needle_length)) == 0) {
      return static_cast<int32_t>(p - haystack);
    }
  }
  return -1;
}

}  // namespace orvelan::byte_string_detail
