#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/error_codes.h"
#include "base/text_util.h"

// The byte buffer in which every text, element value, header and body travels.
//
//   ByteString s;
//   s.Assign("OFXHEADER:");
//   s.AppendInt(100);             // "OFXHEADER:100"
//   if (s.Append(body, n) != 0) { /* 200: out of memory */ }
//
// Contents of up to N bytes live inside the object; longer contents move to a
// heap block of 1.5 times the requested length, which is handed back as soon
// as the content fits inline again. The content is always NUL-terminated and
// may itself hold NUL bytes (lengths are explicit), but operations that take a
// NUL-terminated argument stop at its first NUL. A null text pointer counts as
// the empty text. Operations that can allocate return 0 or 200 (out of memory);
// after a failed allocation the content is unchanged. Not thread-safe.
namespace orvelan {

namespace byte_string_detail {
// Encoders shared by every inline capacity; `out` has room for the result.
int32_t Base64EncodedLength(int32_t length, bool line_breaks);
void Base64Encode(const uint8_t* bytes, int32_t length, bool line_breaks, char* out);
// Decodes `length` characters at `data` into `data`; returns the byte count.
int32_t Base64DecodeInPlace(char* data, int32_t length);
void HexEncode(const uint8_t* bytes, int32_t length, char* out);
// `safe` has 96 entries for the bytes 32 to 127; bit 0 marks a byte that
// passes unchanged. Every other byte becomes "%" and two upper-case digits.
int32_t PercentEncodedLength(const char* text, const uint8_t* safe);
void PercentEncode(const char* text, const uint8_t* safe, char* out);
// memmem that accepts empty haystacks.
int32_t FindBytes(const char* haystack, int32_t haystack_length, int32_t start, const char* needle,
                  int32_t needle_length);
}  // namespace byte_string_detail

template <int32_t N>
class BasicByteString {
  static_assert(N > 0, "the inline buffer must hold at least one byte");

 public:
  static constexpr int32_t kInlineCapacity = N;

  BasicByteString() noexcept { inline_[0] = '\0'; }
  explicit BasicByteString(const char* text) : BasicByteString() { Assign(text); }
  explicit BasicByteString(std::string_view bytes) : BasicByteString() {
    Assign(bytes.data(), static_cast<int32_t>(bytes.size()));
  }
  // A copy that cannot allocate is left empty; use Assign to see the code.
  BasicByteString(const BasicByteString& other) : BasicByteString() { Assign(other); }
  BasicByteString& operator=(const BasicByteString& other) {
    if (this != &other) Assign(other);
    return *this;
  }
  BasicByteString(BasicByteString&& other) noexcept : BasicByteString() { Swap(other); }
  BasicByteString& operator=(BasicByteString&& other) noexcept {
    if (this != &other) {
      Clear();
      Swap(other);
    }
    return *this;
  }
  ~BasicByteString() { std::free(heap_); }

  int32_t Length() const { return length_; }
  bool IsEmpty() const { return length_ == 0; }
  // N while the content is inline, else the heap block's size minus one.
  int32_t Capacity() const { return capacity_; }
  bool IsOnHeap() const { return heap_ != nullptr; }
  // Always NUL-terminated; valid until the next change of the string.
  const char* Data() const { return heap_ != nullptr ? heap_ : inline_; }
  char* MutableData() { return heap_ != nullptr ? heap_ : inline_; }
  std::string_view View() const { return {Data(), static_cast<size_t>(length_)}; }

  // The core of every change. A negative n counts as 0. With a source, n bytes
  // are copied from it (it may point into this string); without one the first
  // min(old length, n) bytes survive and later bytes are undefined until written.
  int SetLength(int32_t n, const char* source = nullptr) {
    if (n < 0) n = 0;
    if (n > N) {
      // Past this the capacity could not cover n and the NUL would land outside the block.
      if (n > kMaxCapacity) return kErrOutOfMemory;
      if (n > capacity_) {
        // Half again the request keeps repeated appends amortised linear.
        const int64_t wanted = static_cast<int64_t>(n) + n / 2;
        const int32_t capacity = wanted > kMaxCapacity ? kMaxCapacity : static_cast<int32_t>(wanted);
        char* block;
        if (source != nullptr) {
          block = static_cast<char*>(std::malloc(static_cast<size_t>(capacity) + 1));
          if (block == nullptr) return kErrOutOfMemory;
          std::memcpy(block, source, static_cast<size_t>(n));  // before the old storage goes
          std::free(heap_);
        } else if (heap_ != nullptr) {
          block = static_cast<char*>(std::realloc(heap_, static_cast<size_t>(capacity) + 1));
          if (block == nullptr) return kErrOutOfMemory;
        } else {
          block = static_cast<char*>(std::malloc(static_cast<size_t>(capacity) + 1));
          if (block == nullptr) return kErrOutOfMemory;
          std::memcpy(block, inline_, static_cast<size_t>(length_));
        }
        heap_ = block;
        capacity_ = capacity;
      } else if (source != nullptr) {
        std::memmove(heap_, source, static_cast<size_t>(n));
      }
      heap_[n] = '\0';
    } else {
      if (heap_ != nullptr) {
        std::memmove(inline_, source != nullptr ? source : heap_, static_cast<size_t>(n));
        std::free(heap_);
        heap_ = nullptr;
        capacity_ = N;
      } else if (source != nullptr) {
        std::memmove(inline_, source, static_cast<size_t>(n));
      }
      inline_[n] = '\0';
    }
    length_ = n;
    return kOk;
  }

