// Every real-world file, read leniently, gives what a careful reading gives and needs no repair.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "services/account_component.h"
#include "services/bank_statement_component.h"
#include "services/cc_statement_component.h"
#include "services/fi_profile_component.h"
#include "services/inv_statement_component.h"
#include "support/recording_events.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

template <class Component, int kCountId>
void Read(const std::string& path, intptr_t count, int code, const char* text) {
  Component c(nullptr, nullptr);
  RecordingEvents events;
  c.service().SetEventSink(&events);
  const char* out = nullptr;
  c.service().Config("LenientReading=True", out);
  EXPECT_EQ(c.service().ReadOFXDataFile(path.c_str()), code) << c.service().GetLastError();
  EXPECT_EQ(std::string(c.service().GetLastError()).rfind(text, 0), 0u) << c.service().GetLastError();
  EXPECT_EQ(reinterpret_cast<intptr_t>(c.Get(kCountId, 0, nullptr)), count);
  EXPECT_TRUE(events.log.empty()) << events.log[0];
}
constexpr auto kBank = Read<BankStatementComponent, BANKSTATEMENT_PROP_TXCOUNT>;
constexpr auto kCard = Read<CCStatementComponent, CCSTATEMENT_PROP_TXCOUNT>;
constexpr auto kInvestment = Read<InvStatementComponent, INVSTATEMENT_PROP_TXCOUNT>;

const struct {
  const char* file;
  void (*read)(const std::string& path, intptr_t count, int code, const char* text);
  intptr_t count;
  int code;
  const char* text;  // the error text's start
} kReadings[] = {
    {"libofx-example-listing1.xml", kBank, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-13.12.ofx", kInvestment, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-16.5.3.2.ofx", kBank, 1, 0, ""},
    {"libofx-ofx-2.1.1-sect-16.5.3.2.ofx", kCard, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-8.5.5.ofx", Read<AccountComponent, ACCOUNT_PROP_ACCCOUNT>, 1, 0, ""},
    {"libofx-ofx_spec160_stmtrs_example.sgml", kBank, 2, 0, ""},
    {"libofx-ofx_spec201_stmtrs_example.xml", kBank, 2, 0, ""},
    {"ofxparse-anzcc.ofx", kCard, 1, 0, ""},
    {"ofxparse-bank_small.ofx", kBank, 0, 208, "No such child."},  // <OFX></OFX>: no statement
    {"ofxparse-checking.ofx", kBank, 3, 0, ""},
    {"ofxparse-error_message.ofx", kBank, 0, 2001, "OFX server error (2000): General Server Error"},
    {"ofxparse-fidelity.ofx", kInvestment, 17, 0, ""},
    {"ofxparse-investment_medium.ofx", kInvestment, 3, 0, ""},
    {"ofxparse-signon_fail.ofx", kBank, 0, 2001, "OFX server error (15500): Your request could not be processed"},
    {"ofxparse-vanguard.ofx", kInvestment, 1, 0, ""},
    {"ofxtools-invstmtrs.ofx", kInvestment, 2, 0, ""},
    {"ofxtools-profrs.ofx", Read<FIProfileComponent, FIPROFILE_PROP_MESSAGESETCOUNT>, 0, 2001,
     "OFX server error (15500): Signon invalid"},
    {"ofxtools-stmtrs.ofx", kBank, 2, 0, ""},
};

TEST(LenientCorpusTest, EveryFileReadsAsACarefulReadingGives) {
  const auto files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no corpus";
  for (const auto& [name, path] : files) {
    SCOPED_TRACE(name);
    int readings = 0;
    for (const auto& r : kReadings) {
      if (name != r.file) continue;
      ++readings;
      r.read(path, r.count, r.code, r.text);
    }
    EXPECT_GT(readings, 0) << "a new corpus file needs its careful reading in kReadings";
  }
}

}  // namespace
}  // namespace orvelan
