#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

// The end tags a parse over retained input wrote into its kept text, in
// order: where each goes in the kept text and in the input, and where its
// name is in the input. A 1.x statement closes most of its elements this way,
// so entries are delta-coded, with a full checkpoint every kBlock entries for
// seeking. Most leaves start right where the previous end tag went in and
// are shorter than 128 bytes: their entry is one byte.
namespace orvelan {

class InsertionLog {
 public:
  struct Entry {
    uint32_t at = 0;        // kept text position of "</"
    uint32_t input_at = 0;  // the input position it goes before
    uint32_t name_at = 0;   // input position of the name
    uint32_t name_length = 0;
    uint32_t Length() const { return name_length + 3; }
  };

  // Reads entries in order from some index on.
  class Cursor {
   public:
    bool Valid() const { return index_ < log_->size_; }
    const Entry& operator*() const { return entry_; }
    const Entry* operator->() const { return &entry_; }
    void Next();

   private:
    friend class InsertionLog;
    Cursor(const InsertionLog* log, const char* input) : log_(log), input_(input) {}
    void Decode();

    const InsertionLog* log_;
    const char* input_;
    size_t index_ = 0;
    size_t byte_ = 0;  // where the entry after entry_ is coded
    Entry entry_;
  };

  InsertionLog() = default;
  InsertionLog(const InsertionLog&) = delete;
  InsertionLog& operator=(const InsertionLog&) = delete;
  ~InsertionLog();

  size_t Size() const { return size_; }
  // REQUIRES: positions grow from entry to entry and name_at < input_at.
  bool Append(const Entry& entry) {
    // The one-byte entry of a leaf that starts right after the previous end
    // tag, inline; the rest, and the checkpoints, out of line.
    const uint32_t back = entry.input_at - entry.name_at;
    if (size_ % kBlock != 0 && entry.name_at == last_input_at_ + 1 && back < kLong && capacity_ - length_ >= 11) {
      bytes_[length_++] = static_cast<uint8_t>(back);
      last_input_at_ = entry.input_at;
      ++size_;
      return true;
    }
    return AppendCoded(entry);
  }
  // Keeps the memory for the next parse.
  void Clear();
  size_t Memory() const;

  // The first entry whose inserted bytes end after `pos`. `input` is the
  // retained input, where the names are read back.
  Cursor Seek(uint32_t pos, const char* input) const;

 private:
  static constexpr size_t kBlock = 64;
  // An entry's first byte below kLong: the leaf's name starts one byte after
  // the previous entry's input position, and the byte is input_at - name_at.
  // Otherwise kLong, then varints of the step from the previous input
  // position and of input_at - name_at.
  static constexpr uint8_t kLong = 0x80;
  struct Checkpoint {
    uint32_t at;
    uint32_t input_at;
    uint32_t name_at;
    uint32_t byte;
  };
  bool AppendCoded(const Entry& entry);
  bool Reserve(size_t more);
  void PutVarint(uint32_t value);

  std::vector<Checkpoint> checkpoints_;
  uint8_t* bytes_ = nullptr;  // from ResizeBlock
  size_t length_ = 0;
  size_t capacity_ = 0;
  size_t size_ = 0;
  uint32_t last_input_at_ = 0;
};

}  // namespace orvelan
