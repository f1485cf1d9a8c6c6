// The profile and account list over canned responses: requests, what each
// response kind fills, and every failure the host can meet.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "services/account_component.h"
#include "services/fi_profile_component.h"
#include "support/component_host.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

const std::string kAccounts = OfxResponse(
    "SIGNUPMSGSRSV1", "ACCTINFOTRNRS",
    "<ACCTINFORS><DTACCTUP>20260110120000"
    "<ACCTINFO><DESC>Checking<PHONE>555-0100<BANKACCTINFO><BANKACCTFROM><BANKID>021000021<ACCTID>111"
    "<ACCTTYPE>CHECKING</BANKACCTFROM><SUPTXDL>Y<XFERSRC>y<XFERDEST>N<SVCSTATUS>ACTIVE</BANKACCTINFO></ACCTINFO>"
    "<ACCTINFO><DESC>Card<CCACCTINFO><CCACCTFROM><ACCTID>4111<ACCTKEY>K9</CCACCTFROM><SUPTXDL>Y<XFERSRC>N"
    "<XFERDEST>Y<SVCSTATUS>PEND</CCACCTINFO></ACCTINFO>"
    "<ACCTINFO><DESC>Loan<PHONE>555-0199<LOANACCTINFO><LOANACCTFROM><LOANACCTID>L1</LOANACCTFROM></LOANACCTINFO>"
    "</ACCTINFO>"
    "<ACCTINFO><INVACCTINFO><INVACCTFROM><BROKERID>b.example<ACCTID>900</INVACCTFROM><USPRODUCTTYPE>401K"
    "<CHECKING>Y<SVCSTATUS>ACTIVE<INVACCTTYPE>INDIVIDUAL</INVACCTINFO></ACCTINFO>"
    "<ACCTINFO><BPACCTINFO><BANKACCTFROM><BANKID>1<ACCTID>2<ACCTTYPE>SAVINGS</BANKACCTFROM><SVCSTATUS>AVAIL"
    "</BPACCTINFO></ACCTINFO></ACCTINFORS>");

std::string MessageSet(const std::string& name, const std::string& extra) {
  return "<" + name + "><" + name + "V1><MSGSETCORE><VER>1<URL>https://b.example/ofx<OFXSEC>NONE<TRANSPSEC>y"
         "<SIGNONREALM>R1<LANGUAGE>ENG<SYNCMODE>LITE<RESPFILEER>N<SPNAME>Corp</MSGSETCORE>" +
         extra + "</" + name + "V1></" + name + ">";
}

const std::string kProfile = OfxResponse(
    "PROFMSGSRSV1", "PROFTRNRS",
    "<PROFRS><MSGSETLIST>" + MessageSet("SIGNONMSGSET", "") +
        MessageSet("BANKMSGSET", "<CLOSINGAVAIL>Y<IMAGEPROF><TRANIMGAVAIL>Y</IMAGEPROF>") +
        MessageSet("PROFMSGSET", "") +
        "</MSGSETLIST><SIGNONINFOLIST><SIGNONINFO><SIGNONREALM>R1<MIN>6<MAX>32<CHARTYPE>alphaornumeric"
        "<CASESEN>Y<SPECIAL>N<SPACES>N<PINCH>Y<CHGPINFIRST>N<MFACHALLENGESUPT>Y</SIGNONINFO>"
        "<SIGNONINFO><SIGNONREALM>R2<MIN>x<MAX>-4<CHARTYPE>KANJI<CASESEN>N<SPECIAL>Y<SPACES>Y<PINCH>N<CHGPINFIRST>Y"
        "</SIGNONINFO></SIGNONINFOLIST><DTPROFUP>20251201<FINAME>Orvelan Bank<ADDR1>1 Main St<CITY>Springfield"
        "<STATE>IL<POSTALCODE>62701<COUNTRY>USA<URL>https://b.example</PROFRS>");

using Accounts = ComponentHost<AccountComponent>;
using Profile = ComponentHost<FIProfileComponent>;

