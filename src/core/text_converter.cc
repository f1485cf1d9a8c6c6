#include "core/text_converter.h"

namespace orvelan {

const char* TextConverter::Convert(const char* text) {
  return converted_.Assign(text) == kOk ? converted_.Data() : nullptr;
}

const char* TextConverter::Widen(const char* text) {
  return widened_.Assign(text) == kOk ? widened_.Data() : nullptr;
}

}  // namespace orvelan
