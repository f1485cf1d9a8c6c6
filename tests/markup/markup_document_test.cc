#include "markup/markup_document.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

constexpr char kSignOn[] =
    "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS></SONRS></SIGNONMSGSRSV1></OFX>";

class Doc {
 public:
  explicit Doc(const char* text, std::initializer_list<const char*> containers = {}) {
    doc.Reset();
    doc.SetBuildDOM(true);
    for (const char* c : containers) doc.AddSGMLTag(c);
    rc = doc.Parse(text);
  }
  MarkupDocument doc;
  int rc;
};

TEST(MarkupDocumentTest, AbsolutePathsAndParentSteps) {
  Doc d(kSignOn, {"OFX", "SIGNONMSGSRSV1", "SONRS", "STATUS"});
  ASSERT_EQ(d.rc, 0);
  MarkupDocument& doc = d.doc;
  ASSERT_EQ(doc.SelectPath("/OFX/SIGNONMSGSRSV1/SONRS/STATUS/CODE"), 0);
  ASSERT_EQ(doc.SelectPath("../SEVERITY"), 0);
  EXPECT_STREQ(doc.ElementText(), "INFO");
  EXPECT_STREQ(doc.CurrentPath(), "/OFX/SIGNONMSGSRSV1/SONRS/STATUS/SEVERITY");

  ASSERT_EQ(doc.SelectPath("/"), 0);
  EXPECT_STREQ(doc.CurrentPath(), "/OFX");
  EXPECT_EQ(doc.SelectPath(".."), 208);
  EXPECT_EQ(doc.SelectPath("/FOO"), 209);
  EXPECT_STREQ(doc.GetLastError(), "Top element does not match start of path.");
  EXPECT_EQ(doc.SelectPath("/OFX/NOPE"), 208);
  EXPECT_STREQ(doc.GetLastError(), "No such child.");
  // ".." followed by an absolute path walks it.
  ASSERT_EQ(doc.SelectPath("SIGNONMSGSRSV1/SONRS/..//OFX/SIGNONMSGSRSV1"), 0);
  EXPECT_STREQ(doc.CurrentPath(), "/OFX/SIGNONMSGSRSV1");
  // HasPath moves neither the cursor nor the error text.
  doc.SetErrorText("kept");
  EXPECT_FALSE(doc.HasPath("NOPE"));
  EXPECT_TRUE(doc.HasPath("/OFX/SIGNONMSGSRSV1/SONRS"));
  EXPECT_STREQ(doc.CurrentPath(), "/OFX/SIGNONMSGSRSV1");
  EXPECT_STREQ(doc.GetLastError(), "kept");
}

struct StepCase { const char* path; int rc; const char* text; const char* canonical; };  // text: on success

const StepCase kStepCases[] = {
    {"STMTTRN[3]", 0, "c", "/OFX/L/STMTTRN[3]"},
    {"STMTTRN[1]", 0, "a", "/OFX/L/STMTTRN"},
    {"STMTTRN[4]", 208, "", "/OFX/L"},
    {"STMTTRN[0]", 208, "", "/OFX/L"},
    {"[last()]", 0, "c", "/OFX/L/[3]"},
    {"[Last()-1]", 0, "b", "/OFX/L/[2]"},
    {"[last()+1]", 207, "", "/OFX/L"},
    {"[0]", 207, "", "/OFX/L"},
    {"[x]", 207, "", "/OFX/L"},
    {"1ABC", 207, "", "/OFX/L"},
    {"STMTTRN[@k]", 0, "b", "/OFX/L/STMTTRN"},
    {"STMTTRN[@k=\"2\"]", 0, "c", "/OFX/L/STMTTRN"},
    {"STMTTRN[@k=3]", 208, "", "/OFX/L"},
    {"[2]/..", 0, "", "/OFX/L"},
    {"", 0, "", "/OFX/L"},
};

TEST(MarkupDocumentTest, RelativeStepsFromAList) {
  Doc d("<OFX><L><STMTTRN>a</STMTTRN><STMTTRN k='1'>b</STMTTRN><STMTTRN k='2'>c</STMTTRN></L></OFX>");
  ASSERT_EQ(d.rc, 0);
  for (const StepCase& c : kStepCases) {
    SCOPED_TRACE(c.path);
    ASSERT_EQ(d.doc.SelectPath("/OFX/L"), 0);
    EXPECT_EQ(d.doc.SelectPath(c.path), c.rc);
    EXPECT_STREQ(d.doc.CurrentPath(), c.canonical);
    EXPECT_STREQ(c.rc == 0 ? d.doc.ElementText() : d.doc.ElementName(), c.rc == 0 ? c.text : "L");
  }
}

