#include "net/line_buffer.h"

#include <cstring>
#include <new>

namespace orvelan {

LineBuffer::LineBuffer(uint32_t capacity) : data_(new char[capacity + 1]), capacity_(capacity) {}

bool LineBuffer::SetCapacity(uint32_t capacity) {
  if (capacity != capacity_) {
    std::unique_ptr<char[]> data(new (std::nothrow) char[capacity + 1]);
    if (data == nullptr) return false;
    data_ = std::move(data);
    capacity_ = capacity;
  }
  Clear();
  return true;
}

void LineBuffer::SetMarker(std::string_view marker) {
  marker_.assign(marker.data(), marker.size());
  split_any_ = false;
  pending_partner_ = 0;
}

void LineBuffer::SetSplitAny(bool on) {
  if (on) {
    marker_ = "\r\n";
  } else {
    marker_.clear();
  }
  split_any_ = on;
  pending_partner_ = 0;
}

void LineBuffer::Clear() {
  start_ = 0;
  length_ = 0;
  pending_partner_ = 0;
}

void LineBuffer::MoveToFront() {
  if (start_ == 0) return;
  if (length_ > 0) std::memmove(data_.get(), data_.get() + start_, length_);
  start_ = 0;
}

LineBuffer::Room LineBuffer::FreeRoom() {
  if (start_ + length_ >= capacity_) MoveToFront();
  return {data_.get() + start_ + length_, capacity_ - start_ - length_};
}

void LineBuffer::Commit(uint32_t n) { length_ += n; }

std::string_view LineBuffer::TakeAll() {
  std::string_view all(data_.get() + start_, length_);
  data_[start_ + length_] = '\0';
  start_ = 0;
  length_ = 0;
  return all;
}

bool LineBuffer::NextLine(std::string_view* line) {
  if (marker_.empty()) {
    if (length_ == 0) return false;
    *line = TakeAll();
    return true;
  }
  if (split_any_) return NextSplitLine(line);
  char* begin = data_.get() + start_;
  const size_t marker_size = marker_.size();
  if (length_ >= marker_size) {
    const char* last = begin + (length_ - marker_size);
    for (const char* p = begin; p <= last; ++p) {
      p = static_cast<const char*>(std::memchr(p, marker_[0], static_cast<size_t>(last - p) + 1));
      if (p == nullptr) break;
      if (std::memcmp(p, marker_.data(), marker_size) == 0) {
        const uint32_t size = static_cast<uint32_t>(p - begin);
        begin[size] = '\0';  // the marker's first byte; the line is consumed anyway
        *line = std::string_view(begin, size);
        start_ += size + static_cast<uint32_t>(marker_size);
        length_ -= size + static_cast<uint32_t>(marker_size);
        if (length_ == 0) start_ = 0;
        return true;
      }
    }
  }
  MoveToFront();
  return false;
}

bool LineBuffer::NextSplitLine(std::string_view* line) {
  if (pending_partner_ != 0 && length_ > 0) {
    if (static_cast<uint8_t>(data_[start_]) == pending_partner_) {
      ++start_;
      --length_;
    }
    pending_partner_ = 0;
  }
  char* begin = data_.get() + start_;
  uint32_t i = 0;
  while (i < length_ && begin[i] != '\r' && begin[i] != '\n') ++i;
  if (i == length_) {
    MoveToFront();
    return false;
  }
  uint32_t consumed = i + 1;
  if (i + 1 < length_) {
    // CR LF and LF CR are one line end; CR CR and LF LF are two.
    if (begin[i] + begin[i + 1] == '\r' + '\n') ++consumed;
  } else {
    pending_partner_ = static_cast<uint8_t>(('\r' + '\n') - begin[i]);
  }
  begin[i] = '\0';
  *line = std::string_view(begin, i);
  start_ += consumed;
  length_ -= consumed;
  if (length_ == 0) start_ = 0;
  return true;
}

}  // namespace orvelan
