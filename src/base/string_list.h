#pragma once
#include <cstdint>

#include "base/byte_string.h"

// Many short texts packed back to back in one ByteString: one allocation for
// the whole list, in exchange for Item walking the list from the start.
//
//   StringList names;
//   names.Add("Checking");
//   names.AddInt(42);
//   const char* first = names.Item(0);   // "Checking"
//   int64_t n = names.ItemAsInt(1);      // 42
//
// Each item is stored as its length L in 3 bytes, most significant first, the
// L bytes, and a NUL, so every item reads as a NUL-terminated text and may
// also hold NUL bytes of its own (use ItemLength for those). Not thread-safe.
//
// An item holds at most kMaxItemLength bytes. Add and SetItem refuse a longer
// item with 200 (kErrOutOfMemory), the code ByteString gives for a length it
// cannot hold, and leave the list unchanged. A null text counts as the empty
// text; a negative length counts as 0.
namespace orvelan {

class StringList {
 public:
  // The largest length a 3-byte length field can record.
  static constexpr int32_t kMaxItemLength = 0xFFFFFF;

  StringList() noexcept = default;
  // Copies the packed buffer; a copy that cannot allocate is left empty.
  StringList(const StringList& other);
  StringList& operator=(const StringList& other);
  // The moved-from list is left empty.
  StringList(StringList&& other) noexcept;
  StringList& operator=(StringList&& other) noexcept;
  ~StringList() = default;

  int32_t Count() const { return count_; }

  // The item's text, NUL-terminated; the empty text for an index outside
  // [0, Count()). Points into the list and is valid until the next change.
  const char* Item(int32_t index) const;
  // The item's length in bytes; 0 outside [0, Count()).
  int32_t ItemLength(int32_t index) const;
  // ParseInt64 of Item(index): 0 outside the range or without leading digits.
  int64_t ItemAsInt(int32_t index) const;

  // Appends one item. Returns 0, or 200 when memory runs out or the item is
  // longer than kMaxItemLength. `bytes` may point into this list.
  int Add(const char* bytes, int32_t length);
  int Add(const char* text);
  // Appends the decimal form of `value` ("-12").
  int AddInt(int64_t value);

  // Replaces the item at `index`, moving the items behind it. Returns 0, 432
  // for an index outside [0, Count()), or 200 as Add does. `bytes` may point
  // into this list.
  int SetItem(int32_t index, const char* bytes, int32_t length);
  int SetItem(int32_t index, const char* text);
  int SetItemInt(int32_t index, int64_t value);

  // Count 0, buffer released. Always 0.
  int Clear();

  // The records back to back, as described above; for diagnostics and tests.
  const ByteString& Packed() const { return packed_; }

 private:
  // Byte offset of the record at `index`. REQUIRES: 0 <= index <= Count().
  int32_t RecordOffset(int32_t index) const;
  int32_t RecordLength(int32_t offset) const;

  int32_t count_ = 0;
  ByteString packed_;
};

}  // namespace orvelan
