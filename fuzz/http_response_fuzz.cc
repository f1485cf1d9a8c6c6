// Feeds untrusted response bytes to the HTTP response parser, cut into pieces
// at positions taken from the input itself, with compression allowed.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "http/http_response_parser.h"

namespace {

struct NullSink : orvelan::HttpResponseSink {
  void OnStatus(std::string_view, int, std::string_view) override {}
  void OnHeader(std::string_view, std::string_view, std::string_view) override {}
  void OnHeadEnd() override {}
  void OnBody(std::string_view, int64_t, int) override {}
  void OnEnd() override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const size_t step = 1 + data[0] % 64;  // the first byte chooses the piece size
  const bool no_body = (data[0] & 0x80) != 0;  // and whether the body is expected
  std::string_view wire(reinterpret_cast<const char*>(data) + 1, size - 1);
  NullSink sink;
  orvelan::HttpResponseParser parser(&sink);
  parser.Begin(true, no_body);
  while (!wire.empty()) {
    const size_t n = wire.size() < step ? wire.size() : step;
    if (parser.Feed(wire.substr(0, n)) != 0) break;
    wire.remove_prefix(n);
  }
  parser.Finish();
  return 0;
}
