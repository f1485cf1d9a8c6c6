#pragma once
#include <cstdint>

// The texts of the OFX status codes, used when a status aggregate carries a
// CODE but no MESSAGE.
namespace orvelan {

class OFXStatusTable {
 public:
  // The text of `code`; "Unknown server error." for a code not in the table
  // (0 included). Never null; the text is static.
  static const char* Text(int32_t code);
};

}  // namespace orvelan
