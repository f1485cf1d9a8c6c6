#include "base/ntlm_writer.h"

#include <cstring>

#include "base/error_codes.h"

namespace orvelan {

int NtlmWriter::Fail(const char* text) {
  error_text_ = text;
  return kErrNoResponse;
}

int NtlmWriter::WriteInt(int32_t position, uint32_t value, int32_t width) {
  if (width < 0 || width > kMaxWidth) return Fail(kTextWriteIntOverflow);
  if (position != -1 && (position < 0 || static_cast<int64_t>(position) + width > buffer_.Length())) {
    return Fail(kTextWriteIntOverflow);
  }
  char field[kMaxWidth] = {};
  if (width <= 4) {
    for (int32_t i = 0; i < width; ++i) field[i] = static_cast<char>(value >> (8 * i));
  }
  if (position == -1) return buffer_.Append(field, width);
  std::memcpy(buffer_.MutableData() + position, field, static_cast<size_t>(width));
  return kOk;
}

int NtlmWriter::WriteBytes(int32_t position, const void* bytes, int32_t offset, int32_t length) {
  if (position < -1 || offset < 0 || length < 0 || (bytes == nullptr && length > 0)) {
    return Fail(kTextWriteBytesOverflow);
  }
  if (position != -1 && static_cast<int64_t>(position) + length > buffer_.Length()) {
    return Fail(kTextWriteBytesOverflow);
  }
  if (length == 0) return kOk;
  const char* source = static_cast<const char*>(bytes) + offset;
  if (position == -1) return buffer_.Append(source, length);
  std::memmove(buffer_.MutableData() + position, source, static_cast<size_t>(length));
  return kOk;
}

uint32_t NtlmWriter::ReadInt(int32_t width) {
  if (width <= 0) return 0;
  const int32_t remaining = buffer_.Length() - read_position_;
  const int32_t consumed = width < remaining ? width : remaining;
  const uint8_t* p = reinterpret_cast<const uint8_t*>(buffer_.Data()) + read_position_;
  uint32_t value = 0;
  for (int32_t i = 0; i < consumed && i < 4; ++i) value |= static_cast<uint32_t>(p[i]) << (8 * i);
  read_position_ += consumed;
  return value;
}

int NtlmWriter::Load(const void* bytes, int32_t length) {
  if (int rc = buffer_.Assign(static_cast<const char*>(bytes), length); rc != kOk) return rc;
  read_position_ = 0;
  return kOk;
}

}  // namespace orvelan
