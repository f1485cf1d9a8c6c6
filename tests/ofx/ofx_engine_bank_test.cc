// Engine round trips against the scripted test bank over plain HTTP; the
// service's bank tests run both dialects over TLS.
#include <gtest/gtest.h>

#include <string>

#include "support/test_bank_server.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

void Prepare(TestOFXService& s, const std::string& url, const char* user, const char* version = "102") {
  ASSERT_EQ(s.InitDefaults(), 1);
  s.SetCredentials();
  s.SetOFXUser(user);
  s.SetTimeout(10);
  s.SetFIUrl(url.c_str());
  s.SetFIId("1234");
  s.SetOFXVersion(version);
  const char* out = nullptr;
  ASSERT_EQ(s.Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
}

TEST(EngineBankTest, AccessKeyGoesBackAndBrokenAnswersFail) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  TestOFXService s;
  Prepare(s, bank.Url(), "accesskey");
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_STREQ(s.OFXAccessKey(), "orvelan-access-key");
  ASSERT_EQ(s.Exchange(), 0) << "the key goes back in the next sign-on";
  EXPECT_NE(bank.Requests().back().body.find("<ACCESSKEY>orvelan-access-key\r\n</SONRQ>"), std::string::npos);

  TestOFXService bad;
  Prepare(bad, bank.Url(), "badofx");
  EXPECT_EQ(bad.Exchange(), 2003) << bad.GetLastError();
}

TEST(EngineBankTest, MultiFactorChallengeRoundTrip) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  TestOFXService s;
  Prepare(s, bank.Url(), "mfa", "211");
  EXPECT_EQ(s.Exchange(), 2001) << "status 3000 is an error severity";
  EXPECT_TRUE(s.MFAChallengePending());

  // The pending state sends the challenge request and reads the questions.
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_EQ(s.parse_calls, 0);
  ItemList<MFAChallenge>& questions = s.Challenges();
  ASSERT_EQ(questions.Count(), 2);
  EXPECT_STREQ(questions.Item(0)->phrase_label.Data(), "What is your favourite colour?");
  for (int32_t i = 0; i < questions.Count(); ++i) {
    questions.Item(i)->answer.Assign(questions.Item(i)->phrase_id.Equals("MFA13") ? "blue" : "rex");
  }
  s.SetMFAChallengePending(false);
  s.SetAnswersReady(true);
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_EQ(s.parse_calls, 1);
  EXPECT_NE(bank.Requests().back().body.find("<MFAPHRASEA>blue</MFAPHRASEA>"), std::string::npos);
}

}  // namespace
}  // namespace orvelan
