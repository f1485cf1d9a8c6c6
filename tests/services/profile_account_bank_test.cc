// A new institution set up end to end over TLS against the sandbox bank: the
// profile, its multi-factor challenge answered, and the account list.
#include <gtest/gtest.h>

#include <string>

#include "orvelan.h"
#include "services/account_component.h"
#include "services/fi_profile_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

// Signed on as the user whose profile asks for a challenge first.
template <class C>
struct Host : ComponentHost<C> {
  Host(const std::string& url, const char* version) { SignOn(url, version); }
  void SignOn(const std::string& url, const char* version) {
    ComponentHost<C>::SignOn(url, "mfa", version);
    // The dictionary leaves this aggregate out; the bank's 1.x profile has it.
    const char* out = nullptr;
    EXPECT_EQ(this->service().Config("ExtraTags=LOANMSGSETV1", out), 0);
  }
};

TEST(ProfileAccountBankTest, ProfileChallengeAndAccountsInBothDialects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<FIProfileComponent> profile(bank.TlsUrl(), version);
    EXPECT_EQ(profile.Run(FIPROFILE_METHOD_GETPROFILE), 2001);
    EXPECT_EQ(std::string(profile.GetLastError()).substr(0, 30), "OFX server error (3000): MFA C");

    ASSERT_EQ(profile.Run(FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS), 0) << profile.GetLastError();
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT), 2);
    for (int i = 0; i < 2; ++i) {
      const bool colour = profile.Text(FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID, i) == "MFA13";
      EXPECT_NE(profile.Text(FIPROFILE_PROP_CHALLENGEQUESTIONLABEL, i).find(colour ? "colour" : "pet"),
                std::string::npos);
      ASSERT_EQ(profile.SetText(FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, colour ? "blue" : "rex", i), 0);
    }
    ASSERT_EQ(profile.Run(FIPROFILE_METHOD_SENDCHALLENGEANSWERS), 0) << profile.GetLastError();
    EXPECT_NE(bank.Requests().back().body.find("<MFAPHRASEA>rex"), std::string::npos);
    // The answers earned a key; it survives the reset that ends the challenge.
    const std::string key = profile.Text(FIPROFILE_PROP_OFXACCESSKEY);
    ASSERT_FALSE(key.empty());

    ASSERT_EQ(profile.Run(FIPROFILE_METHOD_RESET), 0);
    profile.SignOn(bank.TlsUrl(), version);
    ASSERT_EQ(profile.Run(FIPROFILE_METHOD_GETPROFILE), 0) << profile.GetLastError();
    EXPECT_EQ(profile.Text(FIPROFILE_PROP_FINAME), "Orvelan Sandbox Bank");
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_MESSAGESETCOUNT), 6);
    EXPECT_EQ(profile.Text(FIPROFILE_PROP_MESSAGESETNAME, 2), "BANKMSGSET");
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_MESSAGESETTXIMAGEAVAILABLE, 2), 1);
    EXPECT_EQ(profile.Text(FIPROFILE_PROP_MESSAGESETURL, 2), bank.TlsUrl());
    ASSERT_EQ(profile.Int(FIPROFILE_PROP_SIGNONCOUNT), 1);
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_SIGNONMFACHALLENGESUPPORTED, 0), 1);
    EXPECT_EQ(profile.Int(FIPROFILE_PROP_SIGNONCHARTYPE, 0), 2);
    // The host keeps the date it got; a profile that did not change since is
    // no profile but the server's message.
    const std::string date = profile.Text(FIPROFILE_PROP_LASTUPDATE);
    ASSERT_EQ(profile.SetText(FIPROFILE_PROP_LASTUPDATE, date), 0);
    EXPECT_EQ(profile.Run(FIPROFILE_METHOD_GETPROFILE), 508);
    EXPECT_STREQ(profile.GetLastError(), "INFO: Client is up-to-date .");

    Host<AccountComponent> accounts(bank.TlsUrl(), version);
    ASSERT_EQ(accounts.SetText(ACCOUNT_PROP_OFXACCESSKEY, key), 0);
    ASSERT_EQ(accounts.Run(ACCOUNT_METHOD_GETINFO), 0) << accounts.GetLastError();
    ASSERT_EQ(accounts.Int(ACCOUNT_PROP_ACCCOUNT), 4);
    std::string kinds;
    for (int i = 0; i < 4; ++i) kinds += accounts.Text(ACCOUNT_PROP_ACCSERVICETYPE, i) + ",";
    EXPECT_EQ(kinds, "BANKING,CREDITCARD,INVESTMENT,,");  // a loan keeps only its texts
    EXPECT_EQ(accounts.Text(ACCOUNT_PROP_ACCDESCRIPTION, 3), "Home loan");
    EXPECT_NE(accounts.Text(ACCOUNT_PROP_ACCAGGREGATE, 3).find("L-9001"), std::string::npos);
    EXPECT_EQ(accounts.Text(ACCOUNT_PROP_ACCID, 1), "4111222233334444");
    // The next request sends the date the answer gave, and the list is current.
    ASSERT_EQ(accounts.Run(ACCOUNT_METHOD_GETINFO), 0) << accounts.GetLastError();
    EXPECT_EQ(accounts.Int(ACCOUNT_PROP_ACCCOUNT), 0);
  }
}

}  // namespace
}  // namespace orvelan