  int Assign(const char* text) { return text == nullptr ? SetLength(0) : Assign(text, Strlen(text)); }
  int Assign(const char* bytes, int32_t length) {
    if (bytes == nullptr || length <= 0) return SetLength(0);
    return SetLength(length, bytes);
  }
  int Assign(std::string_view bytes) { return Assign(bytes.data(), static_cast<int32_t>(bytes.size())); }
  template <int32_t M>
  int Assign(const BasicByteString<M>& other) {
    return Assign(other.Data(), other.Length());
  }

  int Clear() {
    std::free(heap_);
    heap_ = nullptr;
    length_ = 0;
    capacity_ = N;
    inline_[0] = '\0';
    return kOk;
  }

  // Nothing happens for a null pointer or a length <= 0. The bytes may lie
  // inside this string.
  int Append(const char* bytes, int32_t length) {
    if (bytes == nullptr || length <= 0) return kOk;
    const int32_t old_length = length_;
    if (static_cast<int64_t>(old_length) + length > kMaxCapacity) return kErrOutOfMemory;
    const char* old_data = Data();
    const bool is_own = bytes >= old_data && bytes < old_data + old_length;
    const std::ptrdiff_t own_offset = bytes - old_data;
    if (int rc = SetLength(old_length + length); rc != kOk) return rc;
    char* data = MutableData();
    std::memmove(data + old_length, is_own ? data + own_offset : bytes, static_cast<size_t>(length));
    return kOk;
  }
  int Append(const char* text) { return text == nullptr ? kOk : Append(text, Strlen(text)); }
  int Append(std::string_view bytes) { return Append(bytes.data(), static_cast<int32_t>(bytes.size())); }
  template <int32_t M>
  int Append(const BasicByteString<M>& other) {
    return Append(other.Data(), other.Length());
  }

  int AppendChar(char c) {
    if (length_ < capacity_) {  // the common case: no growth, no copy
      char* data = MutableData();
      data[length_++] = c;
      data[length_] = '\0';
      return kOk;
    }
    return Append(&c, 1);
  }
  int AppendInt(int32_t value) { return AppendInt64(value); }
  int AppendInt64(int64_t value) {
    char digits[24];
    char* p = digits + sizeof digits;
    uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do {
      *--p = static_cast<char>('0' + magnitude % 10);
      magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0) *--p = '-';
    return Append(p, static_cast<int32_t>(digits + sizeof digits - p));
  }
  int AppendRepeated(int32_t count, char c) {
    if (count <= 0) return kOk;
    const int32_t old_length = length_;
    if (static_cast<int64_t>(old_length) + count > kMaxCapacity) return kErrOutOfMemory;
    if (int rc = SetLength(old_length + count); rc != kOk) return rc;
    std::memset(MutableData() + old_length, static_cast<unsigned char>(c), static_cast<size_t>(count));
    return kOk;
  }
  // '"' text '"'; nothing for a null text. The text may lie inside this string.
  int AppendQuoted(const char* text) {
    if (text == nullptr) return kOk;
    const int32_t n = Strlen(text);
    const int32_t old_length = length_;
    if (static_cast<int64_t>(old_length) + n + 2 > kMaxCapacity) return kErrOutOfMemory;
    // One growth for all three parts, so a failure leaves the content as it was
    // and an own text is read from where it is after the move.
    const char* old_data = Data();
    const bool is_own = text >= old_data && text < old_data + old_length;
    const std::ptrdiff_t own_offset = text - old_data;
    if (int rc = SetLength(old_length + n + 2); rc != kOk) return rc;
    char* data = MutableData();
    data[old_length] = '"';
    std::memmove(data + old_length + 1, is_own ? data + own_offset : text, static_cast<size_t>(n));
    data[old_length + 1 + n] = '"';
    return kOk;
  }

