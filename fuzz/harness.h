// What every target shares: the input cut into an option byte, a body and an
// optional tail after the first NUL. The same entry points run without
// libFuzzer in the suite (replay_main.cc), so nothing here may depend on it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace orvelan::fuzz {

struct Input {
  uint8_t options = 0;
  std::string_view body;  // after the option byte, up to the first NUL
  std::string_view tail;  // after that NUL; empty without one
  bool has_tail = false;
};

// False for an empty input, which no target can use.
inline bool Split(const uint8_t* data, size_t size, Input& in, bool with_tail = true) {
  if (size == 0) return false;
  in.options = data[0];
  in.body = std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (!with_tail) return true;
  const size_t nul = in.body.find('\0');
  if (nul == std::string_view::npos) return true;
  in.tail = in.body.substr(nul + 1);
  in.body = in.body.substr(0, nul);
  in.has_tail = true;
  return true;
}

// A broken invariant: fails the run the way a sanitizer does.
[[noreturn]] inline void Fail() { std::abort(); }

}  // namespace orvelan::fuzz
