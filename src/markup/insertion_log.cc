#include "markup/insertion_log.h"

#include <new>

#include "markup/block_memory.h"
#include "markup/char_classes.h"

namespace orvelan {
namespace {

uint32_t GetVarint(const uint8_t* bytes, size_t& at) {
  uint32_t value = 0;
  for (int shift = 0;; shift += 7) {
    const uint8_t b = bytes[at++];
    value |= static_cast<uint32_t>(b & 0x7F) << shift;
    if ((b & 0x80) == 0) return value;
  }
}

}  // namespace

InsertionLog::~InsertionLog() { FreeBlock(bytes_, capacity_); }

bool InsertionLog::Reserve(size_t more) {
  if (capacity_ - length_ >= more) return true;
  const size_t grown = capacity_ < 4096 ? 4096 : capacity_ * 2;
  void* moved = ResizeBlock(bytes_, capacity_, grown);
  if (moved == nullptr) return false;
  bytes_ = static_cast<uint8_t*>(moved);
  capacity_ = grown;
  return true;
}

void InsertionLog::PutVarint(uint32_t value) {
  while (value >= 0x80) {
    bytes_[length_++] = static_cast<uint8_t>(value | 0x80);
    value >>= 7;
  }
  bytes_[length_++] = static_cast<uint8_t>(value);
}

bool InsertionLog::AppendCoded(const Entry& entry) {
  if (!Reserve(11)) return false;
  const bool first = size_ % kBlock == 0;
  if (first) {
    try {
      checkpoints_.push_back({entry.at, entry.input_at, entry.name_at, static_cast<uint32_t>(length_)});
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
  const uint32_t back = entry.input_at - entry.name_at;
  if (!first && entry.name_at == last_input_at_ + 1 && back < kLong) {
    bytes_[length_++] = static_cast<uint8_t>(back);
  } else {
    bytes_[length_++] = kLong;
    PutVarint(first ? 0 : entry.input_at - last_input_at_);
    PutVarint(back);
  }
  last_input_at_ = entry.input_at;
  ++size_;
  return true;
}

void InsertionLog::Clear() {
  checkpoints_.clear();
  length_ = 0;
  size_ = 0;
}

size_t InsertionLog::Memory() const { return capacity_ + checkpoints_.capacity() * sizeof(Checkpoint); }

void InsertionLog::Cursor::Decode() {
  if (index_ >= log_->size_) return;
  const uint8_t* bytes = log_->bytes_;
  const Entry previous = entry_;
  const uint8_t lead = bytes[byte_++];
  if (index_ % kBlock == 0) {
    if (lead == kLong) {
      GetVarint(bytes, byte_);
      GetVarint(bytes, byte_);
    }
    const Checkpoint& c = log_->checkpoints_[index_ / kBlock];
    entry_.at = c.at;
    entry_.input_at = c.input_at;
    entry_.name_at = c.name_at;
  } else {
    if (lead != kLong) {
      entry_.name_at = previous.input_at + 1;
      entry_.input_at = entry_.name_at + lead;
    } else {
      entry_.input_at = previous.input_at + GetVarint(bytes, byte_);
      entry_.name_at = entry_.input_at - GetVarint(bytes, byte_);
    }
    // The input between two end tags is kept as it is.
    entry_.at = previous.at + previous.Length() + (entry_.input_at - previous.input_at);
  }
  uint32_t end = entry_.name_at;
  while (end < entry_.input_at && markup::IsNameChar(static_cast<uint8_t>(input_[end]))) ++end;
  entry_.name_length = end - entry_.name_at;
}

void InsertionLog::Cursor::Next() {
  ++index_;
  Decode();
}

InsertionLog::Cursor InsertionLog::Seek(uint32_t pos, const char* input) const {
  Cursor cursor(this, input);
  // The last block that starts at or before pos.
  size_t low = 0;
  for (size_t high = checkpoints_.size(); low < high;) {
    const size_t mid = low + (high - low) / 2;
    if (checkpoints_[mid].at <= pos) {
      low = mid + 1;
    } else {
      high = mid;
    }
  }
  const size_t block = low == 0 ? 0 : low - 1;
  if (block < checkpoints_.size()) {
    cursor.index_ = block * kBlock;
    cursor.byte_ = checkpoints_[block].byte;
  }
  cursor.Decode();
  while (cursor.Valid() && pos >= cursor->at + cursor->Length()) cursor.Next();
  return cursor;
}

}  // namespace orvelan