TEST(ProfileAccountTest, RequestsByVersion) {
  Accounts accounts;
  Profile profile;
  ASSERT_EQ(profile.SetInt(FIPROFILE_PROP_CLIENTROUTING, 2), 0);
  const std::tuple<bool, const char*, const char*> cases[] = {
      {true, "102",
       "<ACCTINFOTRNRQ>\r\n<TRNUID>T\r\n<ACCTINFORQ>\r\n<DTACCTUP>20000101120000.000[+0:GMT]\r\n</ACCTINFORQ>\r\n"
       "</ACCTINFOTRNRQ>\r\n"},
      {true, "211",
       "<ACCTINFOTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<ACCTINFORQ>\r\n<DTACCTUP>20000101120000.000[+0:GMT]</DTACCTUP>\r\n"
       "</ACCTINFORQ>\r\n</ACCTINFOTRNRQ>\r\n"},
      {false, "102",
       "<PROFTRNRQ>\r\n<TRNUID>T\r\n<PROFRQ>\r\n<CLIENTROUTING>MSGSET\r\n<DTPROFUP>20000101120000.000[+0:GMT]\r\n"
       "</PROFRQ>\r\n</PROFTRNRQ>\r\n"},
      {false, "211",
       "<PROFTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<PROFRQ>\r\n<CLIENTROUTING>MSGSET</CLIENTROUTING>\r\n"
       "<DTPROFUP>20000101120000.000[+0:GMT]</DTPROFUP>\r\n</PROFRQ>\r\n</PROFTRNRQ>\r\n"},
  };
  for (const auto& [account, version, expected] : cases) {
    SCOPED_TRACE(std::string(account ? "account " : "profile ") + version);
    OFXClient& s = account ? static_cast<OFXClient&>(accounts.service()) : profile.service();
    s.SetOFXVersion(version);
    const std::string sent =
        account ? accounts.Text(ACCOUNT_PROP_OFXREQUEST) : profile.Text(FIPROFILE_PROP_OFXREQUEST);
    EXPECT_EQ(Replace(sent, s.TransactionId(), "T"), expected);
    ByteString wrapped;
    ASSERT_EQ(s.BuildMessageSets(wrapped, true), 0);
    EXPECT_EQ(wrapped.View().substr(0, 16), account ? "<SIGNUPMSGSRQV1>" : "<PROFMSGSRQV1>\r\n");
  }
  // The list's date goes out with the next request.
  ASSERT_EQ(accounts.Respond(kAccounts), 0) << accounts.GetLastError();
  EXPECT_NE(accounts.Text(ACCOUNT_PROP_OFXREQUEST).find("<DTACCTUP>20260110120000\r\n"), std::string::npos);
}

TEST(ProfileAccountTest, AccountList) {
  Accounts a;
  ASSERT_EQ(a.Respond(kAccounts), 0) << a.GetLastError();
  EXPECT_EQ(a.Text(ACCOUNT_PROP_LASTUPDATE), "01/10/2026 12:00:00");
  ASSERT_EQ(a.Int(ACCOUNT_PROP_ACCCOUNT), 5);
  // Per account: service type, type, id, bank id, key, status, description, phone.
  const std::tuple<const char*, const char*, const char*, const char*, const char*, const char*, const char*,
                   const char*>
      rows[] = {{"BANKING", "CHECKING", "111", "021000021", "", "ACTIVE", "Checking", "555-0100"},
                {"CREDITCARD", "CREDITCARD", "4111", "", "K9", "PEND", "Card", ""},
                {"", "", "", "", "", "", "Loan", "555-0199"},
                {"INVESTMENT", "INDIVIDUAL", "900", "", "", "ACTIVE", "", ""},
                {"PAYMENT", "", "", "", "", "AVAIL", "", ""}};
  int i = 0;
  for (const auto& [service, type, id, bank, key, status, desc, phone] : rows) {
    SCOPED_TRACE(i);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCSERVICETYPE, i), service);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCTYPE, i), type);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCID, i), id);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCBANKID, i), bank);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCKEY, i), key);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCSTATUS, i), status);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCDESCRIPTION, i), desc);
    EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCPHONE, i++), phone);
  }
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCISTRANSFERSOURCE, 0), 1);  // "y"
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCISTRANSFERDESTINATION, 0), 0);
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCISTRANSFERDESTINATION, 1), 1);
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCCHECKING, 3), 1);
  EXPECT_EQ(a.Text(ACCOUNT_PROP_ACCUSPRODUCTTYPE, 3), "401K");
  EXPECT_NE(a.Text(ACCOUNT_PROP_ACCAGGREGATE, 2).find("L1"), std::string::npos);

  // An empty list, and a file holding only an enrolment answer.
  ASSERT_EQ(a.Respond(Replace(kAccounts, kAccounts.substr(kAccounts.find("<ACCTINFO>"),
                                                         kAccounts.find("</ACCTINFORS>") - kAccounts.find("<ACCTINFO>")),
                              "")),
            0);
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCCOUNT), 0);
  TempFile file("enroll");
  file.Write("<OFX><SIGNUPMSGSRSV1><ENROLLTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS></ENROLLTRNRS>"
             "</SIGNUPMSGSRSV1></OFX>");
  EXPECT_EQ(a.service().ReadOFXDataFile(file.c_str()), 0) << a.GetLastError();
  EXPECT_EQ(a.Int(ACCOUNT_PROP_ACCCOUNT), 0);
}

