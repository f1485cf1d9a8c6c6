#include "http/inflater.h"

#include <algorithm>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "support/test_gzip.h"

namespace orvelan {
namespace {

std::string Header(uint8_t flags, const std::string& after) {
  std::string h = {'\x1f', '\x8b', '\x08', static_cast<char>(flags), 0, 0, 0, 0, 0, 3};
  return h + after;
}

struct HeaderCase {
  const char* name;
  std::string bytes;
  int64_t length;
};

TEST(InflaterTest, GzipHeaderLength) {
  const HeaderCase cases[] = {
      {"plain", Header(0, "xyz"), 10},
      {"FEXTRA", Header(4, std::string("\x02\x00", 2) + "ab" + "z"), 14},
      {"FNAME", Header(8, std::string("name\0z", 6)), 15},
      {"FCOMMENT", Header(16, std::string("note\0z", 6)), 15},
      {"FNAME and FCOMMENT", Header(24, std::string("a\0b\0", 4)), 14},
      {"FHCRC", Header(2, "cc"), 12},
      {"third byte not 8", std::string("\x1f\x8b\x07\0\0\0\0\0\0\x03", 10), -1},
      {"reserved flag bit", Header(0x20, ""), -1},
      {"not gzip", "hello world", -1},
      {"cut in the fixed part", std::string("\x1f\x8b\x08\0\0", 5), -1},
      {"FNAME without NUL", Header(8, "name"), -1},
      {"FEXTRA longer than data", Header(4, std::string("\x09\x00", 2) + "ab"), -1},
      {"FHCRC cut", Header(2, "c"), -1},
  };
  for (const HeaderCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Inflater::GzipHeaderLength(c.bytes), c.length);
  }
}

// Collects what the inflater hands on and the largest step it took.
struct Steps {
  std::string out;
  size_t largest = 0;
  std::function<void(std::string_view)> Sink() {
    return [this](std::string_view step) {
      out.append(step);
      largest = std::max(largest, step.size());
    };
  }
};

TEST(InflaterTest, InflatesGzipAndDeflateInAnyPiecesAndBoundedSteps) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "line " + std::to_string(i) + "\n";  // inflates past one output step
  for (bool gzip : {true, false}) {
    SCOPED_TRACE(gzip ? "gzip" : "deflate");
    const std::string packed = Compress(text, gzip);
    for (size_t piece : {size_t{16}, size_t{1000}, packed.size()}) {
      Inflater inflater;
      ASSERT_EQ(inflater.Start(gzip ? Inflater::Format::kGzip : Inflater::Format::kDeflate), 0);
      Steps steps;
      // The gzip header must arrive whole, as it does in the first read of a body.
      size_t at = 0;
      if (gzip) {
        ASSERT_EQ(inflater.Inflate(packed.substr(0, 10), steps.Sink()), 0);
        at = 10;
      }
      for (; at < packed.size(); at += piece) ASSERT_EQ(inflater.Inflate(packed.substr(at, piece), steps.Sink()), 0);
      EXPECT_EQ(steps.out, text);
      EXPECT_LE(steps.largest, Inflater::kOutputStep);
    }
  }
}

TEST(InflaterTest, FailureIsSticky) {
  Inflater inflater;
  ASSERT_EQ(inflater.Start(Inflater::Format::kGzip), 0);
  Steps steps;
  EXPECT_EQ(inflater.Inflate("not a gzip header", steps.Sink()), Inflater::kBadHeader);
  EXPECT_EQ(inflater.Inflate(Compress("x", true), steps.Sink()), Inflater::kFailed);

  ASSERT_EQ(inflater.Start(Inflater::Format::kDeflate), 0);
  EXPECT_EQ(inflater.Inflate(std::string("\xff\xff\xff\xff", 4), steps.Sink()), Inflater::kFailed);
  EXPECT_EQ(inflater.Inflate(Compress("x", false), steps.Sink()), Inflater::kFailed);
  EXPECT_TRUE(steps.out.empty());
}

}  // namespace
}  // namespace orvelan
