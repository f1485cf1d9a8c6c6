#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"

// A fixed request text with numbered slots, expanded into one request part.
//
//   RequestTemplate header;
//   header.Load("VERSION:~0~\r\nOLDFILEUID:~1~\r\n");
//   std::string_view arguments[] = {"102", "NONE"};
//   header.Expand(out, arguments, 2, true);
//
// A slot is the marker, a decimal number and the marker ("~3~"); a doubled
// marker ("~~") writes one marker. A marker that is never closed is dropped
// and the bytes after it are written as they are ("x~0" gives "x0"). Not
// thread-safe.
namespace orvelan {

// One element line of a request: "<NAME>value</NAME>\r\n" in OFX 2.x
// (`xml`), "<NAME>value\r\n" in 1.x, where SGML leaves leaf end tags out.
// 0 or 200.
int AppendRequestElement(ByteString& out, bool xml, std::string_view name, std::string_view value);

class RequestTemplate {
 public:
  static constexpr char kMarker = '~';

  RequestTemplate() = default;

  // Replaces the template text; 0 or 200.
  int Load(std::string_view text) { return text_.Assign(text); }
  const ByteString& Text() const { return text_; }
  bool IsEmpty() const { return text_.IsEmpty(); }

  // Writes the template into `out` (emptied first when `clear_first`) with
  // each slot replaced by its argument. A slot numbered at or above `count`
  // (or negative) writes nothing. Returns 0 or 200.
  int Expand(ByteString& out, const std::string_view* arguments, int32_t count, bool clear_first) const;

 private:
  ByteString text_;
};

}  // namespace orvelan