TEST(ProfileAccountTest, Profile) {
  Profile p;
  ASSERT_EQ(p.Set(FIPROFILE_PROP_LASTUPDATE, 0, "03/04/2024 05:06:07", 0), 0);
  EXPECT_EQ(p.Text(FIPROFILE_PROP_LASTUPDATE), "03/04/2024 05:06:07");
  ASSERT_EQ(p.Respond(kProfile), 0) << p.GetLastError();
  EXPECT_EQ(p.Text(FIPROFILE_PROP_LASTUPDATE), "12/01/2025 00:00:00");  // the profile's own date now
  EXPECT_EQ(p.Text(FIPROFILE_PROP_FINAME) + "|" + p.Text(FIPROFILE_PROP_FICITY) + "|" +
                p.Text(FIPROFILE_PROP_FIHOMEPAGE) + "|" + p.Text(FIPROFILE_PROP_FIADDRESS2),
            "Orvelan Bank|Springfield|https://b.example|");
  ASSERT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETCOUNT), 3);
  EXPECT_EQ(p.Text(FIPROFILE_PROP_MESSAGESETNAME, 0) + p.Text(FIPROFILE_PROP_MESSAGESETNAME, 1) +
                p.Text(FIPROFILE_PROP_MESSAGESETNAME, 2),
            "SIGNONMSGSETBANKMSGSETPROFMSGSET");
  EXPECT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETTXIMAGEAVAILABLE, 1), 1);
  EXPECT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETCLOSINGIMAGEAVAILABLE, 1), 0);
  EXPECT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETCLOSINGAVAILABLE, 1), 1);
  EXPECT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETTRANSPORTSECURITY, 2), 1);  // "y"
  EXPECT_EQ(p.Int(FIPROFILE_PROP_MESSAGESETRECOVERY, 2), 0);
  EXPECT_EQ(p.Text(FIPROFILE_PROP_MESSAGESETURL, 2), "https://b.example/ofx");
  ASSERT_EQ(p.Int(FIPROFILE_PROP_SIGNONCOUNT), 2);
  // Realm, min, max, char type, case, special, MFA supported.
  const std::tuple<const char*, int, int, int, int, int, int> realms[] = {{"R1", 6, 32, 2, 1, 0, 1},
                                                                          {"R2", 0, -4, -1, 0, 1, 0}};
  int i = 0;
  for (const auto& [realm, min, max, chars, cases, special, mfa] : realms) {
    SCOPED_TRACE(realm);
    EXPECT_EQ(p.Text(FIPROFILE_PROP_SIGNONREALM, i), realm);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONMINCHARS, i), min);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONMAXCHARS, i), max);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONCHARTYPE, i), chars);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONCASESENSITIVE, i), cases);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONSPECIAL, i), special);
    EXPECT_EQ(p.Int(FIPROFILE_PROP_SIGNONMFACHALLENGESUPPORTED, i++), mfa);
  }
}

// Sets a date the format cannot read: only names (here AM/PM) can fail.
template <class H>
int SetBadDate(H& host, int id) {
  const char* out = nullptr;
  const std::string before = host.Text(id);
  host.service().Config("DateFormat=MM/dd/YYYY HH:mm:ss A", out);
  const int rc = host.Set(id, 0, "01/02/2020 00:00:00 XX", 0);
  host.service().Config("DateFormat=MM/dd/YYYY HH:mm:ss", out);
  EXPECT_EQ(host.Text(id), before);
  return rc;
}

