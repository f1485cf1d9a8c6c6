#include "ofx/ofx_tag_table.h"

#include <string>

#include <gtest/gtest.h>

#include "support/kept_text_check.h"
#include "support/test_ofx_service.h"
#include "support/tree_dump.h"

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

// Every real file parses as the engine parses it, and /OFX is its root.
TEST(OFXTagTableTest, CorpusFilesParse) {
  const auto files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no corpus";
  for (const auto& [name, path] : files) {
    SCOPED_TRACE(name);
    const std::string text = Slurp(path);
    OFXTagTable table;
    Init(table);
    ASSERT_EQ(table.Parse(text.c_str()), 0) << table.GetLastError();
    ASSERT_EQ(table.SelectPath("/OFX"), 0) << table.GetLastError();
    EXPECT_STREQ(table.ElementName(), "OFX");
    EXPECT_EQ(table.Parser().Finish(), 0) << table.Parser().ErrorText();

    // The same file a byte at a time gives the same tree and kept text.
    OFXTagTable bytewise;
    Init(bytewise);
    for (size_t i = 0; i < text.size() && text[i] != '\0'; ++i) ASSERT_EQ(bytewise.Parser().Feed(&text[i], 1), 0);
    EXPECT_EQ(testing::DumpTree(bytewise.Tree()), testing::DumpTree(table.Tree()));
    EXPECT_EQ(bytewise.Parser().KeptText().View(), table.Parser().KeptText().View());
  }
}

// A statement with every optional field pattern, SGML or XML, long enough
// to cross any buffer the parser keeps.
std::string GeneratedStatement(int transactions, bool xml) {
  std::string s = xml ? "<?xml version=\"1.0\"?>\r\n" : "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n";
  const auto leaf = [&](const std::string& name, const std::string& value) {
    s += "<" + name + ">" + value + (xml ? "</" + name + ">" : "") + "\r\n";
  };
  s += "<OFX>\r\n<BANKMSGSRSV1>\r\n<STMTTRNRS>\r\n";
  leaf("TRNUID", "1001");
  s += "<STMTRS>\r\n<BANKTRANLIST>\r\n";
  for (int i = 0; i < transactions; ++i) {
    s += "<STMTTRN>\r\n";
    leaf("TRNTYPE", i % 4 == 0 ? "CREDIT" : "DEBIT");
    leaf("TRNAMT", std::to_string(i) + ".10");
    if (i % 5 == 0) leaf("CHECKNUM", std::to_string(1000 + i));
    if (i % 3 == 0) leaf("NAME", "A &amp; B <![CDATA[x]]>");
    if (i % 2 == 0) leaf("MEMO", "");
    s += "</STMTTRN>";
    s += i % 7 == 0 ? "<!-- gap -->" : "\r\n";
  }
  s += "</BANKTRANLIST>\r\n</STMTRS>\r\n</STMTTRNRS>\r\n</BANKMSGSRSV1>\r\n</OFX>\r\n";
  return s;
}

TEST(OFXTagTableTest, RetainedParseCutsWhatTheCopyCuts) {
  for (bool xml : {false, true}) {
    SCOPED_TRACE(xml ? "xml" : "sgml");
    const std::string text = GeneratedStatement(300, xml);
    OFXTagTable copied;
    Init(copied);
    ASSERT_EQ(copied.Parse(text.c_str()), 0) << copied.GetLastError();
    OFXTagTable retained;
    Init(retained);
    ASSERT_EQ(retained.ParseRetained(text), 0) << retained.GetLastError();
    testing::ExpectSameKeptText(copied.Parser(), retained.Parser(), false);
    // Through the document's accessors too, by record offset.
    for (uint32_t e : testing::ElementRecords(copied.Tree())) {
      const std::string path = "*" + std::to_string(e);
      ASSERT_EQ(copied.SelectPath(path), 0);
      ASSERT_EQ(retained.SelectPath(path), 0);
      ASSERT_STREQ(retained.ElementSubtree(), copied.ElementSubtree()) << path;
      ASSERT_STREQ(retained.ElementContents(), copied.ElementContents()) << path;
    }
    // The end tags written out, not another copy of the input.
    if (!xml) {
      EXPECT_LT(retained.Parser().KeptTextMemory(), static_cast<size_t>(copied.Parser().KeptLength()) * 2 / 3);
    }
  }
}

}  // namespace
}  // namespace orvelan
