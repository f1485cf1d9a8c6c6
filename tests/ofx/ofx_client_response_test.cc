#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/recording_events.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

// An SGML sign-on response with its STATUS and an optional tail inside SONRS.
std::string Signon(const std::string& status, const std::string& sonrs_tail = "") {
  return "<OFX><SIGNONMSGSRSV1><SONRS><STATUS>" + status + "</STATUS><DTSERVER>20240115103000<LANGUAGE>ENG" +
         sonrs_tail + "</SONRS></SIGNONMSGSRSV1>";
}
constexpr char kOk[] = "<CODE>0<SEVERITY>INFO";
std::string Statement(const std::string& status) {
  return "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STATUS>" + status +
         "</STATUS><STMTRS><CURDEF>USD</STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";
}

class ResponseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(service_.InitDefaults(), 1);
    service_.SetEventSink(&events_);
  }
  std::string Query(const char* name) {
    const char* out = "";
    service_.Config(name, out);
    return out;
  }

  TestOFXService service_;
  RecordingEvents events_;
};

TEST_F(ResponseTest, SignonErrorsFailWithTheServerOrTableText) {
  const std::pair<std::string, std::string> cases[] = {
      {"<CODE>15500<SEVERITY>ERROR", "OFX server error (15500): Signon (user ID or password) invalid"},
      {"<CODE>15500<SEVERITY>ERROR<MESSAGE>Go away", "OFX server error (15500): Go away"},
  };
  for (const auto& [status, text] : cases) {
    EXPECT_EQ(service_.ProcessResponse(Signon(status) + "</OFX>"), 2001) << status;
    EXPECT_EQ(std::string(service_.GetLastError()).substr(0, text.size()), text);
  }
  EXPECT_EQ(service_.parse_calls, 0);
  EXPECT_TRUE(events_.log.empty());
}

TEST_F(ResponseTest, StatusWithoutCodeOrWithCodeZeroSucceeds) {
  for (const char* status : {"<SEVERITY>ERROR", "<CODE>0<SEVERITY>ERROR", ""}) {
    service_.parse_calls = 0;
    EXPECT_EQ(service_.ProcessResponse(Signon(status) + Statement(status)), 0) << status;
    EXPECT_EQ(service_.parse_calls, 1);
    EXPECT_EQ(service_.root_at_parse, "/OFX");
  }
}

TEST_F(ResponseTest, WarningsFireErrorAndErrorsFailTheService) {
  ASSERT_EQ(service_.ProcessResponse(Signon(kOk) + Statement("<CODE>2028<SEVERITY>WARN<MESSAGE>Skipped BALLIST")), 0);
  // The service checks its own transaction status; the cursor stays there.
  ASSERT_EQ(service_.Document().SelectPath("BANKMSGSRSV1"), 0);
  EXPECT_EQ(service_.CheckStatus("STMTTRNRS/"), 0);
  EXPECT_STREQ(service_.Document().ElementName(), "STMTTRNRS");
  EXPECT_EQ(events_.log, std::vector<std::string>{"Error(2028,WARN: Skipped BALLIST)"});
  EXPECT_STREQ(service_.ServerMessage(), "WARN: Skipped BALLIST");

  events_.log.clear();
  ASSERT_EQ(service_.ProcessResponse(Signon("<CODE>13000<SEVERITY>INFO") + Statement(kOk)), 0);
  EXPECT_EQ(events_.log,
            std::vector<std::string>{"Error(13000,INFO: User ID & password will be sent out-of-band (INFO))"});

  ASSERT_EQ(service_.ProcessResponse(Signon(kOk) + Statement("<CODE>2003<SEVERITY>ERROR")), 0);
  ASSERT_EQ(service_.Document().SelectPath("/OFX/BANKMSGSRSV1"), 0);
  EXPECT_EQ(service_.CheckStatus("STMTTRNRS"), 2001);
  EXPECT_STREQ(service_.GetLastError(), "OFX server error (2003): Account not found");
}

TEST_F(ResponseTest, AccessKeyIsReplacedOrEmptiedBySignon) {
  service_.SetOFXAccessKey("old");
  ASSERT_EQ(service_.ProcessResponse(Signon(kOk, "<ACCESSKEY>new-key") + Statement(kOk)), 0);
  EXPECT_STREQ(service_.OFXAccessKey(), "new-key");
  ASSERT_EQ(service_.ProcessResponse(Signon(kOk) + Statement(kOk)), 0);
  EXPECT_STREQ(service_.OFXAccessKey(), "");
  service_.SetOFXAccessKey("kept");  // no sign-on: the key stays
  ASSERT_EQ(service_.ProcessResponse("<OFX>" + Statement(kOk)), 0);
  EXPECT_STREQ(service_.OFXAccessKey(), "kept");
}

