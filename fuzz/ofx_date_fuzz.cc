// Dates and amounts come from servers and hosts we do not control; neither a
// text nor a host's pattern may crash or hang the conversions. Layout of an
// input: the text up to the first NUL, then the pattern.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ofx/date_amount_format.h"
#include "ofx/ofx_date_time.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t nul = input.find('\0');
  const std::string_view text = input.substr(0, nul);
  const std::string_view pattern = nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1);

  OFXDateTime when;
  ByteString out;
  when.Parse(text, pattern);
  when.Format(out, pattern);
  when.ParseOFXDate(text);
  when.Format(out, pattern);

  DateAmountFormat format;
  format.SetDateFormat(pattern);
  format.FormatDate(out, text);
  format.ParseUserDate(out, text);
  format.FormatAmount(text);
  return 0;
}
