#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

// The literal templates with DTCLIENT written as "{DT}" and every TRNUID as
// "{ID}"; Masked() turns a built request into the same form.
constexpr char kHeader102[] =
    "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
    "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n";
constexpr char kHeader211[] =
    "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n";
constexpr char kStatement1[] =
    "<BANKMSGSRQV1>\r\n<STMTTRNRQ>\r\n<TRNUID>{ID}\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>123456789\r\n"
    "</BANKACCTFROM>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n</BANKMSGSRQV1>\r\n";

std::string Masked(const ByteString& request) {
  static const std::regex kDate("<DTCLIENT>[^<\r]*");
  static const std::regex kTrnuid("<TRNUID>[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{8}");
  std::string text(request.View());
  text = std::regex_replace(text, kDate, "<DTCLIENT>{DT}");
  return std::regex_replace(text, kTrnuid, "<TRNUID>{ID}");
}

class RequestTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(service_.InitDefaults(), 1);
    service_.SetCredentials();
  }
  std::string Build(bool with_credentials = true) {
    ByteString out;
    EXPECT_EQ(service_.BuildRequest(out, with_credentials), 0);
    return Masked(out);
  }
  int Config(const std::string& text) {
    const char* out = nullptr;
    return service_.Config(text.c_str(), out);
  }

  TestOFXService service_;
};

TEST_F(RequestTest, Version102StatementWithoutFIIdAndVersionChanges) {
  EXPECT_EQ(Build(), std::string(kHeader102) +
                         "<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>{DT}\r\n<USERID>user\r\n"
                         "<USERPASS>secret\r\n<LANGUAGE>ENG\r\n<FI>\r\n<ORG>Test Bank\r\n</FI>\r\n<APPID>QWIN\r\n"
                         "<APPVER>2500\r\n</SONRQ>\r\n</SIGNONMSGSRQV1>\r\n" +
                         kStatement1 + "</OFX>");
  // Version changes take effect at the next build.
  service_.SetOFXVersion("211");
  EXPECT_EQ(Build().rfind(kHeader211, 0), 0u);
  service_.SetOFXVersion("302");  // neither 1.x nor 2.x: the 2.x templates stay
  const std::string request = Build();
  EXPECT_EQ(request.rfind("<?OFX OFXHEADER=\"200\" VERSION=\"302\"", 0), 0u) << request;
  service_.SetOFXVersion("103");
  EXPECT_EQ(Build().rfind("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:103\r\n", 0), 0u);
}

TEST_F(RequestTest, Version211CarriesEndTagsAndEveryOptionalSignonElement) {
  service_.SetOFXVersion("211");
  service_.SetFIId("1001");
  service_.SetOFXAccessKey("KEY");
  for (const char* setting : {"ClientUId=CU", "UserCred1A=C1", "UserCred2A=C2", "AuthToken=AT"}) {
    ASSERT_EQ(Config(setting), 0);
  }
  const std::string request = Build();
  EXPECT_EQ(request.substr(0, request.find("<BANKMSGSRQV1>")),
            std::string(kHeader211) +
                "<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>{DT}</DTCLIENT>\r\n<USERID>user</USERID>\r\n"
                "<USERPASS>secret</USERPASS>\r\n<LANGUAGE>ENG</LANGUAGE>\r\n<FI>\r\n<ORG>Test Bank</ORG>\r\n"
                "<FID>1001</FID>\r\n</FI>\r\n<APPID>QWIN</APPID>\r\n<APPVER>2500</APPVER>\r\n"
                "<CLIENTUID>CU</CLIENTUID>\r\n<USERCRED1>C1</USERCRED1>\r\n<USERCRED2>C2</USERCRED2>\r\n"
                "<AUTHTOKEN>AT</AUTHTOKEN>\r\n<ACCESSKEY>KEY</ACCESSKEY>\r\n</SONRQ>\r\n</SIGNONMSGSRQV1>\r\n");
}

// In version 2 the password change stays SGML; an image reference replaces the message sets.
TEST_F(RequestTest, PasswordChangeAndImageReference) {
  service_.SetOFXVersion("211");
  ASSERT_EQ(Config("NewPassword=fresh"), 0);
  EXPECT_NE(Build().find("</SONRQ>\r\n<PINCHTRNRQ>\r\n<TRNUID>{ID}\r\n<PINCHRQ>\r\n<USERID>user\r\n"
                         "<NEWUSERPASS>fresh\r\n</PINCHRQ>\r\n</PINCHTRNRQ>\r\n</SIGNONMSGSRQV1>\r\n"),
            std::string::npos);
  service_.SetImageReference("IMG-7");
  EXPECT_NE(Build().find("</SIGNONMSGSRQV1>\r\n<IMAGEMSGSRQV1>\r\n<IMAGETRNRQ>\r\n<TRNUID>{ID}</TRNUID>\r\n"
                         "<IMAGERQ>\r\n<IMAGEREF>IMG-7</IMAGEREF>\r\n</IMAGERQ>\r\n</IMAGETRNRQ>\r\n"
                         "</IMAGEMSGSRQV1>\r\n</OFX>"),
            std::string::npos);
}

