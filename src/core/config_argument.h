#pragma once
#include <cstdint>

#include "base/byte_string.h"

// One settings string parsed once, so that each layer of a component can ask
// "is this mine?" with NameIs and read the value in the form it needs.
//
//   "Name=Value"    sets Name          "Name"        queries Name
//   "Name="         sets Name to ""    "Name[3]=x"   sets entry 3 of Name
//
// Everything after the first "=" is the value, further "=" included. An index
// is opened by "[" or "(" and closed by "]" or ")"; the digits of several
// indexes run on ("Name[1][2]=x" has index 12).
namespace orvelan {

class ConfigArgument {
 public:
  ConfigArgument() = default;
  ConfigArgument(const ConfigArgument&) = delete;
  ConfigArgument& operator=(const ConfigArgument&) = delete;

  // Parses `text` (null counts as empty, which is a query of the empty name).
  // Returns 0, or 200 when memory runs out.
  int Parse(const char* text);

  // True when the name equals `name`, ASCII case ignored.
  bool NameIs(const char* name) const;
  // True when the text held no "=".
  bool IsQuery() const { return is_query_; }
  const char* Name() const { return name_.Data(); }
  // -1 when the name carried no index.
  int32_t Index() const { return index_; }
  const char* Value() const { return value_.Data(); }
  int32_t ValueLength() const { return value_.Length(); }
  // Leading digits of the value, 0 when there are none.
  int32_t ValueAsInt() const;
  // True for "TRUE", "yes" or "1" in any case; false for anything else.
  bool ValueAsBool() const;

 private:
  ByteString name_;
  ByteString value_;
  int32_t index_ = -1;
  bool is_query_ = false;
};

}  // namespace orvelan
