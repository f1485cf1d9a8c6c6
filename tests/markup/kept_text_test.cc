// Kept text over retained input against the copied kept text.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "markup/markup_parser.h"
#include "support/kept_text_check.h"
#include "support/tree_dump.h"

namespace orvelan {
namespace {

struct Case { const char* input; std::vector<const char*> containers; };

const Case kCases[] = {
    {"<A><B>1<C>2</A>", {"A"}},
    {"<A><B>1\n<C x='y'>2\n</A>", {"A"}},
    {"<A><B>1<C/></A>", {"A"}},
    {"<A><B.1>v<B-2>w\r\n<B_3 >x</A>", {"A"}},
    {"<A><B>1</A><A><C>x</C><D>y</A>", {"A"}},
    {"<OFX><STMTTRN>\r\n<TRNTYPE>DEBIT\r\n<NAME>A &amp; B\r\n<MEMO><![CDATA[x]]>\r\n</STMTTRN>"
     "<x:Y xmlns:x='u' a='1'><!-- c --><Z>t</Z></x:Y></OFX>",
     {"OFX", "STMTTRN", "x:Y"}},
    {"HDR:1\r\n\r\n<OFX><?pi x?><!DOCTYPE d><S>\r\n<L>1\r\n<M>2\r\n</S>\r\n</OFX>\r\n", {"OFX", "S"}},
    {"<?xml version='1.0'?><a><b>1</b><c/><d e='f'>g &lt; h</d></a>", {}},
    // Failures part-way through closing a leaf leave the kept text cut short.
    {"<A><x:B>1<C>2</A>", {"A"}},
    {"<A><B>1</C>", {"A"}},
    {"<A><B>1<x:C>2</A>", {"A"}},
    {"<A><B>1", {"A"}},
    {"<A><B>1<", {"A"}},
};

void Configure(MarkupParser& parser, const Case& c) {
  parser.SetBuildDOM(true);
  for (const char* name : c.containers) parser.AddSGMLTag(name);
}

// Retained input reads as the copy, with and without a listener (which sends
// every byte down the one-at-a-time path); a second feed copies the kept text
// out, so the first buffer may go.
TEST(KeptTextTest, RetainedInputReadsAsTheCopy) {
  MarkupListener listener;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.input);
    const std::string text = c.input;
    int rc = 0;
    for (MarkupListener* with : {static_cast<MarkupListener*>(nullptr), &listener}) {
      MarkupParser copied;
      Configure(copied, c);
      copied.SetListener(with);
      rc = copied.Feed(text.data(), text.size());
      MarkupParser retained;
      Configure(retained, c);
      retained.SetListener(with);
      EXPECT_EQ(retained.FeedRetained(text.data(), text.size()), rc);
      testing::ExpectSameKeptText(copied, retained, true);
    }
    MarkupParser copied;
    Configure(copied, c);
    copied.Feed(text.data(), text.size());
    for (size_t cut = 0; cut <= text.size(); ++cut) {
      SCOPED_TRACE("cut at " + std::to_string(cut));
      std::string head = text.substr(0, cut);
      MarkupParser parser;
      Configure(parser, c);
      int got = parser.FeedRetained(head.data(), head.size());
      if (got == 0) got = parser.Feed(text.data() + cut, text.size() - cut);
      head.assign(head.size(), '#');
      EXPECT_EQ(got, rc);
      if (rc == 0) testing::ExpectSameKeptText(copied, parser, false);
    }
  }
}

// Hundreds of closed leaves: long values, a comment between two leaves and
// names of every length move the end tags out of their short form and across
// many seek blocks.
TEST(KeptTextTest, LongRunsOfClosedLeaves) {
  std::string text = "<A>";
  for (int i = 0; i < 300; ++i) {
    text += "<" + std::string(1 + i % 9, 'N') + ">" + std::string(i % 61 == 0 ? 200 : i % 13, 'v');
    text += i % 7 == 0 ? "<!-- c -->\r\n" : "\r\n";
  }
  text += "</A>";
  const Case c{text.c_str(), {"A"}};
  MarkupParser copied;
  Configure(copied, c);
  ASSERT_EQ(copied.Feed(text.data(), text.size()), 0);
  MarkupParser retained;
  Configure(retained, c);
  ASSERT_EQ(retained.FeedRetained(text.data(), text.size()), 0);
  testing::ExpectSameKeptText(copied, retained, false);
  ByteString want;
  ByteString got;
  for (uint32_t begin = 0; begin < static_cast<uint32_t>(copied.KeptLength()); ++begin) {
    copied.CutKeptText(begin, begin + 23, want);
    retained.CutKeptText(begin, begin + 23, got);
    ASSERT_EQ(std::string(got.View()), std::string(want.View())) << begin;
  }
}

TEST(KeptTextTest, OnlyTheFirstFeedAfterResetRefers) {
  MarkupParser parser;
  parser.SetBuildDOM(true);
  parser.AddSGMLTag("A");
  std::string first = "<A><B>1";
  ASSERT_EQ(parser.Feed(first.data(), first.size()), 0);
  std::string second = "<C>2</A>";
  ASSERT_EQ(parser.FeedRetained(second.data(), second.size()), 0);
  first.assign(first.size(), '#');
  second.assign(second.size(), '#');
  EXPECT_EQ(std::string(parser.KeptText().View()), "<A><B>1</B><C>2</C></A>");

  // Without KeepOriginalText there is nothing to refer to.
  parser.Reset();
  parser.SetKeepOriginalText(false);
  std::string third = "<A><B>1</A>";
  ASSERT_EQ(parser.FeedRetained(third.data(), third.size()), 0);
  EXPECT_EQ(parser.KeptLength(), 0);

  // After Reset the parser no longer reads the old text.
  parser.SetKeepOriginalText(true);
  parser.Reset();
  std::string fourth = "<A><B>1<C>2</A>";
  ASSERT_EQ(parser.FeedRetained(fourth.data(), fourth.size()), 0);
  parser.Reset();
  fourth.assign(fourth.size(), '#');
  EXPECT_EQ(parser.KeptLength(), 0);
  ASSERT_EQ(parser.Feed("<A><D>3</A>"), 0);
  EXPECT_EQ(std::string(parser.KeptText().View()), "<A><D>3</D></A>");
}

}  // namespace
}  // namespace orvelan
