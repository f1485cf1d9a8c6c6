#pragma once
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/byte_string.h"
#include "base/error_codes.h"

// A bounded list of name/value pairs: the parser's attributes of one tag, its
// open elements (value: the element's pending text) and its namespaces in
// scope. Slots are created on first use and kept across Clear, so a parser
// that is reused allocates nothing once its tables have warmed up.
namespace orvelan {

class NameValueTable {
 public:
  static constexpr int32_t kCapacity = 256;

  NameValueTable() = default;
  NameValueTable(const NameValueTable&) = delete;
  NameValueTable& operator=(const NameValueTable&) = delete;

  // 200 when the table already holds kCapacity entries or memory runs out.
  int Add(std::string_view name, std::string_view value = {}) {
    // Once warm, a slot is there: two short copies, no call.
    if (count_ < kCapacity && names_[count_] != nullptr) {
      if (int rc = names_[count_]->Assign(name); rc != kOk) return rc;
      if (int rc = values_[count_]->Assign(value); rc != kOk) return rc;
      ++count_;
      return kOk;
    }
    return AddSlow(name, value);
  }
  int32_t Count() const { return count_; }
  // REQUIRES: 0 <= i < Count() for these four.
  const ByteString& NameAt(int32_t i) const { return *names_[i]; }
  const ByteString& ValueAt(int32_t i) const { return *values_[i]; }
  ByteString& ValueBuffer(int32_t i) { return *values_[i]; }
  const ByteString& LastName() const { return *names_[count_ - 1]; }
  // 433 when empty.
  int RemoveLast() {
    if (count_ == 0) return kErrTableEmpty;
    --count_;
    return kOk;
  }
  // Index of the first (or, with from_last, the last) entry named `name`; -1 if none.
  int32_t Find(std::string_view name, bool from_last) const;
  void Clear();

 private:
  int AddSlow(std::string_view name, std::string_view value);
  std::unique_ptr<ByteString> names_[kCapacity];
  std::unique_ptr<ByteString> values_[kCapacity];
  int32_t count_ = 0;
};

}  // namespace orvelan
