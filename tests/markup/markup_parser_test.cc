#include "markup/markup_parser.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/tree_dump.h"

namespace orvelan {
namespace {

struct Outcome { int rc = 0; std::string error; std::string tree; std::string kept; };

Outcome Parse(const std::string& text, const std::vector<const char*>& containers = {},
              void (*configure)(MarkupParser&) = nullptr) {
  MarkupParser parser;
  parser.SetBuildDOM(true);
  for (const char* name : containers) parser.AddSGMLTag(name);
  if (configure != nullptr) configure(parser);
  Outcome o;
  o.rc = parser.Feed(text.data(), text.size());
  o.error = parser.ErrorText();
  o.tree = testing::DumpTree(parser.Tree());
  o.kept = parser.KeptText().View();
  return o;
}

// rc 0: the tree; otherwise the error text.
struct TreeCase { const char* name; std::string input; std::vector<const char*> containers; int rc; std::string tree; };

const TreeCase kTreeCases[] = {
    {"plain XML", "<A><B>1</B></A>", {}, 0, "A(B=1)"},
    {"SGML leaves closed by the next tag and the parent's end", "<A><B>1<C>2</A>", {"A"}, 0, "A(B=1,C=2)"},
    {"entities and character references", "<A>x &lt; y &#65;&#300;&bogus &apos;&quot;&gt;&amp;</A>", {}, 0,
     "A=x < y A&#300;&bogus '\">&"},
    {"hex digits in either case", "<A>&#x4A;&#x6a;</A>", {}, 0, "A=Jj"},
    {"CDATA keeps its spaces, other marked sections are dropped", "<A><![CDATA[ <x> ]]><![IGNORE[x]]></A>", {}, 0,
     "A= <x> "},
    {"text outside the root is dropped", "a < b<A>a < b</A>", {}, 0, "A=a< b"},
    {"text trimmed at both ends, inner spaces kept", "<A>\n  one  two \r\n</A>", {}, 0, "A=one  two"},
    {"mixed content concatenated in order", "<A>x<B/>y</A>", {}, 0, "A=xy(B)"},
    {"empty element and attributes, xml: needing no declaration", "<A a='1' b=\"2\" c=3 d xml:lang='en'><B/></A>", {},
     0, "A(B)"},
    {"declared prefixes", "<x:A xmlns:x='u'><x:B/></x:A>", {}, 0, "x:A(x:B)"},
    {"comments, instructions and doctype skipped", "<?xml version='1.0'?><!DOCTYPE A [<!ENTITY e 'x'>]><!-- c --><A>1</A>",
     {}, 0, "A=1"},
    {"lt not followed by a name is text; text before a lt is trimmed", "<A>1 < 2 </ 3</A>", {}, 0, "A=1< 2</ 3"},
    {"UTF-8 passes as bytes", "<A>caf\xC3\xA9</A>", {}, 0, "A=caf\xC3\xA9"},
    {"unbalanced end tag", "<A><B>1</A>", {}, 201, "Unbalanced element tag: A"},
    {"empty unquoted value", "<A b=>", {}, 204, "Invalid XML markup."},
    {"double dash inside a comment", "<!-- a -- b -->", {}, 204, "Invalid XML markup."},
    {"undeclared element prefix", "<x:A/>", {}, 202, "Unknown element prefix (can't find namespace): x"},
    {"undeclared attribute prefix", "<A x:y='1'/>", {}, 203, "Unknown attribute prefix (can't find namespace): x"},
};

TEST(MarkupParserTest, BuildsTheTreeOrFails) {
  for (const TreeCase& c : kTreeCases) {
    SCOPED_TRACE(c.name);
    const Outcome o = Parse(c.input, c.containers);
    EXPECT_EQ(o.rc, c.rc) << o.error;
    EXPECT_EQ(c.rc == 0 ? o.tree : o.error, c.tree);
  }
}

TEST(MarkupParserTest, FailsAtTheByteAfterTheBadEndTag) {
  MarkupParser parser;
  parser.SetBuildDOM(true);
  EXPECT_EQ(parser.Feed("<A></A x"), 0);
  EXPECT_EQ(parser.Feed(">"), 204);
}

TEST(MarkupParserTest, KeptTextSpellsOutImplicitEndTags) {
  EXPECT_EQ(Parse("<A><B>1\n<C x='y'>2\n</A>", {"A"}).kept, "<A><B>1\n</B><C x='y'>2\n</C></A>");
  EXPECT_EQ(Parse("<A><B>1<C/></A>", {"A"}).kept, "<A><B>1</B><C/></A>");
}

TEST(MarkupParserTest, TreeDoesNotDependOnHowBytesArrive) {
  const std::string text =
      "<OFX><STMTTRN>\r\n<TRNTYPE>DEBIT\r\n<NAME>A &amp; B\r\n<MEMO><![CDATA[x]]>\r\n</STMTTRN>"
      "<x:Y xmlns:x='u' a='1'><!-- c --><Z>t</Z></x:Y></OFX>";
  const Outcome whole = Parse(text, {"OFX", "STMTTRN", "x:Y"});
  ASSERT_EQ(whole.rc, 0) << whole.error;
  for (size_t cut = 0; cut <= text.size(); ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(cut));
    MarkupParser parser;
    parser.SetBuildDOM(true);
    for (const char* name : {"OFX", "STMTTRN", "x:Y"}) parser.AddSGMLTag(name);
    ASSERT_EQ(parser.Feed(text.data(), cut), 0);
    ASSERT_EQ(parser.Feed(text.data() + cut, text.size() - cut), 0);
    EXPECT_EQ(testing::DumpTree(parser.Tree()), whole.tree);
    EXPECT_EQ(std::string(parser.KeptText().View()), whole.kept);
  }
}

// A failed feed is final: more input and Finish repeat its code and text.
TEST(MarkupParserTest, FinishChecksTheEndState) {
  struct FinishCase { const char* input; int feed_rc; int rc; } cases[] = {
      {"<A", 0, 205}, {"<A>", 0, 206}, {"<A/>", 0, 0}, {"<A/> text ", 0, 0}, {"<A/><B/>", 0, 0},
      {"<A b=>", 204, 204}, {"<A><B>1</A>", 201, 201}};
  for (const FinishCase& c : cases) {
    SCOPED_TRACE(c.input);
    MarkupParser parser;
    parser.SetBuildDOM(true);
    ASSERT_EQ(parser.Feed(c.input), c.feed_rc);
    const std::string error = parser.ErrorText();
    if (c.feed_rc != 0) {
      EXPECT_EQ(parser.Feed("</A><Z/>"), c.feed_rc);
    }
    EXPECT_EQ(parser.Finish(), c.rc);
    if (c.feed_rc != 0) {
      EXPECT_EQ(parser.ErrorText(), error);
    }
  }
  MarkupParser parser;
  parser.SetBuildDOM(true);
  parser.SetFlag(MarkupParser::kAllowMoreThanOneRoot, false);
  ASSERT_EQ(parser.Feed("<A/><B/>"), 0);
  EXPECT_EQ(parser.Finish(), 211);
  EXPECT_STREQ(parser.ErrorText(), "Invalid XML: the document has more than one root element.");
}

TEST(MarkupParserTest, OptionsChangeWhatIsAccepted) {
  const auto text_outside = [](MarkupParser& p) { p.SetFlag(MarkupParser::kAllowTextOutsideRoot, false); };
  const Outcome outside = Parse("x<A/>", {}, text_outside);
  EXPECT_EQ(outside.rc, 212);
  EXPECT_EQ(outside.error, "Invalid XML: the document contains text outside the root element.");

  const auto ignore_prefixes = [](MarkupParser& p) {
    p.SetFlag(MarkupParser::kIgnoreBadElementPrefixes, true);
    p.SetFlag(MarkupParser::kIgnoreBadAttributePrefixes, true);
  };
  EXPECT_EQ(Parse("<x:A y:b='1'/>", {}, ignore_prefixes).tree, "x:A");

  const auto utf16 = [](MarkupParser& p) { p.SetEncoding("utf-16le"); };
  const Outcome refused = Parse("<A/>", {}, utf16);
  EXPECT_EQ(refused.rc, 306);
  EXPECT_EQ(refused.error, "UTF-16 support not currently available.");
}

TEST(MarkupParserTest, ListenerSeesCommentsAndSections) {
  struct Recorder : MarkupListener {
    std::vector<std::string> events;
    int OnComment(const char* t) override { return events.push_back(std::string("comment:") + t), 0; }
    int OnDeclaration(const char* t) override { return events.push_back(std::string("decl:") + t), 0; }
    int OnInstruction(const char* t) override { return events.push_back(std::string("pi:") + t), 0; }
  } recorder;
  MarkupParser parser;
  parser.SetHTMLComments(true);
  parser.SetListener(&recorder);
  ASSERT_EQ(parser.Feed("<?pi x?><!-- a -- b --><A><![CDATA[x]]></A>"), 0);
  EXPECT_EQ(recorder.events, (std::vector<std::string>{"pi:pi x", "comment: a -- b ", "decl:[CDATA[x]]"}));
}

TEST(MarkupParserTest, TablesAreBounded) {
  std::string tag = "<A";
  for (int i = 0; i < 256; ++i) tag += " a" + std::to_string(i) + "='1'";
  EXPECT_EQ(Parse(tag + "/>").rc, 0);
  const Outcome too_many = Parse(tag + " z='1'/>");
  EXPECT_EQ(too_many.rc, 200);
  EXPECT_EQ(too_many.error, "Out of memory.");

  std::string deep;
  for (int i = 0; i < 257; ++i) deep += "<A>";
  EXPECT_EQ(Parse(deep).rc, 200);
}

}  // namespace
}  // namespace orvelan
