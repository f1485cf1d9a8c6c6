// The scripted test bank answers what the OFX engine sends and refuses what a
// strict bank would refuse; the engine and service tests rely on both.
#include <chrono>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "http/https_client.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

constexpr char kTrnUid[] = "3f2a0c00-1b2c-7d4e-0a6b-5f19-c2e10000";

class Client : public HttpsClient {
 public:
  explicit Client(bool trust_test_ca = false) {
    InitDefaults();
    SetTimeout(10);
    max_transferred_data_ = 0;
    if (trust_test_ca) {
      const char* out = nullptr;
      Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out);
    }
  }
  int Post(const std::string& url, const std::string& body, const char* type = "application/x-ofx") {
    SetContentType(type);
    SetPostData(body.data(), static_cast<int32_t>(body.size()));
    return PostToURL(url.c_str());
  }
  std::string Body() const { return std::string(TransferredData()); }
};

struct SignOn {
  std::string user = "user";
  std::string password = "secret";
  std::string answers;    // MFACHALLENGEA aggregates
  std::string challenge;  // an MFACHALLENGETRNRQ after SONRQ
};

// The two request dialects as the engine writes them.
std::string Request102(const SignOn& s, const std::string& body) {
  return "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
         "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n"
         "<DTCLIENT>20240115103000.000[+0:GMT]\r\n<USERID>" +
         s.user + "\r\n<USERPASS>" + s.password +
         "\r\n<LANGUAGE>ENG\r\n<FI>\r\n<ORG>Orvelan Bank\r\n<FID>1234\r\n</FI>\r\n<APPID>QWIN\r\n<APPVER>2700\r\n" +
         s.answers + "</SONRQ>\r\n" + s.challenge + "</SIGNONMSGSRQV1>\r\n" + body + "</OFX>";
}

std::string Statement102(const std::string& trnuid = kTrnUid) {
  return "<BANKMSGSRQV1>\r\n<STMTTRNRQ>\r\n<TRNUID>" + trnuid +
         "\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>1234567890\r\n<ACCTTYPE>CHECKING\r\n"
         "</BANKACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>20240101\r\n<DTEND>20240131\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n"
         "</STMTRQ>\r\n</STMTTRNRQ>\r\n</BANKMSGSRQV1>\r\n";
}

std::string Request211(const std::string& user, const std::string& body) {
  return "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n"
         "<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>20240115103000.000[+0:GMT]</DTCLIENT>\r\n<USERID>" +
         user +
         "</USERID>\r\n<USERPASS>secret</USERPASS>\r\n<LANGUAGE>ENG</LANGUAGE>\r\n<FI>\r\n<ORG>Orvelan Bank</ORG>\r\n"
         "</FI>\r\n<APPID>QWIN</APPID>\r\n<APPVER>2700</APPVER>\r\n</SONRQ>\r\n</SIGNONMSGSRQV1>\r\n" +
         body + "</OFX>";
}

std::string Closing211() {
  return std::string("<BANKMSGSRQV1>\r\n<STMTENDTRNRQ>\r\n<TRNUID>") + kTrnUid +
         "</TRNUID>\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248</BANKID>\r\n<ACCTID>42</ACCTID>\r\n"
         "<ACCTTYPE>SAVINGS</ACCTTYPE>\r\n</BANKACCTFROM>\r\n<DTSTART>20240101</DTSTART>\r\n"
         "<DTEND>20240229</DTEND>\r\n</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n</BANKMSGSRQV1>\r\n";
}

