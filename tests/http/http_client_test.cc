#include "http/http_client.h"

#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "support/loopback_server.h"
#include "support/test_http_client.h"

namespace orvelan {
namespace {

class Client : public TestHttpClient {
 public:
  Client() : TestHttpClient(5) {}

  int nested_rc = -1;
  bool nest = false;
  std::string hooks;  // S status, H header, C cookie, < > start/end of a transfer
  std::string traced;  // outgoing data handed to FireTransfer

 protected:
  void FireStatus(const char*, int code, const char*) override { hooks += "S" + std::to_string(code); }
  void FireHeader(const char*, const char*) override { hooks += "H"; }
  void FireSetCookie(const Cookie& cookie) override { hooks += "C" + cookie.name; }
  void FireStartTransfer(int direction) override { hooks += direction == 0 ? "<0" : "<1"; }
  void FireEndTransfer(int direction) override { hooks += direction == 0 ? ">0" : ">1"; }
  void FireTransfer(int direction, int64_t, int, std::string_view data) override {
    if (direction == 0) traced.append(data.data(), data.size());
  }
  int OnSendProgress(int64_t done) override {
    if (nest) nested_rc = DoAction(kPost);
    return HttpClient::OnSendProgress(done);
  }
};

// A client and a loopback server that records each request and answers with
// the next canned reply (the last one repeats), written in the given pieces
// with a pause between them.
struct Exchange {
  explicit Exchange(std::vector<std::vector<std::string>> canned, bool close_after = true, bool ipv6 = false)
      : replies(std::move(canned)), close_after(close_after), server([this](int fd) { Serve(fd); }, ipv6) {}

  void Serve(int fd) {
    for (std::string request; !(request = LoopbackServer::ReadRequest(fd)).empty();) {
      std::vector<std::string> pieces;
      {
        std::lock_guard<std::mutex> lock(mutex);
        requests.push_back(request);
        pieces = replies.front();
        if (replies.size() > 1) replies.erase(replies.begin());
      }
      for (size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(15));
        LoopbackServer::WriteAll(fd, pieces[i]);
      }
      if (close_after) return;
    }
  }
  std::string Request(size_t i) {
    std::lock_guard<std::mutex> lock(mutex);
    return i < requests.size() ? requests[i] : "";
  }
  std::string Url(const std::string& path = "/ofx") const { return LocalUrl(server.port(), path); }

