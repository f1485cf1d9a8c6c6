#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <tuple>

#include "support/loopback_server.h"
#include "support/recording_events.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

constexpr char kResponse[] =
    "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20240115</SONRS>"
    "</SIGNONMSGSRSV1></OFX>";

std::string HttpAnswer(const std::string& content_type, const std::string& body, int status = 200) {
  return "HTTP/1.1 " + std::to_string(status) + " X\r\nContent-Type: " + content_type +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

size_t Occurrences(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// A canned OFX server: answers every request with `answer` and keeps the last request it read.
struct CannedBank {
  explicit CannedBank(std::string text) : answer(std::move(text)) {}
  std::string Url() const { return "http://127.0.0.1:" + std::to_string(server.port()) + "/ofx"; }
  std::string Request() {
    std::lock_guard<std::mutex> lock(mutex);
    return request;
  }

  std::string answer;
  std::mutex mutex;
  std::string request;
  LoopbackServer server{[this](int fd) {
    std::lock_guard<std::mutex> lock(mutex);
    request = LoopbackServer::ReadRequest(fd);
    LoopbackServer::WriteAll(fd, answer);
  }};
};

class ExchangeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(service_.InitDefaults(), 1);
    service_.SetEventSink(&events_);
    service_.SetCredentials();
  }
  void Config(const std::string& text) {
    const char* out = nullptr;
    ASSERT_EQ(service_.Config(text.c_str(), out), 0) << text;
  }

  TestOFXService service_;
  RecordingEvents events_;
  TempFile log_{"exchange_log"};
};

TEST_F(ExchangeTest, PostsTheRequestLogsOneMaskedExchangeAndParses) {
  CannedBank bank(HttpAnswer("application/x-ofx", kResponse));
  service_.SetFIUrl(bank.Url().c_str());
  Config("OFXLog=" + log_.path());
  Config("NewPassword=fresh");
  Config("DebugTrace=1");
  ASSERT_EQ(service_.Exchange(), 0) << service_.GetLastError();
  EXPECT_TRUE(events_.Saw("Status(RESPONSE,0)"));
  EXPECT_STREQ(service_.OFXResponse(), kResponse);

  const std::string request = bank.Request();
  EXPECT_NE(request.find("Content-Type: application/x-ofx\r\n"), std::string::npos) << request;
  EXPECT_NE(request.find("<USERID>user\r\n<USERPASS>secret\r\n"), std::string::npos);

  const std::string log = log_.Read();
  EXPECT_EQ(log.find("secret"), std::string::npos) << log;
  EXPECT_EQ(Occurrences(log, "******anon"), 4u) << "USERID and USERPASS, USERID and NEWUSERPASS of PINCHRQ";
  const std::string tail = std::string("\r\n\r\n================== END OFX REQUEST ==================\r\n\r\n") +
                           "\r\n\r\n================== BEGIN OFX RESPONSE ==================\r\n\r\n" + kResponse +
                           "\r\n\r\n================== END OFX RESPONSE ==================";
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);

  // Missing fields stop the next exchange before sending, but after rewriting the log.
  service_.SetOFXAppId("");
  EXPECT_EQ(service_.Exchange(), 2000);
  EXPECT_EQ(bank.server.connections(), 1);
  EXPECT_EQ(Occurrences(log_.Read(), "BEGIN OFX REQUEST"), 1u);
}

TEST_F(ExchangeTest, UnwritableLogDoesNotStopTheExchange) {
  CannedBank bank(HttpAnswer("application/x-ofx", kResponse));
  service_.SetFIUrl(bank.Url().c_str());
  Config("OFXLog=/nonexistent-dir/ofx.log");
  EXPECT_EQ(service_.Exchange(), 0);
  EXPECT_STREQ(service_.GetLastError(), "Cannot open OFX log file.");
}

class ImageTest : public ExchangeTest {
 protected:
  int Fetch(const std::string& answer, const char* reference = "IMG-1", const char* type = "OPAQUE") {
    bank_ = std::make_unique<CannedBank>(answer);
    service_.SetFIUrl(bank_->Url().c_str());
    length_ = -1;
    return service_.GetImage(reference, type, data_, length_);
  }
  TempFile image_{"image", {".png", ".pdf", ""}};
  std::unique_ptr<CannedBank> bank_;
  const char* data_ = nullptr;
  int32_t length_ = -1;
};

TEST_F(ImageTest, DownloadedImageIsReturnedAndWrittenWithItsExtension) {
  const std::string png("\x89PNG\r\n\x1a\n\0\0binary", 16);
  service_.SetImageFile(image_.c_str());
  ASSERT_EQ(Fetch(HttpAnswer("image/png", png), "IMG-1", ""), 0) << service_.GetLastError();
  EXPECT_EQ(std::string(data_, static_cast<size_t>(length_)), png);
  EXPECT_EQ(image_.Read(".png"), png);
  EXPECT_NE(bank_->Request().find("<IMAGEREF>IMG-1</IMAGEREF>"), std::string::npos);

  service_.SetImageFile("/nonexistent-dir/img");
  EXPECT_EQ(Fetch(HttpAnswer("Application/pdf", "%PDF")), 0) << "an unwritable file keeps the result";
  EXPECT_EQ(length_, 4);
  EXPECT_STREQ(service_.GetLastError(), "Cannot open file \"/nonexistent-dir/img.pdf\" for writing.");
}

TEST_F(ImageTest, StatusBodiesAndOtherReferenceTypes) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"OFX-STATUS=16513", 16513, "Image server is not available. Try again later."},
      {"OFX-STATUS=16513\r\n", 2001, ""},  // compared whole
  };
  service_.SetImageFile(image_.c_str());
  for (const auto& [body, code, text] : cases) {
    EXPECT_EQ(Fetch(HttpAnswer("application/x-ofx", body)), code) << body;
    EXPECT_STREQ(service_.GetLastError(), text);
    EXPECT_EQ(length_, 0);
  }
  EXPECT_EQ(Fetch(HttpAnswer("image/png", "png"), "http://x/img", "URL"), 0);
  EXPECT_EQ(length_, 0);
  EXPECT_EQ(bank_->server.connections(), 0) << "a URL reference is not fetched";
  service_.SetImageFile("");
  EXPECT_EQ(Fetch(HttpAnswer("image/png", "png")), 2001) << "without ImageFile a downloaded image counts as failed";
}

}  // namespace
}  // namespace orvelan
