#include "net/socket_core.h"

#include "core/error_text_table.h"

namespace orvelan {

int SocketCore::InitDefaults() {
  ComponentCore::InitDefaults();
  timeout_ms_ = 0;
  timeout_in_milliseconds_ = false;
  external_event_loop_ = false;
  return 1;
}

int SocketCore::FillDefaultErrorText(int code) {
  if (code == kOk) return code;
  if (code == kErrTimeout) {
    SetErrorText(kTextInterrupted);
  } else if (code == kErrOutOfMemory) {
    SetErrorText(kTextOutOfMemory);
  } else if (HasNoErrorText()) {
    SetErrorText("[", code, "] ");
    const char* text = SystemErrorText(code);
    AppendErrorText(text != nullptr ? text : kTextNoDescription);
  }
  return code;
}

int32_t SocketCore::Timeout() const {
  return static_cast<int32_t>(timeout_in_milliseconds_ ? timeout_ms_ : timeout_ms_ / 1000);
}

int SocketCore::SetTimeout(int32_t value) {
  if (value < 0) value = 0;
  const int64_t ms = timeout_in_milliseconds_ ? int64_t{value} : int64_t{value} * 1000;
  timeout_ms_ = static_cast<uint32_t>(ms > int64_t{UINT32_MAX} ? int64_t{UINT32_MAX} : ms);
  return kOk;
}

}  // namespace orvelan