TEST(ProfileAccountTest, Failures) {
  Accounts a;
  const auto account_without = [&a](const char* part) {
    return [&a, part] { return a.Respond(Replace(kAccounts, part, "")); };
  };
  ASSERT_EQ(a.Set(ACCOUNT_PROP_LASTUPDATE, 0, "01/02/2020 00:00:00", 0), 0);
  ExpectFailures(
      a, {{[&a] { return SetBadDate(a, ACCOUNT_PROP_LASTUPDATE); }, 676, "Cannot parse date."},
          {account_without("<DTACCTUP>20260110120000"), 2000, kExpectedElement},
          {account_without("<SUPTXDL>Y"), 202, "Required field missing: \"SUPTXDL\"."},
          {account_without("<USPRODUCTTYPE>401K"), 202, "Required field missing: \"USPRODUCTTYPE\"."},
          {[&a] { return a.Respond(Replace(kAccounts, "<CODE>0<SEVERITY>INFO</STATUS><ACCTINFORS>",
                                           "<CODE>2000<SEVERITY>ERROR</STATUS><ACCTINFORS>")); },
           2001, "OFX server error (2000): General error"},
          {[&a] {
             return a.Respond("<OFX><SIGNUPMSGSRSV1><ENROLLTRNRS><TRNUID>1<STATUS><CODE>13000<SEVERITY>ERROR"
                              "<MESSAGE>No</STATUS></ENROLLTRNRS></SIGNUPMSGSRSV1></OFX>");
           },
           2001, "OFX server error (13000): No"}});

  Profile p;
  const auto profile_with = [&p](const char* part, const char* by) {
    return [&p, part, by] { return p.Respond(Replace(kProfile, part, by)); };
  };
  ExpectFailures(
      p, {{[&p] { return p.SetInt(FIPROFILE_PROP_CLIENTROUTING, 3); }, 432, "ClientRouting must be a valid value."},
          {[&p] { return SetBadDate(p, FIPROFILE_PROP_LASTUPDATE); }, 676, "Cannot parse date."},
          {[&p] { return p.Do(FIPROFILE_METHOD_SENDCHALLENGEANSWERS, 0, nullptr, nullptr); }, 2000,
           "Missing required MFA fields: Challenge QuestionId/Answer pairs are missing in the request."},
          {profile_with("<CODE>0<SEVERITY>INFO</STATUS><PROFRS>", "<CODE>1<SEVERITY>INFO</STATUS><PROFRS>"), 508,
           "INFO: Client is up-to-date ."},
          {profile_with("<FINAME>Orvelan Bank", ""), 2000, kExpectedElement},
          {profile_with("<OFXSEC>NONE", ""), 202, "Required field missing: \"OFXSEC\"."},
          {profile_with("<CHARTYPE>KANJI", ""), 202, "Required field missing: \"CHARTYPE\"."},
          {[&p] { return p.Respond(Replace(Replace(kProfile, "<BANKMSGSETV1>", "<BANKMSGSETV2>"), "</BANKMSGSETV1>", "</BANKMSGSETV2>")); },
           208, "No such child."}});
  EXPECT_EQ(p.Int(FIPROFILE_PROP_CLIENTROUTING), 0);
  const size_t list = kProfile.find("<MSGSETLIST>");
  EXPECT_EQ(p.Respond(kProfile.substr(0, list) + kProfile.substr(kProfile.find("</MSGSETLIST>") + 13)), 208);
}

TEST(ProfileAccountTest, EveryIndexedPropertyChecksItsIndex) {
  ExpectEveryId(AccountTables(), 42);
  ExpectEveryId(FIProfileTables(), 80);
  Accounts a;
  Profile p;
  ASSERT_EQ(a.Respond(kAccounts), 0) << a.GetLastError();
  ASSERT_EQ(p.Respond(kProfile), 0) << p.GetLastError();
  ASSERT_EQ(p.SetInt(FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT, 1), 0);
  ExpectIndexedLists(a, {{ACCOUNT_PROP_ACCTYPE, ACCOUNT_PROP_ACCUSPRODUCTTYPE, 5, "Invalid AccIndex (out of bounds)."}});
  ExpectIndexedLists(
      p, {{FIPROFILE_PROP_CHALLENGEQUESTIONAGGREGATE, FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID, 1,
           "Invalid ChallengeQuestionIndex (out of bounds)."},
          {FIPROFILE_PROP_MESSAGESETAGGREGATE, FIPROFILE_PROP_MESSAGESETVERSION, 3,
           "Invalid MessageSetIndex (out of bounds)."},
          {FIPROFILE_PROP_SIGNONAGGREGATE, FIPROFILE_PROP_SIGNONUSERCRED2LABEL, 2, "Invalid SignOnIndex (out of bounds)."}});
  // The answer set says why a bad index fails but keeps the last code.
  ASSERT_EQ(p.Set(FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, 0, "blue", 0), 0);
  EXPECT_EQ(p.Set(FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, 1, "rex", 0), 432);
  EXPECT_EQ(p.GetLastErrorCode(), 0);
  EXPECT_STREQ(p.GetLastError(), "Invalid ChallengeQuestionIndex (out of bounds).");
  EXPECT_EQ(p.Text(FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, 0), "blue");
}

}  // namespace
}  // namespace orvelan
