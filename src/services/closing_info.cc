#include "services/closing_info.h"

#include <new>

namespace orvelan {

ClosingInfo* ClosingInfo::Clone() const {
  auto* copy = new (std::nothrow) ClosingInfo();
  if (copy == nullptr) return nullptr;
  *copy = *this;
  return copy;
}

}  // namespace orvelan
