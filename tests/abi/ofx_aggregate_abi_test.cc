// What a host sees through the exported functions of OFXAggregate.
#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "orvelan.h"

namespace {

class OFXAggregateAbiTest : public ::testing::Test {
 protected:
  void SetUp() override { obj_ = OFXAggregate_Create(nullptr, nullptr, nullptr); }
  void TearDown() override { OFXAggregate_Destroy(obj_); }

  std::string Text(int id, int index = 0) {
    const char* text = static_cast<const char*>(OFXAggregate_Get(obj_, id, index, nullptr));
    return text == nullptr ? "(null)" : text;
  }
  intptr_t Integer(int id) { return reinterpret_cast<intptr_t>(OFXAggregate_Get(obj_, id, 0, nullptr)); }
  int SetText(int id, const char* value) { return OFXAggregate_Set(obj_, id, 0, value, 0); }
  // Runs a method with one argument and returns its result slot.
  void* Do(int method, const char* argument, int expected_rc = 0) {
    void* params[2] = {const_cast<char*>(argument), nullptr};
    int lengths[2] = {0, 0};
    EXPECT_EQ(OFXAggregate_Do(obj_, method, 2, params, lengths), expected_rc) << argument;
    return params[1];
  }
  std::string LastError() { return OFXAggregate_GetLastError(obj_); }
  int LastCode() { return OFXAggregate_GetLastErrorCode(obj_); }

  void* obj_ = nullptr;
};

constexpr char kTransaction[] =
    "<STMTTRN xmlns:x='urn:x'><TRNTYPE>DEBIT</TRNTYPE><TRNAMT>-10.00</TRNAMT><x:MEMO>m</x:MEMO></STMTTRN>";

TEST_F(OFXAggregateAbiTest, WalksAnAggregate) {
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATE), "");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTPATH), "");
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, kTransaction), 0);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATE), kTransaction);
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN/TRNAMT"), 0);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTTEXT), "-10.00");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTPARENT), "STMTTRN");
  EXPECT_EQ(Text(10000 + OFXAGGREGATE_PROP_ELEMENTPATH), "/STMTTRN/TRNAMT");
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, ".."), 0);
  EXPECT_EQ(Integer(OFXAGGREGATE_PROP_CHILDCOUNT), 3);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_CHILDNAME, 2), "x:MEMO");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_CHILDNAMESPACE, 2), "urn:x");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_CHILDPREFIX, 2), "x");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_CHILDTEXT, 0), "DEBIT");
  EXPECT_EQ(Integer(OFXAGGREGATE_PROP_AGGREGATENAMESPACECOUNT), 1);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX, 0), "x");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATENAMESPACEURI, 0), "urn:x");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTNAME), "STMTTRN");
  EXPECT_EQ(OFXAggregate_Set(obj_, OFXAGGREGATE_PROP_ELEMENTNAME, 0, "x", 0), -1);
}

TEST_F(OFXAggregateAbiTest, BadIndexesReadEmptyWith432) {
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, kTransaction), 0);
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN"), 0);
  const struct { int id, index; const char* text; } cases[] = {
      {OFXAGGREGATE_PROP_CHILDNAME, 3, "Invalid element index."},
      {OFXAGGREGATE_PROP_CHILDTEXT, -1, "Invalid element index."},
      {OFXAGGREGATE_PROP_AGGREGATENAMESPACEURI, 1, "Invalid namespace index."},
      {OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX, 0x10001, "Invalid namespace index."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.id);
    EXPECT_EQ(Text(c.id, c.index), "");
    EXPECT_EQ(LastCode(), 432);
    EXPECT_EQ(LastError(), c.text);
    EXPECT_EQ(OFXAggregate_CheckIndex(obj_, c.id, c.index), 280);
  }
  // The namespace index is taken as 16 bits: 0x10000 is entry 0.
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX, 0x10000), "x");
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "TRNTYPE"), 0);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_CHILDNAME, 0), "");
  EXPECT_EQ(LastError(), "No elements available.");
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, "<A/>"), 0);
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/A"), 0);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX, 0), "");
  EXPECT_EQ(LastError(), "No namespaces available.");
}

TEST_F(OFXAggregateAbiTest, PathExistsAndConfig) {
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, kTransaction), 0);
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN"), 0);
  EXPECT_EQ(Do(OFXAGGREGATE_METHOD_PATHEXISTS, "TRNAMT"), reinterpret_cast<void*>(1));
  EXPECT_EQ(Do(OFXAGGREGATE_METHOD_PATHEXISTS, "NOPE"), nullptr);
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTPATH), "/STMTTRN");

  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "TRNAMT"), 0);
  const std::pair<const char*, const char*> settings[] = {
      {"XSubTree", "<TRNAMT>-10.00</TRNAMT>"}, {"AllowMoreThanOneRoot", "True"}, {"CodePage", "0"}};
  for (const auto& [setting, answer] : settings) {
    EXPECT_STREQ(static_cast<const char*>(Do(OFXAGGREGATE_METHOD_CONFIG, setting)), answer);
  }
  Do(OFXAGGREGATE_METHOD_CONFIG, "Bogus=1", -1);
  EXPECT_EQ(LastError(), "Unknown config setting.");
  // This answer does not travel in the last-error text, which stays.
  EXPECT_STREQ(static_cast<const char*>(Do(OFXAGGREGATE_METHOD_CONFIG, "AllowTextOutsideRoot")), "True");
  EXPECT_EQ(LastCode(), 0);
  EXPECT_EQ(LastError(), "Unknown config setting.");
}

TEST_F(OFXAggregateAbiTest, ErrorsCarryTheParserMessage) {
  EXPECT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, "<A><B></A>"), 201);
  EXPECT_EQ(LastError(), "Unbalanced element tag: A");
  EXPECT_EQ(LastCode(), 201);
  // After a failed parse the document is empty.
  EXPECT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/A"), 210);
  EXPECT_EQ(Integer(OFXAGGREGATE_PROP_CHILDCOUNT), 0);
  ASSERT_EQ(SetText(OFXAGGREGATE_PROP_AGGREGATE, "<A><B/></A>"), 0);
  EXPECT_EQ(SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/A/[x]"), 207);
  EXPECT_EQ(LastError(), "Invalid XPath.");
  EXPECT_EQ(Text(OFXAGGREGATE_PROP_ELEMENTPATH), "/A");
}

}  // namespace
