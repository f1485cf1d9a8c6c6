#pragma once
#include <cstdint>
#include <string_view>

// Free helpers on NUL-terminated text. None of them depends on the C locale,
// and a null text pointer counts as the empty text wherever one is read.
namespace orvelan {

// Compares byte by byte as unsigned values after folding A-Z to a-z; returns
// the difference of the first unequal pair, 0 when the texts are equal.
int CompareNoCase(const char* a, const char* b);
// True when the two byte ranges are equal after folding A-Z to a-z.
bool EqualsNoCase(std::string_view a, std::string_view b);

// Optional "-" or "+", then decimal digits up to the first non-digit. No
// leading white space is skipped; an empty digit run gives 0. Overflow wraps.
int32_t ParseInt32(const char* text);
int64_t ParseInt64(const char* text);

// Optional sign, then hexadecimal digits up to the first other character.
int64_t ParseHex(const char* text);

// The byte spelt by two hex digits at pair[0] and pair[1]; -1 if either is
// not a hex digit (a NUL at pair[0] is not read past).
int ParseHexPair(const char* pair);

// Overwrites the first `separator` in `text` with NUL and returns the text
// behind it; returns the terminating NUL's position when it does not occur,
// and nullptr for a null text.
char* SplitAt(char* text, char separator);

inline bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }
inline bool IsHexDigit(unsigned char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
// Space, CR, LF and TAB only: OFX and HTTP know no other white space.
inline bool IsSpace(unsigned char c) { return c == ' ' || c == '\r' || c == '\n' || c == '\t'; }
inline char ToLowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; }
inline char ToUpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }

// Locale-independent decimal conversion: leading white space, an optional
// sign, at most 18 significant mantissa digits, an optional exponent whose
// magnitude is clamped to 511. When `end` is not null it receives the position
// behind the last byte consumed (the start of `text` when no digit was read).
double ParseDecimal(const char* text, const char** end = nullptr);

}  // namespace orvelan
