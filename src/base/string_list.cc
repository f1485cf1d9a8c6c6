#include "base/string_list.h"

#include <cstring>
#include <functional>
#include <utility>

namespace orvelan {
namespace {

constexpr int32_t kHeaderLength = 3;
constexpr int32_t kRecordOverhead = kHeaderLength + 1;  // length field and NUL

// strlen clamped so that an oversized text is refused rather than wrapped.
int32_t TextLength(const char* text) {
  if (text == nullptr) return 0;
  const size_t n = std::strlen(text);
  return n > static_cast<size_t>(StringList::kMaxItemLength) ? StringList::kMaxItemLength + 1
                                                              : static_cast<int32_t>(n);
}

bool PointsInto(const char* p, const ByteString& s) {
  // std::less gives a total order even for pointers into unrelated objects.
  const std::less<const char*> before;
  return !before(p, s.Data()) && before(p, s.Data() + s.Length());
}

// Writes one record at `out`; `bytes` must not overlap it.
void WriteRecord(char* out, const char* bytes, int32_t length) {
  out[0] = static_cast<char>((length >> 16) & 0xFF);
  out[1] = static_cast<char>((length >> 8) & 0xFF);
  out[2] = static_cast<char>(length & 0xFF);
  if (length > 0) std::memcpy(out + kHeaderLength, bytes, static_cast<size_t>(length));
  out[kHeaderLength + length] = '\0';
}

}  // namespace

StringList::StringList(const StringList& other) {
  if (packed_.Assign(other.packed_) == kOk) count_ = other.count_;
}

StringList& StringList::operator=(const StringList& other) {
  if (this != &other) {
    if (packed_.Assign(other.packed_) == kOk) {
      count_ = other.count_;
    } else {
      Clear();
    }
  }
  return *this;
}

StringList::StringList(StringList&& other) noexcept
    : count_(std::exchange(other.count_, 0)), packed_(std::move(other.packed_)) {}

StringList& StringList::operator=(StringList&& other) noexcept {
  if (this != &other) {
    count_ = std::exchange(other.count_, 0);
    packed_ = std::move(other.packed_);
  }
  return *this;
}

int32_t StringList::RecordLength(int32_t offset) const {
  const auto* p = reinterpret_cast<const unsigned char*>(packed_.Data() + offset);
  return static_cast<int32_t>((p[0] << 16) | (p[1] << 8) | p[2]);
}

int32_t StringList::RecordOffset(int32_t index) const {
  int32_t offset = 0;
  for (int32_t i = 0; i < index; ++i) offset += RecordLength(offset) + kRecordOverhead;
  return offset;
}

const char* StringList::Item(int32_t index) const {
  if (index < 0 || index >= count_) return "";
  return packed_.Data() + RecordOffset(index) + kHeaderLength;
}

int32_t StringList::ItemLength(int32_t index) const {
  if (index < 0 || index >= count_) return 0;
  return RecordLength(RecordOffset(index));
}

int64_t StringList::ItemAsInt(int32_t index) const { return ParseInt64(Item(index)); }

int StringList::Add(const char* bytes, int32_t length) {
  if (bytes == nullptr || length < 0) length = 0;
  if (length > kMaxItemLength) return kErrOutOfMemory;
  const int32_t old_length = packed_.Length();
  // Growing may move the buffer, so remember an item of our own by offset.
  const bool is_own = length > 0 && PointsInto(bytes, packed_);
  const std::ptrdiff_t own_offset = is_own ? bytes - packed_.Data() : 0;
  if (int rc = packed_.SetLength(old_length + length + kRecordOverhead); rc != kOk) return rc;
  char* data = packed_.MutableData();
  WriteRecord(data + old_length, is_own ? data + own_offset : bytes, length);
  ++count_;
  return kOk;
}

int StringList::Add(const char* text) {
  return Add(text, TextLength(text));
}

int StringList::AddInt(int64_t value) {
  BasicByteString<20> digits;
  digits.AppendInt64(value);
  return Add(digits.Data(), digits.Length());
}

int StringList::SetItem(int32_t index, const char* bytes, int32_t length) {
  if (index < 0 || index >= count_) return kErrIndexOutOfRange;
  if (bytes == nullptr || length < 0) length = 0;
  if (length > kMaxItemLength) return kErrOutOfMemory;
  // Moving the items behind would overwrite a source inside this list.
  ByteString copy;
  if (length > 0 && PointsInto(bytes, packed_)) {
    if (int rc = copy.Assign(bytes, length); rc != kOk) return rc;
    bytes = copy.Data();
  }
  const int32_t offset = RecordOffset(index);
  const int32_t old_item_length = RecordLength(offset);
  const int32_t old_total = packed_.Length();
  const int32_t new_total = old_total - old_item_length + length;
  const int32_t tail_from = offset + kRecordOverhead + old_item_length;
  const int32_t tail_to = offset + kRecordOverhead + length;
  const size_t tail_length = static_cast<size_t>(old_total - tail_from);
  // Grow before moving the tail up; move the tail down before shrinking,
  // because shrinking back inline keeps only the first bytes.
  if (new_total > old_total) {
    if (int rc = packed_.SetLength(new_total); rc != kOk) return rc;
  }
  char* data = packed_.MutableData();
  std::memmove(data + tail_to, data + tail_from, tail_length);
  if (new_total < old_total) packed_.SetLength(new_total);  // shrinking never allocates
  WriteRecord(packed_.MutableData() + offset, bytes, length);
  return kOk;
}

int StringList::SetItem(int32_t index, const char* text) {
  return SetItem(index, text, TextLength(text));
}

int StringList::SetItemInt(int32_t index, int64_t value) {
  BasicByteString<20> digits;
  digits.AppendInt64(value);
  return SetItem(index, digits.Data(), digits.Length());
}

int StringList::Clear() {
  count_ = 0;
  return packed_.Clear();
}

}  // namespace orvelan
