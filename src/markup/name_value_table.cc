#include "markup/name_value_table.h"

#include <new>

#include "base/error_codes.h"

namespace orvelan {

int NameValueTable::AddSlow(std::string_view name, std::string_view value) {
  if (count_ >= kCapacity) return kErrOutOfMemory;
  if (names_[count_] == nullptr) {
    names_[count_].reset(new (std::nothrow) ByteString);
    values_[count_].reset(new (std::nothrow) ByteString);
    if (names_[count_] == nullptr || values_[count_] == nullptr) return kErrOutOfMemory;
  }
  return Add(name, value);
}

int32_t NameValueTable::Find(std::string_view name, bool from_last) const {
  if (from_last) {
    for (int32_t i = count_ - 1; i >= 0; --i) {
      if (names_[i]->View() == name) return i;
    }
  } else {
    for (int32_t i = 0; i < count_; ++i) {
      if (names_[i]->View() == name) return i;
    }
  }
  return -1;
}

void NameValueTable::Clear() {
  for (int32_t i = 0; i < count_; ++i) {
    names_[i]->SetLength(0);
    values_[i]->SetLength(0);
  }
  count_ = 0;
}

}  // namespace orvelan