std::string Image211(const std::string& reference) {
  return std::string("<IMAGEMSGSRQV1>\r\n<IMAGETRNRQ>\r\n<TRNUID>") + kTrnUid +
         "</TRNUID>\r\n<IMAGERQ>\r\n<IMAGEREF>" + reference +
         "</IMAGEREF>\r\n</IMAGERQ>\r\n</IMAGETRNRQ>\r\n</IMAGEMSGSRQV1>\r\n";
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
std::string Without(std::string text, const std::string& part) { return text.erase(text.find(part), part.size()); }

TEST(TestBankTest, AnswersA102StatementInSGML) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  Client c;
  const std::string request = Request102({}, Statement102());
  ASSERT_EQ(c.Post(bank.Url(), request), 0) << c.GetLastError();
  EXPECT_EQ(c.StatusCode(), 200);
  EXPECT_STREQ(c.ResponseContentType(), "application/x-ofx");
  const std::string body = c.Body();
  EXPECT_EQ(body.rfind("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n", 0), 0u) << body;
  for (const char* part : {"<SONRS>\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n</STATUS>\r\n",
                           "<STMTTRNRS>\r\n<TRNUID>3f2a0c00-1b2c-7d4e-0a6b-5f19-c2e10000\r\n",
                           "<ACCTID>1234567890\r\n", "<DTSTART>20240101\r\n<DTEND>20240131\r\n<STMTTRN>\r\n",
                           "<DTPOSTED>202401", "<LEDGERBAL>\r\n<BALAMT>", "<AVAILBAL>\r\n<BALAMT>"}) {
    EXPECT_TRUE(Has(body, part)) << part;
  }
  EXPECT_FALSE(Has(body, "</CODE>"));
  EXPECT_EQ(body.substr(body.size() - 8), "</OFX>\r\n");

  const std::vector<TestBankServer::Request> seen = bank.Requests();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].status, 200);
  EXPECT_EQ(seen[0].content_type, "application/x-ofx");
  EXPECT_EQ(seen[0].body, request);
}

TEST(TestBankTest, AnswersA211ClosingInXML) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  Client c;
  ASSERT_EQ(c.Post(bank.Url(), Request211("user", Closing211())), 0) << c.GetLastError();
  const std::string body = c.Body();
  EXPECT_TRUE(Has(body, "<?OFX OFXHEADER=\"200\" VERSION=\"211\" ")) << body;
  EXPECT_TRUE(Has(body, "<STMTENDTRNRS>\r\n<TRNUID>3f2a0c00-1b2c-7d4e-0a6b-5f19-c2e10000</TRNUID>\r\n"));
  EXPECT_TRUE(Has(body, "<CODE>0</CODE>"));
  // One closing per month of the range.
  EXPECT_TRUE(Has(body, "<FITID>CL-42-202401</FITID>"));
  EXPECT_TRUE(Has(body, "<DTCLOSE>20240229235959.000[-5:EST]</DTCLOSE>"));
  EXPECT_FALSE(Has(body, "CL-42-202403"));
}

struct Malformed {
  const char* name;
  const char* content_type;
  std::string body;
  const char* reason;
};

TEST(TestBankTest, RefusesMalformedRequestsWith400) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  const std::string good = Request102({}, Statement102());
  const auto replace = [&](const std::string& from, const std::string& to) {
    std::string s = good;
    return s.replace(s.find(from), from.size(), to);
  };
  const Malformed cases[] = {
      {"content type", "text/xml", good, "Content-Type must be application/x-ofx"},
      {"no header", "application/x-ofx", good.substr(good.find("<OFX>")), "no OFX header"},
      {"header order", "application/x-ofx", replace("VERSION:102\r\nSECURITY:NONE", "SECURITY:NONE\r\nVERSION:102"),
       "header fields must be"},
      {"header without blank line", "application/x-ofx", replace("NEWFILEUID:NONE\r\n\r\n", "NEWFILEUID:NONE\r\n"),
       "header"},
      {"upper-case TRNUID", "application/x-ofx", Request102({}, Statement102("3F2A0C00-1B2C-7D4E-0A6B-5F19-C2E10000")),
       "TRNUID"},
      {"short TRNUID", "application/x-ofx", Request102({}, Statement102("1234")), "TRNUID '1234'"},
      {"no password", "application/x-ofx", replace("<USERPASS>secret\r\n", ""), "SONRQ lacks <USERPASS>"},
      {"DTCLIENT", "application/x-ofx", replace("<DTCLIENT>20240115103000.000[+0:GMT]", "<DTCLIENT>01/15/2024"),
       "DTCLIENT"},
      {"sign-on order", "application/x-ofx", replace("<LANGUAGE>ENG\r\n", "<APPVER>1\r\n<LANGUAGE>ENG\r\n"),
       "out of order"},
      {"unclosed aggregate", "application/x-ofx", replace("</STMTRQ>\r\n", ""), "does not close"},
      {"XML leaf without end tag", "application/x-ofx", Without(Request211("user", Closing211()), "</APPVER>"),
       "<APPVER> has no end tag"},
      {"not a message set", "application/x-ofx", Request102({}, "<STMTTRNRQ>\r\n</STMTTRNRQ>\r\n"),
       "not a request message set"},
  };
  for (const Malformed& m : cases) {
    SCOPED_TRACE(m.name);
    Client c;
    EXPECT_EQ(c.Post(bank.Url(), m.body, m.content_type), 151);
    EXPECT_EQ(c.StatusCode(), 400);
    EXPECT_TRUE(Has(c.Body(), m.reason)) << c.Body();
  }
  EXPECT_EQ(bank.Requests().size(), std::size(cases));
}

