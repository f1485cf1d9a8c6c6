#include "http/http_response_parser.h"

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_gzip.h"

namespace orvelan {
namespace {

struct Recorder : HttpResponseSink {
  std::string status;
  std::string headers;  // "name=value|" per header
  std::string body;
  int64_t last_received = 0;
  std::vector<int> percents;
  int ends = 0;
  void OnStatus(std::string_view version, int code, std::string_view description) override {
    status = std::string(version) + "|" + std::to_string(code) + "|" + std::string(description);
  }
  void OnHeader(std::string_view, std::string_view name, std::string_view value) override {
    headers += std::string(name) + "=" + std::string(value) + "|";
  }
  void OnHeadEnd() override { headers += "$"; }
  void OnBody(std::string_view data, int64_t received, int percent) override {
    body.append(data);
    last_received = received;
    percents.push_back(percent);
  }
  void OnEnd() override { ++ends; }
};

struct Outcome {
  Recorder seen;
  int rc = 0;
  bool complete = false;
  std::string error;
};

Outcome Parse(const std::vector<std::string>& pieces, bool close_at_end = false, bool compression = true) {
  Outcome o;
  HttpResponseParser parser(&o.seen);
  parser.Begin(compression);
  for (const std::string& piece : pieces) {
    o.rc = parser.Feed(piece);
    if (o.rc != 0) break;
  }
  if (close_at_end) parser.Finish();
  o.complete = parser.IsComplete();
  o.error = parser.ErrorText();
  return o;
}

const std::string kGzipBody = Compress("hello, gzip", true);
const std::string kDeflateBody = Compress("hello, deflate", false);

std::string Hex(size_t n) {
  char text[20];
  std::snprintf(text, sizeof text, "%zx", n);
  return text;
}

struct ParseCase {
  const char* name;
  std::string wire;
  bool close_at_end;
  int rc;
  bool complete;
  const char* status;
  const char* headers;
  const char* body;
  const char* error = nullptr;  // checked when given
};

const ParseCase kCases[] = {
    {"length-delimited", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nX-A:  b \r\n\r\nhelloEXTRA", false, 0, true,
     "HTTP/1.1|200|OK", "Content-Length=5|X-A=b |$", "hello"},
    {"LF-only line ends", "HTTP/1.0 200 Fine\nContent-Length: 2\n\nok", false, 0, true, "HTTP/1.0|200|Fine",
     "Content-Length=2|$", "ok"},
    {"close-delimited", "HTTP/1.1 200 OK\r\n\r\nuntil the end", true, 0, true, "HTTP/1.1|200|OK", "$",
     "until the end"},
    {"close-delimited, still open", "HTTP/1.1 200 OK\r\n\r\nmore to come", false, 0, false, "HTTP/1.1|200|OK", "$",
     "more to come"},
    {"chunked", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\nA;ext=1\r\n0123456789\r\n0\r\n\r\n",
     false, 0, true, "HTTP/1.1|200|OK", "Transfer-Encoding=chunked|$", "abc0123456789"},
    {"chunk data holding CR LF", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\na\r\nb\r\n0\r\n\r\n", false, 0,
     true, "HTTP/1.1|200|OK", "Transfer-Encoding=chunked|$", "a\r\nb"},
    {"chunk size overflowing ends body",
     "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1FFFFFFFFFFFFFFFF\r\nabc", false, 0, true,
     "HTTP/1.1|200|OK", "Transfer-Encoding=chunked|$", ""},
    {"interim 100 skipped", "HTTP/1.1 100 Continue\r\nX: y\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nz", false,
     0, true, "HTTP/1.1|200|OK", "Content-Length=1|$", "z"},
    {"interim ended by a status line", "HTTP/1.1 102 Processing\r\nHTTP/1.1 201 Made\r\nContent-Length: 1\r\n\r\nz",
     false, 0, true, "HTTP/1.1|201|Made", "Content-Length=1|$", "z"},
    {"no head at all", "<OFX>\r\nbody", true, 0, true, "", "", "<OFX>\r\nbody"},
    {"odd header lines", "HTTP/1.1 200 OK\r\nNoColon\r\n\tfolded\r\nEmpty:\r\nContent-Length: 0\r\n\r\n", false, 0,
     true, "HTTP/1.1|200|OK", "NoColon=|=folded|Empty=|Content-Length=0|$", ""},
    {"status without description", "HTTP/1.1 404\r\nContent-Length: 0\r\n\r\n", false, 0, true, "HTTP/1.1|404|",
     "Content-Length=0|$", ""},
    {"gzip", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + kGzipBody, true, 0, true, "HTTP/1.1|200|OK",
     "Content-Encoding=gzip|$", "hello, gzip"},
    {"deflate chunked",
     "HTTP/1.1 200 OK\r\ncontent-encoding: deflate\r\nTransfer-Encoding: chunked\r\n\r\n" +
         Hex(kDeflateBody.size()) + "\r\n" + kDeflateBody + "\r\n0\r\n\r\n",
     false, 0, true, "HTTP/1.1|200|OK", "content-encoding=deflate|Transfer-Encoding=chunked|$", "hello, deflate"},
    {"gzip third byte not 8", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n\x1f\x8b\x07\0\0\0\0\0\0\x03zz", false,
     102, false, "HTTP/1.1|200|OK", "Content-Encoding=gzip|$", ""},
    {"gzip with broken stream",
     "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + std::string("\x1f\x8b\x08\0\0\0\0\0\0\x03\xff\xff\xff", 13),
     false, 151, false, "HTTP/1.1|200|OK", "Content-Encoding=gzip|$", ""},
    {"Content-Length overflowing 64 bits", "HTTP/1.1 200 OK\r\nContent-Length: 18446744073709551617\r\n\r\nabc", false,
     151, false, "HTTP/1.1|200|OK", "", "", "HTTP protocol error. Invalid Content-Length."},
    {"Content-Length one past the largest", "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775808\r\n\r\nabc", false,
     151, false, "HTTP/1.1|200|OK", "", "", "HTTP protocol error. Invalid Content-Length."},
    {"Content-Length the largest", "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\nabc", false, 0,
     false, "HTTP/1.1|200|OK", "Content-Length=9223372036854775807|$", "abc"},
    {"two Content-Length disagreeing", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 3\r\n\r\nhello", false,
     151, false, "HTTP/1.1|200|OK", "Content-Length=5|", "", "HTTP protocol error. Conflicting Content-Length headers."},
    {"two Content-Length agreeing", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\ncontent-length: 3\r\n\r\nabcd", false, 0,
     true, "HTTP/1.1|200|OK", "Content-Length=3|content-length=3|$", "abc"},
};

// However the bytes arrive, whole, in two pieces cut anywhere or one by one, the
// response must be the same (gzip excepted: its header is checked in the first piece).
TEST(HttpResponseParserTest, ParsesOrRejectsHoweverTheBytesArrive) {
  for (const ParseCase& c : kCases) {
    SCOPED_TRACE(c.name);
    const Outcome whole = Parse({c.wire}, c.close_at_end);
    EXPECT_EQ(whole.seen.status, c.status);
    EXPECT_EQ(whole.seen.ends, c.complete ? 1 : 0);
    std::vector<std::vector<std::string>> feeds = {{c.wire}};
    if (std::string(c.name).find("gzip") == std::string::npos) {
      for (size_t cut = 0; cut <= c.wire.size(); ++cut) feeds.push_back({c.wire.substr(0, cut), c.wire.substr(cut)});
      feeds.emplace_back();
      for (char ch : c.wire) feeds.back().emplace_back(1, ch);
    }
    for (const auto& pieces : feeds) {
      SCOPED_TRACE("first piece " + std::to_string(pieces[0].size()) + " of " + std::to_string(pieces.size()));
      const Outcome o = Parse(pieces, c.close_at_end);
      EXPECT_EQ(o.rc, c.rc);
      EXPECT_EQ(o.complete, c.complete);
      EXPECT_EQ(o.seen.headers, c.headers);
      EXPECT_EQ(o.seen.body, c.body);
      if (c.error != nullptr) {
        EXPECT_EQ(o.error, c.error);
      }
    }
  }
}

// Compression is ignored unless allowed; the answer to HEAD ends with its
// head; a head line longer than the buffer is cut, not fatal.
TEST(HttpResponseParserTest, BodyRulesBeyondTheTable) {
  const std::string gzip_wire = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: " +
                                std::to_string(kGzipBody.size()) + "\r\n\r\n" + kGzipBody;
  const Outcome raw = Parse({gzip_wire}, false, /*compression=*/false);
  EXPECT_TRUE(raw.complete);
  EXPECT_EQ(raw.seen.body, kGzipBody);

  Recorder seen;
  HttpResponseParser parser(&seen);
  parser.Begin(false, /*no_body=*/true);
  EXPECT_EQ(parser.Feed("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n"), 0);
  EXPECT_TRUE(parser.IsComplete());
  EXPECT_EQ(seen.ends, 1);

  const Outcome cut = Parse({"HTTP/1.1 200 OK\r\nX: " + std::string(5000, 'v') + "\r\nContent-Length: 1\r\n\r\nz"});
  EXPECT_TRUE(cut.complete);
  EXPECT_EQ(cut.seen.body, "z");
}

TEST(HttpResponseParserTest, ProgressCountsDecodedBytesAndWirePercent) {
  const Outcome o = Parse({"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nab", "cd"});
  EXPECT_EQ(o.seen.last_received, 4);
  EXPECT_EQ(o.seen.percents, (std::vector<int>{50, 100}));
  EXPECT_EQ(Parse({"HTTP/1.1 200 OK\r\n\r\nab"}).seen.percents, (std::vector<int>{-1}));
}

}  // namespace
}  // namespace orvelan
