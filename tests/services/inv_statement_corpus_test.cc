// Reads every investment statement among the real-world OFX files and checks
// the component against values scanned from the raw text.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "services/inv_statement_component.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

// The texts after every <TAG> in `text` up to the next '<' or line end, trimmed.
std::vector<std::string> ValuesOf(const std::string& text, const std::string& tag) {
  std::vector<std::string> values;
  for (size_t at = text.find("<" + tag + ">"); at != std::string::npos; at = text.find("<" + tag + ">", at + 1)) {
    const size_t begin = at + tag.size() + 2;
    std::string value = text.substr(begin, text.find_first_of("<\r\n", begin) - begin);
    while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.pop_back();
    values.push_back(value);
  }
  return values;
}

// The part of `text` from <TAG> to </TAG>; empty when absent.
std::string Section(const std::string& text, const std::string& tag) {
  const size_t begin = text.find("<" + tag + ">");
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find("</" + tag + ">", begin) - begin);
}

double Sum(const std::vector<std::string>& amounts) {
  double sum = 0;
  for (const std::string& a : amounts) sum += std::strtod(a.c_str(), nullptr);
  return sum;
}

struct Inv : InvStatementComponent {
  Inv() : InvStatementComponent(nullptr, nullptr) {
    const char* out = nullptr;
    service().Config("ExtraTags=INV401K,INV401KBAL,SWITCHMF", out);
  }
  std::string Text(int id, int index = 0) {
    const void* value = Get(id, index, nullptr);
    return value == nullptr ? "" : static_cast<const char*>(value);
  }
  int Int(int id, int index = 0) { return static_cast<int>(reinterpret_cast<intptr_t>(Get(id, index, nullptr))); }
};

TEST(InvStatementCorpusTest, EveryInvestmentStatementReadsAsScanned) {
  int statements = 0;
  for (const auto& [name, path] : CorpusFiles()) {
    const std::string text = Slurp(path);
    if (text.find("<INVSTMTRS>") == std::string::npos) continue;
    SCOPED_TRACE(name);
    ++statements;
    Inv inv;
    void* params[1] = {const_cast<char*>(path.c_str())};
    int lengths[1] = {0};
    ASSERT_EQ(inv.Do(INVSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths), 0) << inv.GetLastError();
    const std::string statement = Section(text, "INVSTMTRS");
    EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_ACCOUNTID), ValuesOf(Section(statement, "INVACCTFROM"), "ACCTID").at(0));
    EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_CURRENCYCODE), ValuesOf(statement, "CURDEF").at(0));

    // One FITID per transaction, in order; TOTAL or TRNAMT the amounts.
    const std::string list = Section(statement, "INVTRANLIST");
    const std::vector<std::string> fitids = ValuesOf(list, "FITID");
    ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT), static_cast<int>(fitids.size()));
    double total = 0;
    for (int i = 0; i < static_cast<int>(fitids.size()); ++i) {
      EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_TXFITID, i), fitids[static_cast<size_t>(i)]);
      EXPECT_NE(inv.Int(INVSTATEMENT_PROP_TXTYPE, i), 255) << i;
      total += std::strtod(inv.Text(INVSTATEMENT_PROP_TXTOTAL, i).c_str(), nullptr);
    }
    EXPECT_NEAR(total, Sum(ValuesOf(list, "TOTAL")) + Sum(ValuesOf(list, "TRNAMT")), 1e-6);

    // Positions: units in order, each joined to a security of the list.
    const std::vector<std::string> units = ValuesOf(Section(statement, "INVPOSLIST"), "UNITS");
    ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_POSCOUNT), static_cast<int>(units.size()));
    // A security's own id is the first in its SECINFO (an option names its underlying too).
    std::vector<std::string> securities;
    const std::string seclist = Section(text, "SECLIST");
    for (size_t at = seclist.find("<SECINFO>"); at != std::string::npos; at = seclist.find("<SECINFO>", at + 1)) {
      securities.push_back(ValuesOf(seclist.substr(at), "UNIQUEID").at(0));
    }
    ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_SECCOUNT), static_cast<int>(securities.size()));
    for (int i = 0; i < static_cast<int>(units.size()); ++i) {
      EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_POSUNITS, i), units[static_cast<size_t>(i)]);
      const std::string id = inv.Text(INVSTATEMENT_PROP_POSSECURITYID, i);
      if (!securities.empty()) {
        EXPECT_GE(inv.service().FindSecurity(id), 0) << id;
      }
    }
    for (int i = 0; i < static_cast<int>(securities.size()); ++i) {
      const std::string id = inv.Text(INVSTATEMENT_PROP_SECSECURITYID, i);
      EXPECT_EQ(id.substr(id.find(':') + 1), securities[static_cast<size_t>(i)]);
    }
    EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_BALCOUNT), static_cast<int>(ValuesOf(statement, "BALTYPE").size()));
  }
  if (statements == 0) GTEST_SKIP() << "no corpus";
  EXPECT_GE(statements, 4) << "the corpus should hold several investment statements";
}

}  // namespace
}  // namespace orvelan
