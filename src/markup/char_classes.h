#pragma once
#include <array>
#include <cstdint>

// The byte classes the markup reader dispatches on, one table lookup each.
namespace orvelan::markup {

enum : uint8_t { kSpace = 1, kNameStart = 2, kNameChar = 4, kTextStop = 8 };

constexpr std::array<uint8_t, 256> MakeCharClasses() {
  std::array<uint8_t, 256> t{};
  for (unsigned char c : {' ', '\t', '\n', '\r', '\f', '\v'}) t[c] |= kSpace;
  for (int c = 'A'; c <= 'Z'; ++c) {
    t[c] |= kNameStart | kNameChar;
    t[c - 'A' + 'a'] |= kNameStart | kNameChar;
  }
  for (unsigned char c : {'_', ':'}) t[c] |= kNameStart | kNameChar;
  for (int c = '0'; c <= '9'; ++c) t[c] |= kNameChar;
  for (unsigned char c : {'.', '-'}) t[c] |= kNameChar;
  // Character data runs stop where the state machine has work to do.
  for (unsigned char c : {'<', '&', '\n'}) t[c] |= kTextStop;
  return t;
}
inline constexpr std::array<uint8_t, 256> kCharClass = MakeCharClasses();

inline bool IsWhite(uint8_t c) { return (kCharClass[c] & kSpace) != 0; }
inline bool IsNameStart(uint8_t c) { return (kCharClass[c] & kNameStart) != 0; }
inline bool IsNameChar(uint8_t c) { return (kCharClass[c] & kNameChar) != 0; }

}  // namespace orvelan::markup