  // Standard base64 with "=" padding. With line_breaks, "\r\n" precedes every
  // group that starts at a non-zero input offset divisible by 48 (64-character
  // lines, none after the last).
  int AppendBase64(const void* bytes, int32_t length, bool line_breaks) {
    if (bytes == nullptr || length <= 0) return kOk;
    const int32_t encoded = byte_string_detail::Base64EncodedLength(length, line_breaks);
    if (static_cast<int64_t>(length_) + encoded > kMaxCapacity) return kErrOutOfMemory;
    const int32_t old_length = length_;
    const char* src = static_cast<const char*>(bytes);
    // Encoding our own bytes into our own end: take a copy first.
    if (src >= Data() && src < Data() + length_) {
      BasicByteString copy;
      if (int rc = copy.Assign(src, length); rc != kOk) return rc;
      return AppendBase64(copy.Data(), copy.Length(), line_breaks);
    }
    if (int rc = SetLength(old_length + encoded); rc != kOk) return rc;
    byte_string_detail::Base64Encode(reinterpret_cast<const uint8_t*>(src), length, line_breaks,
                                     MutableData() + old_length);
    return kOk;
  }
  // Decodes the content in place. Bytes outside the alphabet are skipped, the
  // first "=" ends decoding, a final partial group gives one or two bytes.
  int DecodeBase64() { return SetLength(byte_string_detail::Base64DecodeInPlace(MutableData(), length_)); }

  // Two lowercase digits per byte, high nibble first.
  int AppendHex(const void* bytes, int32_t length) {
    if (bytes == nullptr || length <= 0) return kOk;
    if (static_cast<int64_t>(length_) + 2 * static_cast<int64_t>(length) > kMaxCapacity) return kErrOutOfMemory;
    BasicByteString copy;
    const char* src = static_cast<const char*>(bytes);
    if (src >= Data() && src < Data() + length_) {
      if (int rc = copy.Assign(src, length); rc != kOk) return rc;
      src = copy.Data();
    }
    const int32_t old_length = length_;
    if (int rc = SetLength(old_length + 2 * length); rc != kOk) return rc;
    byte_string_detail::HexEncode(reinterpret_cast<const uint8_t*>(src), length, MutableData() + old_length);
    return kOk;
  }
  // One byte per pair of characters; a pair that is not two hex digits, a
  // lone last character included, yields 0xFF.
  int AppendHexDecoded(const char* text) {
    if (text == nullptr) return kOk;
    BasicByteString decoded;
    for (const char* p = text; *p != '\0'; p += (p[1] == '\0' ? 1 : 2)) {
      const int byte = ParseHexPair(p);
      if (int rc = decoded.AppendChar(static_cast<char>(byte < 0 ? 0xFF : byte)); rc != kOk) return rc;
    }
    return Append(decoded);
  }
  // See byte_string_detail::PercentEncode for the table.
  int AppendPercentEncoded(const char* text, const uint8_t* safe) {
    if (text == nullptr) return kOk;
    BasicByteString copy;
    if (text >= Data() && text < Data() + length_) {
      if (int rc = copy.Assign(text); rc != kOk) return rc;
      text = copy.Data();
    }
    const int32_t encoded = byte_string_detail::PercentEncodedLength(text, safe);
    if (static_cast<int64_t>(length_) + encoded > kMaxCapacity) return kErrOutOfMemory;
    const int32_t old_length = length_;
    if (int rc = SetLength(old_length + encoded); rc != kOk) return rc;
    byte_string_detail::PercentEncode(text, safe, MutableData() + old_length);
    return kOk;
  }

  // n < 1 changes nothing; n is clamped to the length.
  int RemovePrefix(int32_t n) {
    if (n < 1) return kOk;
    if (n > length_) n = length_;
    char* data = MutableData();
    std::memmove(data, data + n, static_cast<size_t>(length_ - n));
    return SetLength(length_ - n);
  }
  // Keeps [start, end): 432 if start < 0, end < 0 or start >= length; end is
  // clamped to the length; an end before start leaves the string empty.
  int Slice(int32_t start, int32_t end) {
    if (start < 0 || end < 0 || start >= length_) return kErrIndexOutOfRange;
    if (end > length_) end = length_;
    if (end <= start) return SetLength(0);
    char* data = MutableData();
    std::memmove(data, data + start, static_cast<size_t>(end - start));
    return SetLength(end - start);
  }
  // Removes every leading and trailing occurrence of c.
  int Trim(char c) {
    const char* data = Data();
    int32_t begin = 0;
    int32_t end = length_;
    while (begin < end && data[begin] == c) ++begin;
    while (end > begin && data[end - 1] == c) --end;
    if (begin == 0 && end == length_) return kOk;
    if (begin == end) return SetLength(0);
    return Slice(begin, end);
  }
  int DropLast() { return length_ == 0 ? kOk : SetLength(length_ - 1); }

