#include "core/file_name.h"

namespace orvelan {

int FileName::SetNarrowName(const char* name) {
  if (int rc = narrow_.Assign(name); rc != kOk) return rc;
  wide_.Clear();
  mode_ = kNarrow;
  return kOk;
}

int FileName::SetWideName(const wchar_t* /*name*/) {
  narrow_.Clear();
  wide_.Clear();
  mode_ = kWide;
  return kErrUnknown;
}

void FileName::Clear() {
  narrow_.Clear();
  wide_.Clear();
  mode_ = kNarrow;
}

}  // namespace orvelan
