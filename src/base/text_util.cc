#include "base/text_util.h"

#include <type_traits>

namespace orvelan {
namespace {

template <typename Int>
Int ParseSignedDecimal(const char* text) {
  if (text == nullptr) return 0;
  bool negative = false;
  if (*text == '-' || *text == '+') negative = (*text++ == '-');
  // Accumulate unsigned so that overflow wraps instead of being undefined.
  using Unsigned = std::make_unsigned_t<Int>;
  Unsigned value = 0;
  while (IsDigit(static_cast<unsigned char>(*text))) value = value * 10u + static_cast<Unsigned>(*text++ - '0');
  return static_cast<Int>(negative ? Unsigned{0} - value : value);
}

int HexValue(unsigned char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

int CompareNoCase(const char* a, const char* b) {
  if (a == nullptr) a = "";
  if (b == nullptr) b = "";
  for (;; ++a, ++b) {
    const int ca = static_cast<unsigned char>(ToLowerAscii(*a));
    const int cb = static_cast<unsigned char>(ToLowerAscii(*b));
    if (ca != cb || ca == 0) return ca - cb;
  }
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (ToLowerAscii(a[i]) != ToLowerAscii(b[i])) return false;
  }
  return true;
}

int32_t ParseInt32(const char* text) { return ParseSignedDecimal<int32_t>(text); }
int64_t ParseInt64(const char* text) { return ParseSignedDecimal<int64_t>(text); }

int64_t ParseHex(const char* text) {
  if (text == nullptr) return 0;
  bool negative = false;
  if (*text == '-' || *text == '+') negative = (*text++ == '-');
  uint64_t value = 0;
  for (int digit; (digit = HexValue(static_cast<unsigned char>(*text))) >= 0; ++text) {
    value = value * 16u + static_cast<uint64_t>(digit);
  }
  return static_cast<int64_t>(negative ? uint64_t{0} - value : value);
}

int ParseHexPair(const char* pair) {
  if (pair == nullptr) return -1;
  const int high = HexValue(static_cast<unsigned char>(pair[0]));
  if (high < 0) return -1;
  const int low = HexValue(static_cast<unsigned char>(pair[1]));
  if (low < 0) return -1;
  return high * 16 + low;
}

char* SplitAt(char* text, char separator) {
  if (text == nullptr) return nullptr;
  while (*text != '\0' && *text != separator) ++text;
  if (*text == '\0') return text;
  *text = '\0';
  return text + 1;
}

double ParseDecimal(const char* text, const char** end) {
  static constexpr double kPowersOfTen[] = {1e1, 1e2, 1e4, 1e8, 1e16, 1e32, 1e64, 1e128, 1e256};
  static constexpr int kMaxMantissaDigits = 18;
  static constexpr int kMaxExponent = 511;
  if (end != nullptr) *end = text;
  if (text == nullptr) return 0.0;

  const char* p = text;
  while (IsSpace(static_cast<unsigned char>(*p))) ++p;
  bool negative = false;
  if (*p == '-' || *p == '+') negative = (*p++ == '-');

  // At most 18 digits fit a 64-bit integer exactly; it is combined as
  // high * 10^9 + low so both halves convert to double without rounding.
  uint64_t digits = 0;
  int used_digits = 0;
  int any_digits = 0;
  int exponent = 0;
  bool seen_point = false;
  for (;; ++p) {
    const unsigned char c = static_cast<unsigned char>(*p);
    if (c == '.' && !seen_point) {
      seen_point = true;
      continue;
    }
    if (!IsDigit(c)) break;
    ++any_digits;
    if (used_digits < kMaxMantissaDigits) {
      digits = digits * 10 + (c - '0');
      ++used_digits;
      if (seen_point) --exponent;
    } else if (!seen_point) {
      ++exponent;  // a dropped integer digit still counts as a place
    }
  }
  if (any_digits == 0) return 0.0;
  const double mantissa =
      static_cast<double>(digits / 1000000000u) * 1e9 + static_cast<double>(digits % 1000000000u);

  if (*p == 'e' || *p == 'E') {
    const char* q = p + 1;
    bool exponent_negative = false;
    if (*q == '-' || *q == '+') exponent_negative = (*q++ == '-');
    if (IsDigit(static_cast<unsigned char>(*q))) {
      int value = 0;
      for (; IsDigit(static_cast<unsigned char>(*q)); ++q) {
        if (value < 100000) value = value * 10 + (*q - '0');
      }
      exponent += exponent_negative ? -value : value;
      p = q;
    }
  }

  // A zero mantissa stays zero: scaled by 10^511, which is infinite, it would give NaN.
  if (digits == 0) exponent = 0;
  int magnitude = exponent < 0 ? -exponent : exponent;
  if (magnitude > kMaxExponent) magnitude = kMaxExponent;
  double power = 1.0;
  for (int bit = 0; magnitude != 0; ++bit, magnitude >>= 1) {
    if (magnitude & 1) power *= kPowersOfTen[bit];
  }
  double value = exponent < 0 ? mantissa / power : mantissa * power;
  if (end != nullptr) *end = p;
  return negative ? -value : value;
}

}  // namespace orvelan