struct ScenarioCase {
  const char* user;
  const char* password;
  int rc;
  int status;
  const char* content_type;
  const char* part;  // of the body
};

TEST(TestBankTest, ScenariosFollowTheUserId) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  const ScenarioCase cases[] = {
      {"user", "wrong", 0, 200, "application/x-ofx", "<CODE>15500\r\n<SEVERITY>ERROR\r\n"},
      {"error2001", "secret", 0, 200, "application/x-ofx", "<STATUS>\r\n<CODE>2001\r\n<SEVERITY>ERROR\r\n</STATUS>"},
      {"warn", "secret", 0, 200, "application/x-ofx", "<CODE>2028\r\n<SEVERITY>WARN\r\n<MESSAGE>"},
      {"info", "secret", 0, 200, "application/x-ofx", "<CODE>10000\r\n<SEVERITY>INFO\r\n<MESSAGE>"},
      {"mfa", "secret", 0, 200, "application/x-ofx", "<CODE>3000\r\n<SEVERITY>ERROR\r\n"},
      {"accesskey", "secret", 0, 200, "application/x-ofx", "</FI>\r\n<ACCESSKEY>orvelan-access-key\r\n</SONRS>"},
      {"user7", "secret", 0, 200, "application/x-ofx", "<FITID>1234567890-20240127-00007\r\n"},
      {"unknowntags", "secret", 0, 200, "application/x-ofx", "<XFOOMSGSRSV1>"},
      {"badofx", "secret", 0, 200, "application/x-ofx", "<SONRS>\r\n</SIGNONMSGSRSV1>"},
      {"http500", "secret", 151, 500, "text/html", "Internal Server Error"},
      {"status", "secret", 0, 200, "application/x-ofx", "OFX-STATUS=16510"},
      {"status15502", "secret", 0, 200, "application/x-ofx", "OFX-STATUS=15502"},
  };
  for (const ScenarioCase& s : cases) {
    SCOPED_TRACE(s.user);
    Client c;
    SignOn signon;
    signon.user = s.user;
    signon.password = s.password;
    EXPECT_EQ(c.Post(bank.Url(), Request102(signon, Statement102())), s.rc) << c.GetLastError();
    EXPECT_EQ(c.StatusCode(), s.status);
    EXPECT_STREQ(c.ResponseContentType(), s.content_type);
    EXPECT_TRUE(Has(c.Body(), s.part)) << c.Body();
  }
}

