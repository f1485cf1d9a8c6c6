#include "ofx/request_template.h"

#include <cstdlib>

#include "base/text_util.h"

namespace orvelan {

int AppendRequestElement(ByteString& out, bool xml, std::string_view name, std::string_view value) {
  int rc = out.AppendChar('<') | out.Append(name) | out.AppendChar('>') | out.Append(value);
  if (xml) rc |= out.Append("</") | out.Append(name) | out.AppendChar('>');
  return rc | out.Append("\r\n");
}

int RequestTemplate::Expand(ByteString& out, const std::string_view* arguments, int32_t count, bool clear_first) const {
  if (clear_first) out.Clear();
  const std::string_view text = text_.View();
  // Copies runs between markers whole: a request is mostly fixed text.
  size_t at = 0;
  while (at < text.size()) {
    const size_t marker = text.find(kMarker, at);
    if (marker == std::string_view::npos) return out.Append(text.substr(at));
    if (marker > at) {
      if (int rc = out.Append(text.substr(at, marker - at)); rc != kOk) return rc;
    }
    if (marker + 1 < text.size() && text[marker + 1] == kMarker) {
      if (int rc = out.AppendChar(kMarker); rc != kOk) return rc;
      at = marker + 2;
      continue;
    }
    const size_t close = text.find(kMarker, marker + 1);
    if (close == std::string_view::npos) return out.Append(text.substr(marker + 1));
    const ByteString number(text.substr(marker + 1, close - marker - 1));
    const int32_t slot = ParseInt32(number.Data());
    if (slot >= 0 && slot < count) {
      if (int rc = out.Append(arguments[slot]); rc != kOk) return rc;
    }
    at = close + 1;
  }
  return kOk;
}

}  // namespace orvelan