TEST_F(RequestTest, ChallengePendingReplacesTheMessageSetsAndSendsAnswersWhenReady) {
  service_.SetMFAChallengePending(true);
  const std::string pending = Build();
  EXPECT_NE(pending.find("</SONRQ>\r\n<MFACHALLENGETRNRQ>\r\n<TRNUID>{ID}\r\n<MFACHALLENGERQ>\r\n<DTCLIENT>{DT}\r\n"
                         "</MFACHALLENGERQ>\r\n</MFACHALLENGETRNRQ>\r\n</SIGNONMSGSRQV1>\r\n</OFX>"),
            std::string::npos);
  EXPECT_EQ(pending.find("BANKMSGSRQV1"), std::string::npos);

  service_.SetMFAChallengePending(false);
  service_.Challenges().SetCount(1);
  service_.Challenges().Item(0)->phrase_id.Assign("MFA13");
  service_.Challenges().Item(0)->answer.Assign("Rex");
  EXPECT_EQ(Build().find("MFACHALLENGEA"), std::string::npos) << "answers wait for the ready flag";
  service_.SetAnswersReady(true);
  service_.SetOFXVersion("211");
  EXPECT_NE(Build().find("<APPVER>2500</APPVER>\r\n<MFACHALLENGEA>\r\n<MFAPHRASEID>MFA13</MFAPHRASEID>\r\n"
                         "<MFAPHRASEA>Rex</MFAPHRASEA>\r\n</MFACHALLENGEA>\r\n</SONRQ>\r\n</SIGNONMSGSRQV1>\r\n"
                         "<BANKMSGSRQV1>"),
            std::string::npos);
}

TEST_F(RequestTest, TransactionIdsAreFresh) {
  ByteString first, second;
  ASSERT_EQ(service_.NewTransactionId(first), 0);
  ASSERT_EQ(service_.NewTransactionId(second), 0);
  EXPECT_NE(first.View(), second.View());

  // Objects set up within one millisecond (as a batch's members are) must
  // not share a sequence.
  std::vector<std::unique_ptr<TestOFXService>> objects;
  std::set<std::string> ids;
  for (int i = 0; i < 8; ++i) {
    objects.push_back(std::make_unique<TestOFXService>());
    ASSERT_EQ(objects.back()->InitDefaults(), 1);
  }
  for (auto& object : objects) {
    ByteString id;
    ASSERT_EQ(object->NewTransactionId(id), 0);
    EXPECT_TRUE(ids.insert(std::string(id.View())).second) << id.View();
  }
}

TEST_F(RequestTest, RequiredFieldsAreCheckedInOrder) {
  service_.SetFIUrl("");
  service_.SetFIId("");
  EXPECT_EQ(service_.CheckRequiredFields(), 0) << "FIId and FIUrl are optional";

  const std::pair<int (OFXClient::*)(const char*), const char*> fields[] = {
      {&OFXClient::SetFIOrganization, "FI Organization Name"},
      {&OFXClient::SetOFXAppId, "OFX Application Id"},
      {&OFXClient::SetOFXUser, "OFX User Id"},
  };
  // Emptying them from last to first shows each earlier one wins.
  for (const auto& [setter, name] : fields) {
    (service_.*setter)("");
    EXPECT_EQ(service_.CheckRequiredFields(), 2000);
    EXPECT_EQ(std::string(service_.GetLastError()),
              std::string("Missing required field: ") + name + " is missing in the request.");
  }
  service_.SetCredentials();
  service_.SetIncludeImages(true);
  EXPECT_EQ(service_.CheckRequiredFields(), 202);
  EXPECT_STREQ(service_.GetLastError(), "Transaction Images are not available for OFX Version(s) 1.x.");
  service_.SetOFXVersion("211");
  EXPECT_EQ(service_.CheckRequiredFields(), 0);
  EXPECT_EQ(service_.SetStatementType(2), 202);  // only transactions (0) and closing (1)
  EXPECT_STREQ(service_.GetLastError(), "Statement type is invalid.");
}

// Strict servers get a UUID for every TRNUID and, in 2.x, an XML declaration
// first; nothing else changes.
TEST_F(RequestTest, StrictServerRequestsChangeOnlyTheTRNUIDsAndTheDeclaration) {
  const std::regex uuid("<TRNUID>[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
  Config("NewPassword=new");  // a second TRNUID
  for (const char* version : {"102", "211"}) {
    service_.SetOFXVersion(version);
    const std::string plain = std::regex_replace(Build(), std::regex("\\{ID\\}"), "{U}");
    Config("StrictServerRequests=1");
    const std::string strict = std::regex_replace(Build(), uuid, "<TRNUID>{U}");
    Config("StrictServerRequests=0");
    const std::string declaration =
        version[0] == '2' ? "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n" : "";
    EXPECT_EQ(strict, declaration + plain) << version;
  }
}

}  // namespace
}  // namespace orvelan
