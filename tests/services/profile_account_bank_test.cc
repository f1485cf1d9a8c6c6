// A new institution set up end to end over TLS against the sandbox bank: the
// profile, its multi-factor challenge answered, and the account list.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "orvelan.h"
#include "services/account_component.h"
#include "services/fi_profile_component.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

template <class C>
struct Host {
  // The sign-on ids in the order of `values` below.
  Host(const int (&ids)[8], const std::string& url, const char* version) { SignOn(ids, url, version); }
  void SignOn(const int (&ids)[8], const std::string& url, const char* version) {
    const std::string values[] = {url, "mfa", "secret", "QWIN", "2700", "Orvelan Bank", "1234", version};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(Set(ids[i], values[i]), 0) << ids[i];
    const char* out = nullptr;
    EXPECT_EQ(component.service().Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
    // The dictionary leaves this aggregate out; the bank's 1.x profile has it.
    EXPECT_EQ(component.service().Config("ExtraTags=LOANMSGSETV1", out), 0);
  }
  int Set(int id, const std::string& value, int index = 0) { return component.Set(id, index, value.c_str(), 0); }
  std::string Get(int id, int index = 0) {
    const char* text = static_cast<const char*>(component.Get(id, index, nullptr));
    return text != nullptr ? text : "";
  }
  int64_t Int(int id, int index = 0) { return reinterpret_cast<intptr_t>(component.Get(id, index, nullptr)); }
  int Do(int method) { return component.Do(method, 0, nullptr, nullptr); }

  C component{nullptr, nullptr};
};

constexpr int kProfileIds[8] = {FIPROFILE_PROP_FIURL,         FIPROFILE_PROP_OFXUSER,       FIPROFILE_PROP_OFXPASSWORD,
                                FIPROFILE_PROP_OFXAPPID,      FIPROFILE_PROP_OFXAPPVERSION, FIPROFILE_PROP_FIORGANIZATION,
                                FIPROFILE_PROP_FIID,          FIPROFILE_PROP_OFXVERSION};
constexpr int kAccountIds[8] = {ACCOUNT_PROP_FIURL,         ACCOUNT_PROP_OFXUSER,       ACCOUNT_PROP_OFXPASSWORD,
                                ACCOUNT_PROP_OFXAPPID,      ACCOUNT_PROP_OFXAPPVERSION, ACCOUNT_PROP_FIORGANIZATION,
                                ACCOUNT_PROP_FIID,          ACCOUNT_PROP_OFXVERSION};

TEST(ProfileAccountBankTest, ProfileChallengeAndAccountsInBothDialects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<FIProfileComponent> profile(kProfileIds, bank.TlsUrl(), version);
    EXPECT_EQ(profile.Do(FIPROFILE_METHOD_GETPROFILE), 2001);
    EXPECT_EQ(std::string(profile.component.GetLastError()).substr(0, 30), "OFX server error (3000): MFA C");

    ASSERT_EQ(profile.Do(FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS), 0) << profile.component.GetLastError();
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT), 2);
    for (int i = 0; i < 2; ++i) {
      const bool colour = profile.Get(FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID, i) == "MFA13";
      EXPECT_NE(profile.Get(FIPROFILE_PROP_CHALLENGEQUESTIONLABEL, i).find(colour ? "colour" : "pet"),
                std::string::npos);
      ASSERT_EQ(profile.Set(FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, colour ? "blue" : "rex", i), 0);
    }
    ASSERT_EQ(profile.Do(FIPROFILE_METHOD_SENDCHALLENGEANSWERS), 0) << profile.component.GetLastError();
    EXPECT_NE(bank.Requests().back().body.find("<MFAPHRASEA>rex"), std::string::npos);
    // The answers earned a key; it survives the reset that ends the challenge.
    const std::string key = profile.Get(FIPROFILE_PROP_OFXACCESSKEY);
    ASSERT_FALSE(key.empty());

    ASSERT_EQ(profile.Do(FIPROFILE_METHOD_RESET), 0);
    profile.SignOn(kProfileIds, bank.TlsUrl(), version);
    ASSERT_EQ(profile.Do(FIPROFILE_METHOD_GETPROFILE), 0) << profile.component.GetLastError();
    EXPECT_EQ(profile.Get(FIPROFILE_PROP_FINAME), "Orvelan Sandbox Bank");
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_MESSAGESETCOUNT), 6);
    EXPECT_EQ(profile.Get(FIPROFILE_PROP_MESSAGESETNAME, 2), "BANKMSGSET");
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_MESSAGESETTXIMAGEAVAILABLE, 2), 1);
    EXPECT_EQ(profile.Get(FIPROFILE_PROP_MESSAGESETURL, 2), bank.TlsUrl());
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_SIGNONCOUNT), 1);
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_SIGNONMFACHALLENGESUPPORTED, 0), 1);
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_SIGNONCHARTYPE, 0), 2);
    // The host keeps the date it got; a profile that did not change since is
    // no profile but the server's message.
    const std::string date = profile.Get(FIPROFILE_PROP_LASTUPDATE);
    ASSERT_EQ(profile.Set(FIPROFILE_PROP_LASTUPDATE, date), 0);
    EXPECT_EQ(profile.Do(FIPROFILE_METHOD_GETPROFILE), 508);
    EXPECT_STREQ(profile.component.GetLastError(), "INFO: Client is up-to-date .");

    Host<AccountComponent> accounts(kAccountIds, bank.TlsUrl(), version);
    ASSERT_EQ(accounts.Set(ACCOUNT_PROP_OFXACCESSKEY, key), 0);
    ASSERT_EQ(accounts.Do(ACCOUNT_METHOD_GETINFO), 0) << accounts.component.GetLastError();
    ASSERT_EQ(accounts.Int(ACCOUNT_PROP_ACCCOUNT), 4);
    std::string kinds;
    for (int i = 0; i < 4; ++i) kinds += accounts.Get(ACCOUNT_PROP_ACCSERVICETYPE, i) + ",";
    EXPECT_EQ(kinds, "BANKING,CREDITCARD,INVESTMENT,,");  // a loan keeps only its texts
    EXPECT_EQ(accounts.Get(ACCOUNT_PROP_ACCDESCRIPTION, 3), "Home loan");
    EXPECT_NE(accounts.Get(ACCOUNT_PROP_ACCAGGREGATE, 3).find("L-9001"), std::string::npos);
    EXPECT_EQ(accounts.Get(ACCOUNT_PROP_ACCID, 1), "4111222233334444");
    // The next request sends the date the answer gave, and the list is current.
    ASSERT_EQ(accounts.Do(ACCOUNT_METHOD_GETINFO), 0) << accounts.component.GetLastError();
    EXPECT_EQ(accounts.Int(ACCOUNT_PROP_ACCCOUNT), 0);
  }
}

}  // namespace
}  // namespace orvelan