TEST(TestBankTest, MultiFactorChallengeAndAnswers) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  SignOn signon;
  signon.user = "mfa";
  signon.challenge = std::string("<MFACHALLENGETRNRQ>\r\n<TRNUID>") + kTrnUid +
                     "\r\n<MFACHALLENGERQ>\r\n<DTCLIENT>20240115103000.000[+0:GMT]\r\n</MFACHALLENGERQ>\r\n"
                     "</MFACHALLENGETRNRQ>\r\n";
  Client c;
  ASSERT_EQ(c.Post(bank.Url(), Request102(signon, "")), 0) << c.GetLastError();
  EXPECT_TRUE(Has(c.Body(), "</SONRS>\r\n<MFACHALLENGETRNRS>\r\n<TRNUID>")) << c.Body();
  EXPECT_TRUE(Has(c.Body(), "<MFACHALLENGE>\r\n<MFAPHRASEID>MFA13\r\n<MFAPHRASELABEL>What is your favourite colour?"));
  EXPECT_TRUE(Has(c.Body(), "<MFAPHRASEID>MFA107\r\n"));

  const auto answers = [](const char* colour) {
    return std::string("<MFACHALLENGEA>\r\n<MFAPHRASEID>MFA13\r\n<MFAPHRASEA>") + colour +
           "\r\n</MFACHALLENGEA>\r\n<MFACHALLENGEA>\r\n<MFAPHRASEID>MFA107\r\n<MFAPHRASEA>Rex\r\n</MFACHALLENGEA>\r\n";
  };
  signon.challenge.clear();
  signon.answers = answers("Blue");
  ASSERT_EQ(c.Post(bank.Url(), Request102(signon, Statement102())), 0) << c.GetLastError();
  EXPECT_TRUE(Has(c.Body(), "<CODE>0\r\n"));
  EXPECT_TRUE(Has(c.Body(), "<STMTTRN>"));
  signon.answers = answers("red");
  ASSERT_EQ(c.Post(bank.Url(), Request102(signon, Statement102())), 0) << c.GetLastError();
  EXPECT_TRUE(Has(c.Body(), "<CODE>3001\r\n"));
  EXPECT_FALSE(Has(c.Body(), "<STMTTRN>"));
}

TEST(TestBankTest, ImagesComeWithTheirContentType) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  const struct {
    const char* reference;
    const char* content_type;
  } cases[] = {{"img-1.png", "image/png"}, {"opaque-ref", "image/png"}, {"scan.JPG", "image/jpeg"},
               {"stmt.pdf", "Application/pdf"}, {"scan.tiff", "image/tiff"}};
  for (const auto& image : cases) {
    SCOPED_TRACE(image.reference);
    Client c;
    ASSERT_EQ(c.Post(bank.Url(), Request211("user", Image211(image.reference))), 0) << c.GetLastError();
    EXPECT_STREQ(c.ResponseContentType(), image.content_type);
    EXPECT_EQ(c.Body().rfind("\x89PNG\r\n\x1a\n", 0), 0u);
    EXPECT_TRUE(Has(c.Body(), std::string("Comment") + '\0' + image.reference));
  }
  Client c;
  ASSERT_EQ(c.Post(bank.Url(), Request211("user", Image211("missing"))), 0);
  EXPECT_EQ(c.Body(), "OFX-STATUS=16512");
}

TEST(TestBankTest, StallNeverAnswers) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  Client c;
  c.SetTimeout(1);
  SignOn signon;
  signon.user = "stall";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(c.Post(bank.Url(), Request102(signon, Statement102())), 301);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  const std::vector<TestBankServer::Request> seen = bank.Requests();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].status, 0);
}

TEST(TestBankTest, AnswersBehindTls) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  Client c(true);
  const std::string request = Request211("user", Closing211());
  ASSERT_EQ(c.Post(bank.TlsUrl(), request), 0) << c.GetLastError();
  EXPECT_STREQ(c.ResponseContentType(), "application/x-ofx");
  EXPECT_TRUE(Has(c.Body(), "<STMTENDRS>")) << c.Body();
  const std::vector<TestBankServer::Request> seen = bank.Requests();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].body, request);
}

}  // namespace
}  // namespace orvelan
