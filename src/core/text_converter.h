#pragma once

#include "base/byte_string.h"

namespace orvelan {

// Converts texts between the host's encoding and the library's. On this
// platform both sides use the same bytes, so both directions are identity
// copies; a port that needs code-page conversion supplies it here, behind the
// same two calls.
//
//   TextConverter converter;
//   const char* text = converter.Convert(host_text);  // owned by converter
//
// Each direction has its own buffer, so a Convert result survives a Widen
// call and vice versa. Not thread-safe.
class TextConverter {
 public:
  TextConverter() = default;
  TextConverter(const TextConverter&) = delete;
  TextConverter& operator=(const TextConverter&) = delete;

  // Copies text (null counts as empty) into the converted buffer and returns
  // it, valid until the next Convert or the converter's destruction. Returns
  // null when the copy cannot be allocated.
  const char* Convert(const char* text);

  // The opposite direction, into the widened buffer; same rules.
  const char* Widen(const char* text);

 private:
  ByteString converted_;
  ByteString widened_;
};

}  // namespace orvelan