TEST_F(ResponseTest, ChallengeResponseFillsTheListAndStopsParsing) {
  const std::string challenge =
      "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20240115</SONRS>"
      "<MFACHALLENGETRNRS><TRNUID>9<STATUS><CODE>0<SEVERITY>INFO</STATUS><MFACHALLENGERS>"
      "<MFACHALLENGE><MFAPHRASEID>MFA13<MFAPHRASELABEL>First pet?</MFACHALLENGE>"
      "<MFACHALLENGE><MFAPHRASEID>MFA107</MFACHALLENGE>"
      "</MFACHALLENGERS></MFACHALLENGETRNRS></SIGNONMSGSRSV1></OFX>";
  ASSERT_EQ(service_.ProcessResponse(challenge), 0) << service_.GetLastError();
  EXPECT_TRUE(service_.MFAChallengePending());
  EXPECT_EQ(service_.parse_calls, 0);
  ItemList<MFAChallenge>& list = service_.Challenges();
  ASSERT_EQ(list.Count(), 2);
  EXPECT_STREQ(list.Item(0)->phrase_id.Data(), "MFA13");
  EXPECT_STREQ(list.Item(0)->phrase_label.Data(), "First pet?");
  // While the challenge is pending, responses are checked only.
  ASSERT_EQ(service_.ProcessResponse(Signon(kOk) + Statement(kOk)), 0);
  EXPECT_EQ(service_.parse_calls, 0);

  list.Clear();
  const std::string without_id = challenge.substr(0, challenge.find("<MFAPHRASEID>MFA107")) +
                                 challenge.substr(challenge.find("</MFACHALLENGE></MFACHALLENGERS>"));
  EXPECT_EQ(service_.ProcessResponse(without_id), 202);
  EXPECT_STREQ(service_.GetLastError(), "Required field missing: \"MFAPHRASEID\".");

  EXPECT_EQ(service_.Reset(), 0);
  EXPECT_FALSE(service_.MFAChallengePending());
  EXPECT_EQ(service_.ProcessResponse(Signon("<CODE>3000<SEVERITY>ERROR") + "</OFX>"), 2001);
  EXPECT_TRUE(service_.MFAChallengePending()) << "status 3000 asks for the challenge";
}

TEST_F(ResponseTest, ParseFailuresPassThroughAndDataIsKept) {
  service_.parse_result = 2000;
  EXPECT_EQ(service_.ProcessResponse(Signon(kOk) + Statement(kOk)), 2000);
  service_.parse_result = 0;
  const char* out = "";
  EXPECT_EQ(service_.Config("OFXData=<OFX><A></B></OFX>", out), 2003);
  EXPECT_STREQ(service_.GetLastError(), "OFX response contains unknown element tags.");
  EXPECT_EQ(Query("OFXData"), "<OFX><A></B></OFX>") << "OFXData keeps the text whatever the result";
  EXPECT_EQ(service_.parse_calls, 1);
}

TEST_F(ResponseTest, WritingOFXResponseClearsTheRequestStateFirst) {
  service_.SetCredentials();
  service_.SetFIId("1");
  service_.SetOFXVersion("211");
  const char* out = "";
  service_.Config("ClientUId=kept", out);
  service_.Config("NewPassword=gone", out);
  EXPECT_EQ(service_.SetOFXResponse(""), 508);
  EXPECT_STREQ(service_.GetLastError(), "No response available from the server.");
  for (const char* field : {service_.OFXUser(), service_.FIId(), service_.OFXAppId()}) EXPECT_STREQ(field, "");
  EXPECT_STREQ(service_.OFXVersion(), "102");
  EXPECT_EQ(Query("NewPassword"), "");
  EXPECT_EQ(Query("ClientUId"), "kept");
  EXPECT_NE(service_.SetOFXResponse("<OFX><A></B></OFX>"), 0);
  EXPECT_STREQ(service_.OFXResponse(), "");
}

TEST_F(ResponseTest, DataFilesAreReadAndWrittenBack) {
  const TempFile in("data_in"), copy("data_out");
  const std::string file =
      "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
      "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n" +
      Signon(kOk) + Statement(kOk);
  in.Write(file);
  ASSERT_EQ(service_.ReadOFXDataFile(in.c_str()), 0) << service_.GetLastError();
  const std::string response = service_.OFXResponse();
  EXPECT_NE(response.find("<CODE>0</CODE>"), std::string::npos) << "end tags are written in: " << response;
  ASSERT_EQ(service_.WriteOFXDataFile(copy.c_str()), 0);
  EXPECT_EQ(copy.Read(), file);

  EXPECT_EQ(service_.ReadOFXDataFile(TempFile("missing").c_str()), 302);
  EXPECT_STREQ(service_.GetLastError(), "Cannot open OFX data file for reading.");
  EXPECT_EQ(service_.WriteOFXDataFile("/nonexistent-dir/x.ofx"), 306);
  EXPECT_STREQ(service_.GetLastError(), "Cannot create OFX log file.");
}

}  // namespace
}  // namespace orvelan
