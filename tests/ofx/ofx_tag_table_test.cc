#include "ofx/ofx_tag_table.h"

#include <dirent.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/kept_text_check.h"
#include "support/tree_dump.h"

namespace orvelan {
namespace {

std::vector<std::string> Words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string w; in >> w;) words.push_back(w);
  return words;
}

TEST(OFXTagTableTest, RegistersTheDictionaryOnce) {
  OFXTagTable table;
  table.InitDefaults();
  ASSERT_EQ(table.RegisterAggregates(), 0);
  const std::string first = table.ExtraTags();
  const std::vector<std::string> names = Words(first);
  EXPECT_EQ(names.size(), 421u);
  EXPECT_EQ(names.front(), "SIGNUPMSGSRQV1");
  EXPECT_EQ(names.back(), "MFACHALLENGE");
  EXPECT_EQ(first.front(), ' ');
  EXPECT_EQ(first.back(), ' ');
  ASSERT_EQ(table.RegisterAggregates(), 0);
  EXPECT_EQ(table.ExtraTags(), first);
}

TEST(OFXTagTableTest, ClosesLeavesOfAnSGMLTransaction) {
  OFXTagTable table;
  table.InitDefaults();
  table.RegisterAggregates();
  ASSERT_EQ(table.Parse("<STMTTRN>\r\n<TRNTYPE>DEBIT\r\n<TRNAMT>-10.00\r\n</STMTTRN>\r\n"), 0);
  ASSERT_EQ(table.SelectPath("/STMTTRN"), 0);
  EXPECT_EQ(table.ChildCount(), 2);
  EXPECT_STREQ(table.ChildName(0), "TRNTYPE");
  EXPECT_STREQ(table.ChildText(0), "DEBIT");
  EXPECT_STREQ(table.ChildName(1), "TRNAMT");
  EXPECT_STREQ(table.ChildText(1), "-10.00");
}

TEST(OFXTagTableTest, UnknownAggregateNeedsExtraTags) {
  const char* response = "<OFX><IMAGEMSGSRSV1><IMAGETRNRS><TRNUID>1</IMAGETRNRS></IMAGEMSGSRSV1></OFX>";
  for (bool extra : {false, true}) {
    SCOPED_TRACE(extra);
    OFXTagTable table;
    table.InitDefaults();
    if (extra) table.SetExtraTags("IMAGEMSGSRSV1,IMAGETRNRS");
    table.RegisterAggregates();
    EXPECT_EQ(table.Parse(response), extra ? 0 : 201);
  }
}

std::string CorpusDir() {
  if (const char* dir = std::getenv("ORVELAN_CORPUS_DIR")) return dir;
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  return std::string(source != nullptr ? source : ".") + "/../shared/corpus";
}

// Every real file parses as the engine parses it, and /OFX is its root.
TEST(OFXTagTableTest, CorpusFilesParse) {
  DIR* dir = opendir(CorpusDir().c_str());
  if (dir == nullptr) GTEST_SKIP() << "no corpus at " << CorpusDir();
  int files = 0;
  while (const dirent* entry = readdir(dir)) {
    const std::string name = entry->d_name;
    if (name[0] == '.') continue;
    SCOPED_TRACE(name);
    std::ifstream in(CorpusDir() + "/" + name, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    OFXTagTable table;
    table.InitDefaults();
    table.RegisterAggregates();
    ASSERT_EQ(table.Parse(text.c_str()), 0) << table.GetLastError();
    ASSERT_EQ(table.SelectPath("/OFX"), 0) << table.GetLastError();
    EXPECT_STREQ(table.ElementName(), "OFX");
    EXPECT_EQ(table.Parser().Finish(), 0) << table.Parser().ErrorText();

    // The same file a byte at a time gives the same tree and kept text.
    OFXTagTable bytewise;
    bytewise.InitDefaults();
    bytewise.RegisterAggregates();
    for (size_t i = 0; i < text.size() && text[i] != '\0'; ++i) ASSERT_EQ(bytewise.Parser().Feed(&text[i], 1), 0);
    EXPECT_EQ(testing::DumpTree(bytewise.Tree()), testing::DumpTree(table.Tree()));
    EXPECT_EQ(bytewise.Parser().KeptText().View(), table.Parser().KeptText().View());

    // And parsed over the caller's text, every element cuts the same markup.
    OFXTagTable retained;
    retained.InitDefaults();
    retained.RegisterAggregates();
    ASSERT_EQ(retained.ParseRetained(text), 0) << retained.GetLastError();
    testing::ExpectSameKeptText(table.Parser(), retained.Parser(), false);
    ++files;
  }
  closedir(dir);
  EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace orvelan

namespace orvelan {
namespace {

// A statement with every optional field pattern, SGML or XML.
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
    copied.InitDefaults();
    copied.RegisterAggregates();
    ASSERT_EQ(copied.Parse(text.c_str()), 0) << copied.GetLastError();
    OFXTagTable retained;
    retained.InitDefaults();
    retained.RegisterAggregates();
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
