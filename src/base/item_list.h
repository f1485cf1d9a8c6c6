#pragma once
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "base/error_codes.h"

// An ordered list that owns its records: transactions, balances, payees and
// the other records parsed from OFX responses.
//
//   ItemList<Balance> balances;
//   if (balances.SetCount(balances.Count() + 1) != 0) return kErrOutOfMemory;
//   Balance* b = balances.Last();   // created here, on first access
//   if (b == nullptr) return kErrOutOfMemory;
//   b->name.Assign("Ledger");
//
// The first 20 item pointers live inside the object; a longer list keeps them
// in a heap slot array sized twice the count that outgrew it. Items are
// created by the list, either default-constructed on first access by index or
// cloned on insertion, and destroyed by it; pointers handed out stay valid
// until the item is destroyed (SetCount below its position, Clear, or the
// list's destruction), since growing moves only the slots, never the items.
// Not thread-safe.
//
// T provides a default constructor that does not throw, a destructor, and
// `T* Clone() const` returning a new heap copy of the record (from `new`, so
// the list can `delete` it), or nullptr when memory runs out.
namespace orvelan {

template <typename T>
class ItemList {
  static_assert(std::is_nothrow_default_constructible_v<T>,
                "items are created without exceptions: T() must not throw");

 public:
  static constexpr int32_t kInlineSlots = 20;

  ItemList() noexcept = default;
  ItemList(const ItemList&) = delete;
  ItemList& operator=(const ItemList&) = delete;
  // The moved-from list is left empty.
  ItemList(ItemList&& other) noexcept { TakeFrom(other); }
  ItemList& operator=(ItemList&& other) noexcept {
    if (this != &other) {
      Clear();
      TakeFrom(other);
    }
    return *this;
  }
  ~ItemList() { Clear(); }

  int32_t Count() const { return count_; }
  // 20 while the inline slots are in use, else the size of the heap slot array.
  int32_t Capacity() const { return capacity_; }

  // Sets the number of items; a negative n counts as 0. Items at positions n
  // and beyond are destroyed. Raising the count creates no items: the new
  // slots are filled by Item on first access. Returns 0, or 200 when the slot
  // array cannot be allocated, in which case the whole list has been cleared.
  int SetCount(int32_t n) {
    if (n < 0) n = 0;
    T** slots = Slots();
    for (int32_t i = n; i < count_; ++i) {
      delete slots[i];
      slots[i] = nullptr;
    }
    if (n < count_) count_ = n;
    if (n > kInlineSlots && n > capacity_) {
      if (n > kMaxCount) {  // 2n would overflow the capacity
        Clear();
        return kErrOutOfMemory;
      }
      const int32_t capacity = 2 * n;
      T** grown = new (std::nothrow) T*[static_cast<size_t>(capacity)]();
      if (grown == nullptr) {
        Clear();
        return kErrOutOfMemory;
      }
      for (int32_t i = 0; i < count_; ++i) {
        grown[i] = slots[i];
        slots[i] = nullptr;
      }
      delete[] heap_;
      heap_ = grown;
      capacity_ = capacity;
    } else if (n <= kInlineSlots && heap_ != nullptr) {
      for (int32_t i = 0; i < n; ++i) inline_[i] = heap_[i];
      delete[] heap_;
      heap_ = nullptr;
      capacity_ = kInlineSlots;
    }
    count_ = n;
    return kOk;
  }

  // The item at `index`, default-constructed on first access. nullptr for an
  // index outside [0, Count()) and when the item cannot be allocated; callers
  // raise the count with SetCount before they fill a new record. The list
  // keeps ownership.
  T* Item(int32_t index) {
    if (index < 0 || index >= count_) return nullptr;
    T*& slot = Slots()[index];
    if (slot == nullptr) slot = new (std::nothrow) T();
    return slot;
  }
  // Item(Count() - 1); nullptr when the list is empty.
  T* Last() { return count_ == 0 ? nullptr : Item(count_ - 1); }

  // InsertAt(item, Count()).
  int Add(const T& item) { return InsertAt(item, count_); }

  // Stores item.Clone() at `position`, clamped to Count(), moving the items
  // from there on one place up. The caller keeps ownership of `item`, which
  // may be an item of this list. Returns 0, -1 for a negative position, or
  // 200 when memory runs out (the list is unchanged if the clone failed and
  // cleared if the slot array could not grow).
  int InsertAt(const T& item, int32_t position) {
    if (position < 0) return -1;
    // Cloned first so that a failed clone leaves the list as it was.
    T* copy = item.Clone();
    if (copy == nullptr) return kErrOutOfMemory;
    if (int rc = SetCount(count_ + 1); rc != kOk) {
      delete copy;
      return rc;
    }
    if (position > count_ - 1) position = count_ - 1;
    T** slots = Slots();
    for (int32_t i = count_ - 1; i > position; --i) slots[i] = slots[i - 1];
    slots[position] = copy;
    return kOk;
  }

  // Destroys every item and returns to the inline slots. Always 0.
  int Clear() {
    T** slots = Slots();
    for (int32_t i = 0; i < count_; ++i) {
      delete slots[i];
      slots[i] = nullptr;
    }
    delete[] heap_;
    heap_ = nullptr;
    count_ = 0;
    capacity_ = kInlineSlots;
    return kOk;
  }

 private:
  // The largest count whose doubled capacity still fits 32 bits.
  static constexpr int32_t kMaxCount = 0x3FFFFFFF;

  T** Slots() { return heap_ != nullptr ? heap_ : inline_; }

  // REQUIRES: this list is empty and on its inline slots.
  void TakeFrom(ItemList& other) noexcept {
    for (int32_t i = 0; i < kInlineSlots; ++i) {
      inline_[i] = other.inline_[i];
      other.inline_[i] = nullptr;
    }
    heap_ = std::exchange(other.heap_, nullptr);
    count_ = std::exchange(other.count_, 0);
    capacity_ = std::exchange(other.capacity_, kInlineSlots);
  }

  int32_t count_ = 0;
  int32_t capacity_ = kInlineSlots;
  T* inline_[kInlineSlots] = {};
  T** heap_ = nullptr;  // owned; exists exactly while the list has grown past 20
};

}  // namespace orvelan
