#include "core/text_converter.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// Callers hand the result on after their own text is gone, and may hold a
// converted and a widened text at once.
TEST(TextConverterTest, ResultsAreOwnedCopiesPerDirection) {
  TextConverter converter;
  const std::string long_text(300, 'x');
  std::string host = "OFXUser";
  const char* converted = converter.Convert(host.c_str());
  host.assign("clobbered");
  const char* widened = converter.Widen(long_text.c_str());
  EXPECT_STREQ(converted, "OFXUser");
  EXPECT_STREQ(widened, long_text.c_str());

  // Feeding a result back in must not read freed or overwritten bytes.
  EXPECT_STREQ(converter.Widen(converter.Widen(widened)), long_text.c_str());
  EXPECT_STREQ(converter.Convert(converter.Convert(converted)), "OFXUser");

  EXPECT_STREQ(converter.Convert(nullptr), "");
  EXPECT_STREQ(converter.Widen(nullptr), "");
}

}  // namespace
}  // namespace orvelan