  // 0 outside [0, length).
  char ByteAt(int32_t position) const { return (position < 0 || position >= length_) ? '\0' : Data()[position]; }
  // The content from position on; the empty text outside [0, length).
  const char* TailAt(int32_t position) const {
    return (position < 0 || position >= length_) ? "" : Data() + position;
  }
  // First position >= start where text occurs (case-sensitive); -1 if none or
  // if start < 0. An empty text is found at start.
  int32_t Find(const char* text, int32_t start = 0) const {
    if (start < 0 || start > length_) return -1;
    if (text == nullptr) text = "";
    return byte_string_detail::FindBytes(Data(), length_, start, text, Strlen(text));
  }
  int32_t FindChar(char c, int32_t start = 0) const {
    if (start < 0 || start >= length_) return -1;
    const void* hit = std::memchr(Data() + start, static_cast<unsigned char>(c), static_cast<size_t>(length_ - start));
    return hit == nullptr ? -1 : static_cast<int32_t>(static_cast<const char*>(hit) - Data());
  }

  // With length -1 the content and the text compare as NUL-terminated strings;
  // otherwise the lengths must match and the bytes must be equal.
  bool Equals(const char* text, int32_t length = -1) const {
    if (text == nullptr) {
      if (length > 0) return false;  // a null text has no bytes to compare
      text = "";
    }
    if (length == -1) return std::strcmp(Data(), text) == 0;
    return length == length_ && std::memcmp(Data(), text, static_cast<size_t>(length)) == 0;
  }
  bool EqualsNoCase(const char* text) const { return CompareNoCase(Data(), text) == 0; }
  bool StartsWith(const char* text) const {
    const int32_t n = text == nullptr ? 0 : Strlen(text);
    return n <= length_ && std::memcmp(Data(), text == nullptr ? "" : text, static_cast<size_t>(n)) == 0;
  }
  bool EndsWith(const char* text) const {
    const int32_t n = text == nullptr ? 0 : Strlen(text);
    return n <= length_ &&
           std::memcmp(Data() + length_ - n, text == nullptr ? "" : text, static_cast<size_t>(n)) == 0;
  }

  // ASCII a-z become A-Z in place.
  int ToUpper() {
    char* data = MutableData();
    for (int32_t i = 0; i < length_; ++i) data[i] = ToUpperAscii(data[i]);
    return kOk;
  }
  int64_t ToInt64() const { return ParseInt64(Data()); }

  void Swap(BasicByteString& other) noexcept {
    if (heap_ != nullptr && other.heap_ != nullptr) {
      std::swap(heap_, other.heap_);
    } else {
      // At least one side is inline: exchange through a temporary inline copy.
      char saved[N + 1];
      std::memcpy(saved, inline_, sizeof saved);
      std::memcpy(inline_, other.inline_, sizeof saved);
      std::memcpy(other.inline_, saved, sizeof saved);
      std::swap(heap_, other.heap_);
    }
    std::swap(length_, other.length_);
    std::swap(capacity_, other.capacity_);
  }

 private:
  // Lengths stay well below 2^31 so that length + length / 2 cannot overflow.
  static constexpr int32_t kMaxCapacity = 0x7FFFFFF0;
  static int32_t Strlen(const char* text) {
    const size_t n = std::strlen(text);
    return n > static_cast<size_t>(kMaxCapacity) ? kMaxCapacity : static_cast<int32_t>(n);
  }

  char inline_[N + 1];
  char* heap_ = nullptr;  // owned; exists exactly while the content is longer than N
  int32_t length_ = 0;
  int32_t capacity_ = N;
};

// The general-purpose string; the short variants serve the HTTP client, its
// authentication and the proxy tunnels.
using ByteString = BasicByteString<99>;
using ShortByteString20 = BasicByteString<20>;
using ShortByteString30 = BasicByteString<30>;
using ShortByteString50 = BasicByteString<50>;

}  // namespace orvelan
