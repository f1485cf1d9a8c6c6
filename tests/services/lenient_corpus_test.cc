// Reads every real-world OFX file with LenientReading on and checks what a
// careful reading of each file gives: its transactions (accounts for an
// account list), or the server's error.
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

enum class Reader { kBank, kCard, kInvestment, kAccounts, kProfile };

struct Reading {
  const char* file;
  Reader reader;
  int count;         // of the reader's list; -1 when there is none to count
  int code;          // of ReadOFXDataFile
  const char* text;  // the error text's start when `code` is not 0
};

const Reading kReadings[] = {
    {"libofx-example-listing1.xml", Reader::kBank, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-13.12.ofx", Reader::kInvestment, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-16.5.3.2.ofx", Reader::kBank, 1, 0, ""},
    {"libofx-ofx-2.1.1-sect-16.5.3.2.ofx", Reader::kCard, 2, 0, ""},
    {"libofx-ofx-2.1.1-sect-8.5.5.ofx", Reader::kAccounts, 1, 0, ""},
    {"libofx-ofx_spec160_stmtrs_example.sgml", Reader::kBank, 2, 0, ""},
    {"libofx-ofx_spec201_stmtrs_example.xml", Reader::kBank, 2, 0, ""},
    {"ofxparse-anzcc.ofx", Reader::kCard, 1, 0, ""},
    // An empty <OFX></OFX>: no statement to select.
    {"ofxparse-bank_small.ofx", Reader::kBank, 0, 208, "No such child."},
    {"ofxparse-checking.ofx", Reader::kBank, 3, 0, ""},
    {"ofxparse-error_message.ofx", Reader::kBank, -1, 2001, "OFX server error (2000): General Server Error"},
    {"ofxparse-fidelity.ofx", Reader::kInvestment, 17, 0, ""},
    {"ofxparse-investment_medium.ofx", Reader::kInvestment, 3, 0, ""},
    {"ofxparse-signon_fail.ofx", Reader::kBank, -1, 2001,
     "OFX server error (15500): Your request could not be processed"},
    {"ofxparse-vanguard.ofx", Reader::kInvestment, 1, 0, ""},
    {"ofxtools-invstmtrs.ofx", Reader::kInvestment, 2, 0, ""},
    {"ofxtools-profrs.ofx", Reader::kProfile, -1, 2001, "OFX server error (15500): Signon invalid"},
    {"ofxtools-stmtrs.ofx", Reader::kBank, 2, 0, ""},
};

template <class Component>
void Read(const std::string& path, int method, int count_id, const Reading& r) {
  Component c(nullptr, nullptr);
  RecordingEvents events;
  c.service().SetEventSink(&events);
  const char* out = nullptr;
  ASSERT_EQ(c.service().Config("LenientReading=True", out), 0);
  void* params[1] = {const_cast<char*>(path.c_str())};
  int lengths[1] = {0};
  EXPECT_EQ(c.Do(method, 1, params, lengths), r.code) << c.service().GetLastError();
  if (r.code != 0) {
    EXPECT_EQ(std::string(c.service().GetLastError()).rfind(r.text, 0), 0u) << c.service().GetLastError();
  }
  if (r.count >= 0) {
    EXPECT_EQ(reinterpret_cast<intptr_t>(c.Get(count_id, 0, nullptr)), r.count);
  }
  // These files keep the rules lenient reading repairs; a repair here is a false alarm.
  for (const std::string& event : events.log) EXPECT_EQ(event.find("Error(210"), std::string::npos) << event;
}

TEST(LenientCorpusTest, EveryFileReadsAsACarefulReadingGives) {
  const auto files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "no corpus";
  for (const auto& [name, path] : files) {
    SCOPED_TRACE(name);
    int readings = 0;
    for (const Reading& r : kReadings) {
      if (name != r.file) continue;
      ++readings;
      switch (r.reader) {
        case Reader::kBank:
          Read<BankStatementComponent>(path, BANKSTATEMENT_METHOD_READOFXDATAFILE, BANKSTATEMENT_PROP_TXCOUNT, r);
          break;
        case Reader::kCard:
          Read<CCStatementComponent>(path, CCSTATEMENT_METHOD_READOFXDATAFILE, CCSTATEMENT_PROP_TXCOUNT, r);
          break;
        case Reader::kInvestment:
          Read<InvStatementComponent>(path, INVSTATEMENT_METHOD_READOFXDATAFILE, INVSTATEMENT_PROP_TXCOUNT, r);
          break;
        case Reader::kAccounts:
          Read<AccountComponent>(path, ACCOUNT_METHOD_READOFXDATAFILE, ACCOUNT_PROP_ACCCOUNT, r);
          break;
        case Reader::kProfile:
          Read<FIProfileComponent>(path, FIPROFILE_METHOD_READOFXDATAFILE, FIPROFILE_PROP_MESSAGESETCOUNT, r);
          break;
      }
    }
    EXPECT_GT(readings, 0) << "a new corpus file needs its careful reading in kReadings";
  }
}

}  // namespace
}  // namespace orvelan
