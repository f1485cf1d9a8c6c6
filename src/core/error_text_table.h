#pragma once
#include <cstdint>

namespace orvelan {

// One row of the system error texts: a Linux errno value and its classic
// one-sentence text, ending in a full stop.
struct ErrorTextEntry {
  int32_t number;
  const char* text;
};

// The texts behind default error messages ("[110] Connection timed out.").
// Rows run in errno order; a row with number 0 and a null text ends the table.
// 11 appears twice ("Try again." and, later, "Operation would block."), and a
// front-to-back search must find the first.
extern const ErrorTextEntry kErrorTextTable[];

// The text for a system error number, or null when the table has none (as
// for 0, negative numbers and numbers it leaves out). The text is static.
const char* SystemErrorText(int number);

}  // namespace orvelan
