#include "core/config_argument.h"

#include "base/text_util.h"

namespace orvelan {

int ConfigArgument::Parse(const char* text) {
  name_.Clear();
  value_.Clear();
  index_ = -1;
  is_query_ = false;
  if (text == nullptr) text = "";

  // Index digits are kept across indexes on purpose: "[1][2]" reads as 12.
  ByteString index_digits;
  bool in_index = false;
  const char* p = text;
  for (; *p != '\0'; ++p) {
    const char c = *p;
    if (in_index) {
      if (c == ']' || c == ')') {
        in_index = false;
        index_ = ParseInt32(index_digits.Data());
      } else if (int rc = index_digits.AppendChar(c); rc != kOk) {
        return rc;
      }
      continue;
    }
    if (c == '=') break;
    if (c == '[' || c == '(') {
      in_index = true;
    } else if (int rc = name_.AppendChar(c); rc != kOk) {
      return rc;
    }
  }
  if (*p == '=') return value_.Assign(p + 1);
  is_query_ = true;
  return kOk;
}

bool ConfigArgument::NameIs(const char* name) const { return CompareNoCase(name_.Data(), name) == 0; }

int32_t ConfigArgument::ValueAsInt() const { return ParseInt32(value_.Data()); }

bool ConfigArgument::ValueAsBool() const {
  return value_.EqualsNoCase("TRUE") || value_.EqualsNoCase("yes") || value_.EqualsNoCase("1");
}

}  // namespace orvelan
