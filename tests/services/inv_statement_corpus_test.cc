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
    values.push_back(text.substr(begin, text.find_first_of("<\r\n", begin) - begin));
    while (!values.back().empty() && values.back().back() == ' ') values.back().pop_back();
  }
  return values;
}

// The part of `text` from <TAG> to </TAG>; empty when absent.
std::string Section(const std::string& text, const std::string& tag) {
  const size_t begin = text.find("<" + tag + ">");
  return begin == std::string::npos ? "" : text.substr(begin, text.find("</" + tag + ">", begin) - begin);
}

TEST(InvStatementCorpusTest, EveryInvestmentStatementReadsAsScanned) {
  int statements = 0;
  for (const auto& [name, path] : CorpusFiles()) {
    const std::string text = Slurp(path);
    if (text.find("<INVSTMTRS>") == std::string::npos) continue;
    SCOPED_TRACE(name);
    ++statements;
    InvStatementComponent inv(nullptr, nullptr);
    InvStatementService& s = inv.service();
    const auto get = [&inv](int id, size_t i = 0) {
      return std::string(static_cast<const char*>(inv.Get(id, static_cast<int>(i), nullptr)));
    };
    const char* out = nullptr;
    s.Config("ExtraTags=INV401K,INV401KBAL,SWITCHMF", out);
    void* params[1] = {const_cast<char*>(path.c_str())};
    int lengths[1] = {0};
    ASSERT_EQ(inv.Do(INVSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths), 0) << s.GetLastError();
    const std::string statement = Section(text, "INVSTMTRS");
    EXPECT_EQ(get(INVSTATEMENT_PROP_ACCOUNTID), ValuesOf(Section(statement, "INVACCTFROM"), "ACCTID").at(0));
    EXPECT_EQ(get(INVSTATEMENT_PROP_CURRENCYCODE), ValuesOf(statement, "CURDEF").at(0));

    // One FITID per transaction, in order; TOTAL or TRNAMT the amounts.
    const std::string list = Section(statement, "INVTRANLIST");
    const std::vector<std::string> fitids = ValuesOf(list, "FITID");
    ASSERT_EQ(s.TxCount(), static_cast<int32_t>(fitids.size()));
    double total = 0;
    for (size_t i = 0; i < fitids.size(); ++i) {
      EXPECT_EQ(get(INVSTATEMENT_PROP_TXFITID, i), fitids[i]);
      EXPECT_NE(s.TxType(static_cast<int32_t>(i)), 255) << i;
      total += std::strtod(get(INVSTATEMENT_PROP_TXTOTAL, i).c_str(), nullptr);
    }
    for (const char* tag : {"TOTAL", "TRNAMT"}) {
      for (const std::string& amount : ValuesOf(list, tag)) total -= std::strtod(amount.c_str(), nullptr);
    }
    EXPECT_NEAR(total, 0, 1e-6);

    // A security's own id is the first in its SECINFO (an option names its underlying too).
    std::vector<std::string> securities;
    const std::string seclist = Section(text, "SECLIST");
    for (size_t at = seclist.find("<SECINFO>"); at != std::string::npos; at = seclist.find("<SECINFO>", at + 1)) {
      securities.push_back(ValuesOf(seclist.substr(at), "UNIQUEID").at(0));
    }
    ASSERT_EQ(s.SecCount(), static_cast<int32_t>(securities.size()));
    for (size_t i = 0; i < securities.size(); ++i) {
      const std::string id = get(INVSTATEMENT_PROP_SECSECURITYID, i);
      EXPECT_EQ(id.substr(id.find(':') + 1), securities[i]);
    }
    // Positions: units in order, each joined to a security of the list.
    const std::vector<std::string> units = ValuesOf(Section(statement, "INVPOSLIST"), "UNITS");
    ASSERT_EQ(s.PosCount(), static_cast<int32_t>(units.size()));
    for (size_t i = 0; i < units.size(); ++i) {
      EXPECT_EQ(get(INVSTATEMENT_PROP_POSUNITS, i), units[i]);
      EXPECT_TRUE(securities.empty() || s.FindSecurity(get(INVSTATEMENT_PROP_POSSECURITYID, i)) >= 0) << i;
    }
    EXPECT_EQ(s.BalCount(), static_cast<int32_t>(ValuesOf(statement, "BALTYPE").size()));
  }
  if (statements == 0) GTEST_SKIP() << "no corpus";
  EXPECT_GE(statements, 4) << "the corpus should hold several investment statements";
}

}  // namespace
}  // namespace orvelan
