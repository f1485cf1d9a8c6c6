// Reads every bank and card statement among the real-world OFX files and
// checks what the components report against values scanned from the raw text
// by a naive reader that knows nothing of the library's parser.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "services/bank_statement_component.h"
#include "services/cc_statement_component.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

// The text after <TAG> up to the next '<' or line end, trimmed; empty if absent.
std::string ValueOf(const std::string& block, const std::string& tag) {
  size_t at = block.find("<" + tag + ">");
  if (at == std::string::npos) return "";
  at += tag.size() + 2;
  size_t end = block.find_first_of("<\r\n", at);
  std::string value = block.substr(at, end == std::string::npos ? std::string::npos : end - at);
  while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.pop_back();
  while (!value.empty() && (value.front() == ' ' || value.front() == '\t')) value.erase(0, 1);
  return value;
}

struct ScannedTransaction {
  std::string amount, fitid, date_posted;
};

struct ScannedStatement {
  bool found = false;
  std::string currency, account_id, ledger_balance;
  std::vector<ScannedTransaction> transactions;
};

// Where one kind of statement lives (message set, wrapper, response) and the
// component's ids of what the check reads.
struct Kind {
  const char *set, *wrapper, *response;
  int currency, account, ledger, tx_count, tx_fitid, tx_amount, tx_date_posted;
};
constexpr Kind kBank = {"BANKMSGSRSV1", "STMTTRNRS", "STMTRS", BANKSTATEMENT_PROP_CURRENCYCODE,
                        BANKSTATEMENT_PROP_ACCOUNTID, BANKSTATEMENT_PROP_LEDGERBALANCE, BANKSTATEMENT_PROP_TXCOUNT,
                        BANKSTATEMENT_PROP_TXFITID, BANKSTATEMENT_PROP_TXAMOUNT, BANKSTATEMENT_PROP_TXDATEPOSTED};
constexpr Kind kCard = {"CREDITCARDMSGSRSV1", "CCSTMTTRNRS", "CCSTMTRS", CCSTATEMENT_PROP_CURRENCYCODE,
                        CCSTATEMENT_PROP_CARDNUMBER, CCSTATEMENT_PROP_LEDGERBALANCE, CCSTATEMENT_PROP_TXCOUNT,
                        CCSTATEMENT_PROP_TXFITID, CCSTATEMENT_PROP_TXAMOUNT, CCSTATEMENT_PROP_TXDATEPOSTED};

// Only the kind's own message set counts: a file may carry another statement too.
ScannedStatement Scan(const std::string& text, const Kind& kind) {
  ScannedStatement s;
  size_t begin = text.find(std::string("<") + kind.wrapper + ">");
  size_t set = text.find(std::string("<") + kind.set + ">");
  if (begin == std::string::npos || set == std::string::npos || begin < set) return s;
  size_t end = text.find(std::string("</") + kind.set + ">", begin);
  const std::string section = text.substr(begin, end == std::string::npos ? std::string::npos : end - begin);
  if (section.find(std::string("<") + kind.response + ">") == std::string::npos) return s;
  s.found = true;
  s.currency = ValueOf(section, "CURDEF");
  s.account_id = ValueOf(section, "ACCTID");
  size_t ledger = section.find("<LEDGERBAL>");
  if (ledger != std::string::npos) s.ledger_balance = ValueOf(section.substr(ledger), "BALAMT");
  for (size_t at = section.find("<STMTTRN>"); at != std::string::npos;) {
    size_t next = section.find("<STMTTRN>", at + 1);
    size_t list_end = section.find("</BANKTRANLIST>", at);
    size_t stop = std::min(next, list_end);
    const std::string block = section.substr(at, stop == std::string::npos ? std::string::npos : stop - at);
    s.transactions.push_back({ValueOf(block, "TRNAMT"), ValueOf(block, "FITID"), ValueOf(block, "DTPOSTED")});
    at = next;
  }
  return s;
}

// "MM/dd/YYYY HH:mm:ss" as shown to the host, against the raw YYYYMMDD[HHMMSS].
void ExpectSameDay(const std::string& shown, const std::string& raw) {
  ASSERT_GE(raw.size(), 8u) << raw;
  ASSERT_EQ(shown.size(), 19u) << shown;
  EXPECT_EQ(shown.substr(6, 4) + shown.substr(0, 2) + shown.substr(3, 2), raw.substr(0, 8)) << shown << " vs " << raw;
  if (raw.size() >= 14 && std::isdigit(static_cast<unsigned char>(raw[13]))) {
    EXPECT_EQ(shown.substr(11, 2) + shown.substr(14, 2) + shown.substr(17, 2), raw.substr(8, 6)) << shown;
  }
}

void ExpectSameAmount(const std::string& shown, const std::string& raw) {
  EXPECT_DOUBLE_EQ(std::strtod(shown.c_str(), nullptr), std::strtod(raw.c_str(), nullptr)) << shown << " vs " << raw;
}

template <class Component>
std::string Text(Component& c, int id, int index = 0) {
  const char* text = static_cast<const char*>(c.Get(id, index, nullptr));
  return text == nullptr ? "" : text;
}

// The number of statements of `kind` read and checked.
template <class Component>
int CheckCorpus(const Kind& kind) {
  int statements = 0;
  for (const auto& [name, path] : CorpusFiles()) {
    const ScannedStatement expected = Scan(Slurp(path), kind);
    if (!expected.found) continue;
    SCOPED_TRACE(name);
    ++statements;
    Component c(nullptr, nullptr);
    void* params[1] = {const_cast<char*>(path.c_str())};
    int lengths[1] = {0};
    EXPECT_EQ(c.Do(6, 1, params, lengths), 0) << c.service().GetLastError();
    EXPECT_EQ(Text(c, kind.currency), expected.currency);
    EXPECT_EQ(Text(c, kind.account), expected.account_id);
    ExpectSameAmount(Text(c, kind.ledger), expected.ledger_balance);
    const intptr_t count = reinterpret_cast<intptr_t>(c.Get(kind.tx_count, 0, nullptr));
    EXPECT_EQ(count, static_cast<intptr_t>(expected.transactions.size()));
    for (int i = 0; i < count && i < static_cast<int>(expected.transactions.size()); ++i) {
      const ScannedTransaction& t = expected.transactions[static_cast<size_t>(i)];
      EXPECT_EQ(Text(c, kind.tx_fitid, i), t.fitid) << i;
      ExpectSameAmount(Text(c, kind.tx_amount, i), t.amount);
      ExpectSameDay(Text(c, kind.tx_date_posted, i), t.date_posted);
    }
  }
  return statements;
}

TEST(BankStatementCorpusTest, EveryBankAndCardStatementReadsAsScanned) {
  if (CorpusFiles().empty()) GTEST_SKIP() << "no corpus";
  EXPECT_GE(CheckCorpus<BankStatementComponent>(kBank), 5) << "the corpus should hold several bank statements";
  EXPECT_GE(CheckCorpus<CCStatementComponent>(kCard), 1) << "the corpus should hold a card statement";
}

}  // namespace
}  // namespace orvelan
