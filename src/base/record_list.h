#pragma once
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <vector>

// The records a response parse appends, in order: a statement's transactions,
// its closing periods. Records live by value in fixed chunks, so a statement
// of 100k transactions costs neither an allocation per record nor a copy as
// the list grows, and a record's address stays put until Clear.
//
//   RecordList<StatementTransaction> list;
//   StatementTransaction* tx = list.Append();  // default-constructed
//   if (tx == nullptr) return kErrOutOfMemory;
namespace orvelan {

template <typename T>
class RecordList {
  static_assert(std::is_nothrow_default_constructible_v<T>, "records are created without exceptions");

 public:
  RecordList() = default;
  RecordList(const RecordList&) = delete;
  RecordList& operator=(const RecordList&) = delete;
  ~RecordList() { Clear(); }

  int32_t Count() const { return count_; }
  // nullptr outside [0, Count()).
  T* Item(int32_t index) {
    if (index < 0 || index >= count_) return nullptr;
    return Slot(index);
  }
  const T* Item(int32_t index) const { return const_cast<RecordList*>(this)->Item(index); }
  T* Last() { return Item(count_ - 1); }

  // A new record at the end; nullptr when memory runs out.
  T* Append() {
    if (count_ == static_cast<int32_t>(chunks_.size() * kChunk)) {
      void* chunk = ::operator new(kChunk * sizeof(T), std::nothrow);
      if (chunk == nullptr) return nullptr;
      try {
        chunks_.push_back(static_cast<T*>(chunk));
      } catch (const std::bad_alloc&) {
        ::operator delete(chunk);
        return nullptr;
      }
    }
    T* record = new (Slot(count_)) T();
    ++count_;
    return record;
  }

  // Destroys every record and frees the chunks.
  void Clear() {
    for (int32_t i = 0; i < count_; ++i) Slot(i)->~T();
    for (T* chunk : chunks_) ::operator delete(chunk);
    chunks_.clear();
    count_ = 0;
  }

 private:
  static constexpr size_t kChunk = 512;
  T* Slot(int32_t index) const {
    const size_t i = static_cast<size_t>(index);
    return chunks_[i / kChunk] + i % kChunk;
  }

  std::vector<T*> chunks_;
  int32_t count_ = 0;
};

}  // namespace orvelan
