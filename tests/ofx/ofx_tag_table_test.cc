#include "ofx/ofx_tag_table.h"

#include <string>

#include <gtest/gtest.h>

#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

void Init(OFXTagTable& table, const char* extra_tags = nullptr) {
  table.InitDefaults();
  if (extra_tags != nullptr) table.SetExtraTags(extra_tags);
  ASSERT_EQ(table.RegisterAggregates(), 0);
}

TEST(OFXTagTableTest, RegistersTheDictionaryOnce) {
  OFXTagTable table;
  Init(table);
  const std::string first = table.ExtraTags();
  EXPECT_EQ(first.rfind(" SIGNUPMSGSRQV1 ", 0), 0u) << first;
  ASSERT_EQ(table.RegisterAggregates(), 0);
  EXPECT_EQ(table.ExtraTags(), first);
}

TEST(OFXTagTableTest, UnknownAggregateNeedsExtraTags) {
  const char* response = "<OFX><IMAGEMSGSRSV1><IMAGETRNRS><TRNUID>1</IMAGETRNRS></IMAGEMSGSRSV1></OFX>";
  for (bool extra : {false, true}) {
    SCOPED_TRACE(extra);
    OFXTagTable table;
    Init(table, extra ? "IMAGEMSGSRSV1,IMAGETRNRS" : nullptr);
    EXPECT_EQ(table.Parse(response), extra ? 0 : 201);
  }
}

// Every real file parses as the engine parses it, and /OFX is its root. How
// the bytes arrive (copied, retained, in pieces) is the parse digests' part.
TEST(OFXTagTableTest, CorpusFilesParse) {
  const auto files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no corpus";
  for (const auto& [name, path] : files) {
    SCOPED_TRACE(name);
    OFXTagTable table;
    Init(table);
    ASSERT_EQ(table.Parse(Slurp(path).c_str()), 0) << table.GetLastError();
    ASSERT_EQ(table.SelectPath("/OFX"), 0) << table.GetLastError();
    EXPECT_EQ(table.Parser().Finish(), 0) << table.Parser().ErrorText();
  }
}

// A retained SGML parse keeps the end tags it writes out, not another copy of the input.
TEST(OFXTagTableTest, RetainedParseKeepsLessThanACopy) {
  std::string text = "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKTRANLIST>\r\n";
  for (int i = 0; i < 300; ++i) text += "<STMTTRN>\r\n<TRNTYPE>DEBIT\r\n<TRNAMT>" + std::to_string(i) + ".10\r\n</STMTTRN>\r\n";
  text += "</BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>\r\n";
  OFXTagTable copied, retained;
  Init(copied);
  Init(retained);
  ASSERT_EQ(copied.Parse(text.c_str()), 0) << copied.GetLastError();
  ASSERT_EQ(retained.ParseRetained(text), 0) << retained.GetLastError();
  EXPECT_LT(retained.Parser().KeptTextMemory(), static_cast<size_t>(copied.Parser().KeptLength()) * 2 / 3);
}

}  // namespace
}  // namespace orvelan
