#pragma once
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/byte_string.h"

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
  int Add(std::string_view name, std::string_view value = {});
  int32_t Count() const { return count_; }
  // REQUIRES: 0 <= i < Count() for these four.
  const ByteString& NameAt(int32_t i) const { return *names_[i]; }
  const ByteString& ValueAt(int32_t i) const { return *values_[i]; }
  ByteString& ValueBuffer(int32_t i) { return *values_[i]; }
  const ByteString& LastName() const { return *names_[count_ - 1]; }
  // 433 when empty.
  int RemoveLast();
  // Index of the first (or, with from_last, the last) entry named `name`; -1 if none.
  int32_t Find(std::string_view name, bool from_last) const;
  void Clear();

 private:
  std::unique_ptr<ByteString> names_[kCapacity];
  std::unique_ptr<ByteString> values_[kCapacity];
  int32_t count_ = 0;
};

}  // namespace orvelan
