// The library's own atof: the host process gets a conversion that ignores the
// C locale, so "1.5" means one and a half even under a comma-decimal locale.
// This file deliberately includes no C library header: glibc may declare atof
// as an inline function, which a definition here would collide with.
#include "base/text_util.h"

extern "C" __attribute__((visibility("default"))) double atof(const char* text) noexcept {
  return orvelan::ParseDecimal(text);
}