  std::vector<std::vector<std::string>> replies;
  bool close_after;
  std::vector<std::string> requests;
  std::mutex mutex;
  LoopbackServer server;
  Client c;
};

const std::string kEmpty = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
const std::string kOk = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

TEST(HttpClientTest, PostsTheExactHeadAndBodyAndRecordsThem) {
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Type: application/x-ofx\r\nContent-Length: 4\r\n\r\n<OFX"}});
  x.c.Set("UserAgent=Test Agent");
  x.c.Set("TransferredRequest=ON");
  x.c.Set("DebugTrace=true");
  x.c.SetContentType("application/x-ofx");
  const std::string port = std::to_string(x.server.port());
  ASSERT_EQ(x.c.Post("http://u:p@127.0.0.1:" + port + "/cgi?x=1", "DATA"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.Request(0), "POST /cgi?x=1 HTTP/1.1\r\nHost: 127.0.0.1:" + port +
                              "\r\nAuthorization: Basic dTpw\r\nUser-Agent: Test Agent\r\n"
                              "Connection: close\r\nContent-Type: application/x-ofx\r\n"
                              "Content-Length: 4\r\n\r\nDATA");
  EXPECT_EQ(x.c.Get("TransferredRequest"), x.Request(0));
  EXPECT_EQ(x.c.traced, x.Request(0));
  EXPECT_EQ(x.c.Body(), "<OFX");
}

TEST(HttpClientTest, RequestLineAndHeadFollowTheSettings) {
  // The URL and head use '$' for the server's port.
  const std::tuple<bool, std::vector<std::string>, std::string, std::string> cases[] = {
      {false, {"ProxyServer=127.0.0.1", "ProxyPort=$", "ProxyUser=pu", "ProxyPassword=pp"},
       "http://ofx.bank.example:8080/cgi",
       "POST http://ofx.bank.example:8080/cgi HTTP/1.1\r\nHost: ofx.bank.example:8080"
       "\r\nProxy-Authorization: Basic cHU6cHA="},
      {true, {"EncodeURL=true"}, "http://[::1]:$/a b?x=1 2", "POST /a%20b?x=1%202 HTTP/1.1\r\nHost: [::1]:$"},
      {false, {"AllowHTTPCompression=true"}, "http://127.0.0.1:$/",
       "POST / HTTP/1.1\r\nHost: 127.0.0.1:$\r\nAccept-Encoding: gzip, deflate"},
  };
  for (const auto& [ipv6, settings, url, head] : cases) {
    SCOPED_TRACE(url);
    Exchange x({{kEmpty}}, true, ipv6);
    const auto port = [&](std::string text) {
      for (size_t at; (at = text.find('$')) != std::string::npos;) text.replace(at, 1, std::to_string(x.server.port()));
      return text;
    };
    for (const std::string& setting : settings) x.c.Set(port(setting));
    ASSERT_EQ(x.c.PostToURL(port(url).c_str()), 0) << x.c.GetLastError();
    EXPECT_EQ(x.Request(0).substr(0, x.Request(0).find("\r\nUser-Agent")), port(head));
  }
}

TEST(HttpClientTest, ResponseFormsAndFailures) {
  const std::tuple<const char*, std::vector<std::string>, int, const char*, std::string> cases[] = {
      {"404 gets a full stop", {"HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nno!"}, 151,
       "HTTP protocol error. 404 Not Found.", "no!"},
      {"3xx is not followed", {"HTTP/1.1 302 Found\r\nLocation: /x\r\nContent-Length: 0\r\n\r\n"}, 151,
       "HTTP protocol error. 302 Found.", ""},
      {"broken deflate stream", {"HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\n\r\n\xff\xff\xff\xff"}, 151,
       "Could not decompress content.", ""},
      {"closed without a response", {""}, 0, "", ""},
      {"closed mid-body", {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npartial"}, 0, "", "partial"},
  };
  for (const auto& [name, pieces, rc, error, body] : cases) {
    SCOPED_TRACE(name);
    Exchange x({pieces});
    x.c.Set("AllowHTTPCompression=true");
    EXPECT_EQ(x.c.Post(x.Url(), "x"), rc);
    EXPECT_STREQ(x.c.GetLastError(), error);
    EXPECT_EQ(x.c.Body(), body);
    EXPECT_EQ(x.c.SocketHandle(), -1);  // without KeepAlive every response closes
  }
}

// Raw headers keep the lines as sent but for CR LF line ends; the split pairs are trimmed.
TEST(HttpClientTest, RawHeadersKeepTheLinesAsSent) {
  Exchange x({{"HTTP/1.1 200 OK\r\nX-Odd :\t a  b  \r\n\tfolded\r\nX-Lf:1\nContent-Length: 2\r\n\r\nok"}});
  ASSERT_EQ(x.c.Post(x.Url(), "x"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.c.RawResponseHeaders(), "X-Odd :\t a  b  \r\n\tfolded\r\nX-Lf:1\r\nContent-Length: 2\r\n");
  const std::vector<std::pair<std::string, std::string>> split = {
      {"X-Odd ", "a  b  "}, {"", "folded"}, {"X-Lf", "1"}, {"Content-Length", "2"}};
  EXPECT_EQ(x.c.ResponseHeaders(), split);
}

// Cookies come back with the next request, the URL's user information does
// not; received cookies go with a change of host only when asked to.
TEST(HttpClientTest, CookiesAreSentBackButNotTheUrlsCredentials) {
  Exchange x({{"HTTP/1.1 200 OK\r\nSet-Cookie: SID=1; Path=/\r\nSet-Cookie: SID=2; path=/\r\n"
               "Set-Cookie: lang=en\r\nContent-Length: 0\r\n\r\n"},
              {kEmpty}});
  ASSERT_EQ(x.c.PostToURL(("http://a:b@127.0.0.1:" + std::to_string(x.server.port()) + "/").c_str()), 0);
  EXPECT_EQ(x.c.hooks, "S200HCSIDHCSIDHClangH<1>1");
  EXPECT_EQ(x.c.Get("Authorization"), "Basic YTpi");
  ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0);
  EXPECT_EQ(x.c.Get("Authorization"), "");
  EXPECT_NE(x.Request(1).find("\r\nCookie: SID=2; lang=en\r\n"), std::string::npos) << x.Request(1);
  EXPECT_EQ(x.Request(1).find("Authorization"), std::string::npos) << x.Request(1);

  x.c.Set("DontClearCookiesOnUrlChange=true");
  x.c.SetURL("http://127.0.0.2:1/");
  EXPECT_EQ(x.c.Cookies().cookies().size(), 0u);
}

// A kept connection the server has closed is replaced.
TEST(HttpClientTest, KeepAliveReplacesAClosedConnection) {
  Exchange x({{kOk}});
  x.c.Set("KeepAlive=true");
  for (int i = 0; i < 3; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));  // the close reaches us first
    ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0) << x.c.GetLastError();
    EXPECT_EQ(x.c.Body(), "ok");
  }
  EXPECT_EQ(x.server.connections(), 3);
  EXPECT_EQ(x.Request(0).find("Connection: close"), std::string::npos);
  x.c.Connect(false);
}

TEST(HttpClientTest, RequestsThatCannotStart) {
  Client c;
  c.SetURL("https://h/x");
  ASSERT_EQ(c.DoAction(HttpClient::kReset), 0);
  EXPECT_EQ(c.DoAction(HttpClient::kPost), 152);
  EXPECT_STREQ(c.GetLastError(), "No server specified in URL");
  EXPECT_EQ(c.PostToURL("ftp://127.0.0.1/x"), 153);
  EXPECT_STREQ(c.GetLastError(), "Specified URLScheme is invalid.");
}

TEST(HttpClientTest, SecondActionWhileBusyIs143) {
  Exchange x({{kEmpty}});
  x.c.nest = true;
  const std::string body(40000, 'b');  // sent in pieces, so progress is reported
  ASSERT_EQ(x.c.Post(x.Url(), body), 0);
  EXPECT_EQ(x.c.nested_rc, 143);
  EXPECT_EQ(x.Request(0).size(), x.Request(0).find("\r\n\r\n") + 4 + body.size());
}

TEST(HttpClientTest, LocalFileTakesTheBody) {
  char path[] = "/tmp/orvelan-local-XXXXXX";
  close(mkstemp(path));
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nfiled"}});
  x.c.Set(std::string("LocalFile=") + path);
  ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0);
  EXPECT_EQ(x.c.Body(), "");
  std::ifstream in(path);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "filed");
  unlink(path);
  x.c.Set("LocalFile=/nonexistent-dir/file");
  EXPECT_EQ(x.c.PostToURL(x.Url().c_str()), 302);
  EXPECT_STREQ(x.c.GetLastError(), "Can't open local file for writing.");
}

// With a negative Timeout a request returns at once; the exchange runs while
// the host pumps the events, the request leaving from the connected hook.
TEST(HttpClientTest, NegativeTimeoutExchangesAsTheHostPumpsEvents) {
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n", "done"}}, true);
  x.c.SetTimeout(-1);
  ASSERT_EQ(x.c.Post(x.Url(), "ping"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.c.hooks, "");  // nothing sent or received yet
  for (int i = 0; i < 2000 && x.c.hooks.find(">1") == std::string::npos; ++i) {
    x.c.ProcessEvents(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(x.c.hooks, "<0>0S200H<1>1");
  EXPECT_EQ(x.c.Body(), "done");
  EXPECT_EQ(x.Request(0).substr(x.Request(0).size() - 4), "ping");
  EXPECT_EQ(x.c.Timeout(), -1);  // the sending's own time-out is gone again
  EXPECT_EQ(x.c.SocketHandle(), -1);
}

}  // namespace
}  // namespace orvelan