// Remembered positions must give the same answers in any order of requests.
TEST(MarkupDocumentTest, IndexedStepsInAnyOrder) {
  std::string text = "<L>";
  for (int i = 1; i <= 40; ++i) {
    const char* name = i % 3 == 0 ? "B" : "A";
    text += std::string("<") + name + "><X>" + std::to_string(i) + "</X></" + name + ">";
  }
  Doc d((text + "</L>").c_str());
  ASSERT_EQ(d.rc, 0);
  // Forward, backward, and in strides.
  for (int i : {1, 2, 3, 4, 5, 27, 26, 25, 14, 13, 1, 6, 11, 16, 21, 26, 2}) {
    SCOPED_TRACE(i);
    ASSERT_EQ(d.doc.SelectPath("/L/A[" + std::to_string(i) + "]"), 0);
    EXPECT_TRUE(d.doc.HasPath("X"));  // a lookup under another parent in between
    ASSERT_EQ(d.doc.SelectPath("X"), 0);
    EXPECT_EQ(std::string(d.doc.ElementText()), std::to_string(i + (i - 1) / 2));  // the i-th not divisible by 3
    ASSERT_EQ(d.doc.SelectPath("../../[" + std::to_string(i) + "]/X"), 0);
    EXPECT_EQ(std::string(d.doc.ElementText()), std::to_string(i));
  }
  EXPECT_EQ(d.doc.SelectPath("/L/A[28]"), 208);
}

TEST(MarkupDocumentTest, SubtreeAndContents) {
  Doc d("<R><A/><S x='1'> t <C>2</C></S></R>");
  ASSERT_EQ(d.doc.SelectPath("/R/S"), 0);
  EXPECT_STREQ(d.doc.ElementSubtree(), "<S x='1'> t <C>2</C></S>");
  EXPECT_STREQ(d.doc.ElementContents(), " t <C>2</C>");
  // SGML: the end tags left out are written in.
  Doc sgml("<R><A>1\r\n<B>2</R>", {"R"});
  ASSERT_EQ(sgml.doc.SelectPath("/R"), 0);
  EXPECT_STREQ(sgml.doc.ElementSubtree(), "<R><A>1\r\n</A><B>2</B></R>");

  MarkupDocument plain;
  plain.SetBuildDOM(true);
  plain.SetKeepOriginalText(false);
  ASSERT_EQ(plain.Parse("<R/>"), 0);
  ASSERT_EQ(plain.SelectPath("/R"), 0);
  EXPECT_STREQ(plain.ElementSubtree(), "");
  EXPECT_STREQ(plain.GetLastError(), "Subtree not available unless KeepOriginalText is set.");
}

TEST(MarkupDocumentTest, CutOffDocumentCountsOnlyEndedChildren) {
  Doc d("<R><A>1</A><B><C>2");
  ASSERT_EQ(d.rc, 0);
  ASSERT_EQ(d.doc.SelectPath("/R"), 0);
  EXPECT_EQ(d.doc.ChildCount(), 1);
  EXPECT_EQ(d.doc.SelectPath("B"), 208);
}

TEST(MarkupDocumentTest, EmptyTreeAndOffsets) {
  MarkupDocument doc;
  ASSERT_EQ(doc.Parse("<R/>"), 0);  // BuildDOM is off
  EXPECT_EQ(doc.SelectPath("/"), 210);
  EXPECT_STREQ(doc.GetLastError(), "DOM tree unavailable (set BuildDOM to TRUE and reparse).");

  Doc d("<R><A/><B>x</B></R>");
  ASSERT_EQ(d.doc.SelectPath("/R/B"), 0);
  const uint32_t b = d.doc.Tree().Cursor();
  ASSERT_EQ(d.doc.SelectPath("/R"), 0);
  ASSERT_EQ(d.doc.SelectPath("*" + std::to_string(b)), 0);
  EXPECT_STREQ(d.doc.CurrentPath(), "/R/B");
  EXPECT_EQ(d.doc.SelectPath("*" + std::to_string(b + 4)), 207);
}

TEST(MarkupDocumentTest, ChildAndNamespaceAccessors) {
  Doc d("<r:R xmlns:r='urn:r' xmlns='urn:d'><A>1</A><r:B>2</r:B></r:R>");
  ASSERT_EQ(d.rc, 0);
  MarkupDocument& doc = d.doc;
  ASSERT_EQ(doc.SelectPath("/r:R"), 0);
  EXPECT_STREQ(doc.ElementNamespace(), "urn:r");
  EXPECT_STREQ(doc.ChildName(1), "r:B");
  EXPECT_STREQ(doc.ChildNamespace(0), "urn:d");
  EXPECT_EQ(doc.CheckChildIndex(2), 432);
  EXPECT_STREQ(doc.GetLastError(), "Invalid element index.");
  EXPECT_STREQ(doc.NamespaceURI(1), "urn:d");
  // Unprefixed steps match prefixed children; URI names select at once.
  EXPECT_TRUE(doc.HasPath("B"));
  EXPECT_TRUE(doc.HasPath("urn:dA"));
  ASSERT_EQ(doc.SelectPath("A"), 0);
  EXPECT_EQ(doc.CheckChildIndex(0), 432);
  EXPECT_STREQ(doc.GetLastError(), "No elements available.");
}

}  // namespace
}  // namespace orvelan
