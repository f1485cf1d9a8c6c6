#pragma once
#include <zlib.h>

#include <string>

namespace orvelan {

// Compresses `text` as gzip (with_header) or raw deflate, for building
// response bodies in tests.
inline std::string Compress(const std::string& text, bool with_header) {
  z_stream s{};
  deflateInit2(&s, Z_DEFAULT_COMPRESSION, Z_DEFLATED, with_header ? 31 : -15, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&s, text.size()) + 32, '\0');
  s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  s.avail_in = static_cast<uInt>(text.size());
  s.next_out = reinterpret_cast<Bytef*>(&out[0]);
  s.avail_out = static_cast<uInt>(out.size());
  deflate(&s, Z_FINISH);
  out.resize(s.total_out);
  deflateEnd(&s);
  return out;
}

}  // namespace orvelan
