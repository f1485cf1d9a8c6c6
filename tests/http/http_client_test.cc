#include "http/http_client.h"

#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

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
  int64_t last_in_bytes = 0;
  int last_in_percent = 0;
  std::string traced;  // outgoing data handed to FireTransfer

 protected:
  void FireStatus(const char*, int code, const char*) override { hooks += "S" + std::to_string(code); }
  void FireHeader(const char*, const char*) override { hooks += "H"; }
  void FireSetCookie(const Cookie& cookie) override { hooks += "C" + cookie.name; }
  void FireStartTransfer(int direction) override { hooks += direction == 0 ? "<0" : "<1"; }
  void FireEndTransfer(int direction) override { hooks += direction == 0 ? ">0" : ">1"; }
  void FireTransfer(int direction, int64_t bytes, int percent, std::string_view data) override {
    if (direction == 0) traced.append(data.data(), data.size());
    if (direction == 1) last_in_bytes = bytes, last_in_percent = percent;
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
  EXPECT_STREQ(x.c.ResponseContentType(), "application/x-ofx");
  EXPECT_EQ(x.c.StatusCode(), 200);
}

TEST(HttpClientTest, RequestLineAndHeadFollowTheSettings) {
  const struct {
    const char* name;
    bool ipv6;
    std::vector<std::string> settings;
    std::string url;  // '$' stands for the server's port
    std::string head;
  } cases[] = {
      {"plain proxy", false, {"ProxyServer=127.0.0.1", "ProxyPort=$", "ProxyUser=pu", "ProxyPassword=pp"},
       "http://ofx.bank.example:8080/cgi",
       "POST http://ofx.bank.example:8080/cgi HTTP/1.1\r\nHost: ofx.bank.example:8080"
       "\r\nProxy-Authorization: Basic cHU6cHA="},
      {"encoded path, IPv6 host", true, {"EncodeURL=true"}, "http://[::1]:$/a b?x=1 2",
       "POST /a%20b?x=1%202 HTTP/1.1\r\nHost: [::1]:$"},
      {"compression allowed", false, {"AllowHTTPCompression=true"}, "http://127.0.0.1:$/",
       "POST / HTTP/1.1\r\nHost: 127.0.0.1:$\r\nAccept-Encoding: gzip, deflate"},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    Exchange x({{kEmpty}}, true, k.ipv6);
    const auto port = [&](std::string text) {
      for (size_t at; (at = text.find('$')) != std::string::npos;) text.replace(at, 1, std::to_string(x.server.port()));
      return text;
    };
    for (const std::string& s : k.settings) x.c.Set(port(s));
    ASSERT_EQ(x.c.PostToURL(port(k.url).c_str()), 0) << x.c.GetLastError();
    EXPECT_EQ(x.Request(0).substr(0, x.Request(0).find("\r\nUser-Agent")), port(k.head));
  }
}

// Split CR LF, close-delimited bodies and bad gzip headers: the parser's table.
TEST(HttpClientTest, ResponseFormsAndFailures) {
  const struct {
    const char* name;
    std::vector<std::string> pieces;
    int rc;
    const char* error;
    std::string body;
  } cases[] = {
      {"404 gets a full stop", {"HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nno!"}, 151,
       "HTTP protocol error. 404 Not Found.", "no!"},
      {"no second full stop", {"HTTP/1.1 500 Broken.\r\nContent-Length: 0\r\n\r\n"}, 151,
       "HTTP protocol error. 500 Broken.", ""},
      {"3xx is not followed", {"HTTP/1.1 302 Found\r\nLocation: /x\r\nContent-Length: 0\r\n\r\n"}, 151,
       "HTTP protocol error. 302 Found.", ""},
      {"interim 100", {"HTTP/1.1 100 Continue\r\n\r\n", kOk}, 0, "", "ok"},
      {"broken deflate stream", {"HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\n\r\n\xff\xff\xff\xff"}, 151,
       "Could not decompress content.", ""},
      {"closed without a response", {""}, 0, "", ""},
      {"closed mid-body", {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npartial"}, 0, "", "partial"},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    Exchange x({k.pieces});
    x.c.Set("AllowHTTPCompression=true");
    EXPECT_EQ(x.c.Post(x.Url(), "x"), k.rc);
    if (k.rc != 0) {
      EXPECT_STREQ(x.c.GetLastError(), k.error);
    }
    EXPECT_EQ(x.c.Body(), k.body);
    EXPECT_EQ(x.c.SocketHandle(), -1);  // without KeepAlive every response closes
  }
}

// The raw headers are the lines as sent (only the line end becomes CR LF),
// while the split pairs are trimmed; a second response replaces them.
TEST(HttpClientTest, RawHeadersKeepTheLinesAsSent) {
  Exchange x({{"HTTP/1.1 200 OK\r\ncontent-TYPE:\t text/plain  \r\nX-Odd :  a  b\r\n\tfolded\r\nNoColon\r\n"
               "X-Lf:1\nContent-Length: 2\r\n\r\nok"},
              {"HTTP/1.1 200 OK\r\nCONTENT-LENGTH:0\r\n\r\n"}});
  ASSERT_EQ(x.c.Post(x.Url(), "x"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.c.RawResponseHeaders(),
            "content-TYPE:\t text/plain  \r\nX-Odd :  a  b\r\n\tfolded\r\nNoColon\r\nX-Lf:1\r\nContent-Length: 2\r\n");
  const std::vector<std::pair<std::string, std::string>> split = {
      {"content-TYPE", "text/plain  "}, {"X-Odd ", "a  b"}, {"", "folded"},
      {"NoColon", ""},                  {"X-Lf", "1"},      {"Content-Length", "2"}};
  EXPECT_EQ(x.c.ResponseHeaders(), split);
  EXPECT_EQ(x.c.Body(), "ok");
  ASSERT_EQ(x.c.Post(x.Url(), "x"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.c.RawResponseHeaders(), "CONTENT-LENGTH:0\r\n");
}

TEST(HttpClientTest, MaxTransferredDataCutsTheKeptBody) {
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Length: 25\r\n\r\n0123456789012345678901234"}});
  x.c.Set("MaxTransferredData=10");
  ASSERT_EQ(x.c.Post(x.Url(), "x"), 0);
  EXPECT_EQ(x.c.Body(), "0123456789");
  EXPECT_EQ(x.c.last_in_bytes, 25);  // the transfer still counts every byte
  EXPECT_EQ(x.c.last_in_percent, 100);
  EXPECT_EQ(x.c.hooks, "<0>0S200H<1>1");
  EXPECT_EQ(x.c.Get("MaxTransferredData"), "10");
}

// Cookies come back with the next request, the URL's user information does
// not; received cookies go with a change of host only when asked to.
TEST(HttpClientTest, CookiesAreSentBackButNotTheUrlsCredentials) {
  Exchange x({{"HTTP/1.1 200 OK\r\nSet-Cookie: SID=1; Path=/\r\nSet-Cookie: SID=2; path=/\r\n"
               "Set-Cookie: lang=en\r\nContent-Length: 0\r\n\r\n"},
              {kEmpty}});
  ASSERT_EQ(x.c.PostToURL(("http://a:b@127.0.0.1:" + std::to_string(x.server.port()) + "/").c_str()), 0);
  EXPECT_EQ(x.c.hooks, "S200HCSIDHCSIDHClangH<1>1");
  EXPECT_EQ(x.c.Cookies().cookies().size(), 2u);
  EXPECT_EQ(x.c.Get("Authorization"), "Basic YTpi");
  ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0);
  EXPECT_EQ(x.c.Get("Authorization"), "");
  EXPECT_NE(x.Request(1).find("\r\nCookie: SID=2; lang=en\r\n"), std::string::npos) << x.Request(1);
  EXPECT_EQ(x.Request(1).find("Authorization"), std::string::npos) << x.Request(1);

  x.c.Set("DontClearCookiesOnUrlChange=false");
  x.c.SetURL("http://127.0.0.2:1/");
  x.c.SetURL(x.Url().c_str());
  EXPECT_EQ(x.c.Cookies().cookies().size(), 2u);
  x.c.Set("DontClearCookiesOnUrlChange=true");
  x.c.SetURL(x.Url("/other").c_str());  // the same host and port
  EXPECT_EQ(x.c.Cookies().cookies().size(), 2u);
  x.c.SetURL("http://127.0.0.2:1/");
  EXPECT_EQ(x.c.Cookies().cookies().size(), 0u);
}

// A kept connection is reused; one the server has closed is replaced.
TEST(HttpClientTest, KeepAliveReusesOrReplacesTheConnection) {
  for (bool server_closes : {false, true}) {
    SCOPED_TRACE(server_closes);
    Exchange x({{kOk}}, server_closes);
    x.c.Set("KeepAlive=true");
    for (int i = 0; i < 3; ++i) {
      if (server_closes) std::this_thread::sleep_for(std::chrono::milliseconds(50));  // the close reaches us first
      ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0) << x.c.GetLastError();
      EXPECT_EQ(x.c.Body(), "ok");
    }
    EXPECT_EQ(x.server.connections(), server_closes ? 3 : 1);
    EXPECT_EQ(x.Request(0).find("Connection: close"), std::string::npos);
    x.c.Connect(false);
  }
}

TEST(HttpClientTest, RequestsThatCannotStart) {
  Client c;
  c.SetURL("https://h/x");
  c.SetPostData("abc", 3);
  ASSERT_EQ(c.DoAction(HttpClient::kReset), 0);
  EXPECT_EQ(c.Url().host, "");
  EXPECT_EQ(c.Url().scheme, "http");
  EXPECT_EQ(c.DoAction(HttpClient::kPost), 152);
  EXPECT_STREQ(c.GetLastError(), "No server specified in URL");
  EXPECT_EQ(c.PostToURL("ftp://127.0.0.1/x"), 153);
  EXPECT_STREQ(c.GetLastError(), "Specified URLScheme is invalid.");
  EXPECT_EQ(c.PostToURL(LocalUrl(UnusedPort(), "/").c_str()), 111);
  EXPECT_STREQ(c.GetLastError(), "[111] Connection refused.");
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
  EXPECT_TRUE(x.c.events.Saw("Error(302,Can't open local file for writing.)"));
}

// With a negative Timeout a request returns at once; the exchange runs while
// the host pumps the events, the request leaving from the connected hook.
TEST(HttpClientTest, NegativeTimeoutExchangesAsTheHostPumpsEvents) {
  const auto pump = [](Client& c, const std::function<bool()>& done) {
    for (int i = 0; i < 2000 && !done(); ++i) {
      c.ProcessEvents(0);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  };
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n", "done"}}, true);
  x.c.SetTimeout(-1);
  ASSERT_EQ(x.c.Post(x.Url(), "ping"), 0) << x.c.GetLastError();
  EXPECT_EQ(x.c.hooks, "");  // nothing sent or received yet
  EXPECT_NE(x.c.SocketHandle(), -1);
  pump(x.c, [&] { return x.c.hooks.find(">1") != std::string::npos; });
  EXPECT_EQ(x.c.hooks, "<0>0S200H<1>1");
  EXPECT_EQ(x.c.Body(), "done");
  const std::string request = x.Request(0);
  EXPECT_EQ(request.substr(0, 20), "POST /ofx HTTP/1.1\r\n");
  EXPECT_EQ(request.substr(request.size() - std::min<size_t>(request.size(), 25)), "Content-Length: 4\r\n\r\nping");
  EXPECT_EQ(x.c.Timeout(), -1);  // the sending's own time-out is gone again
  EXPECT_EQ(x.c.SocketHandle(), -1);

  // A refused connect reaches the host as events; no request is left behind.
  Client refused;
  refused.SetTimeout(-1);
  ASSERT_EQ(refused.PostToURL(LocalUrl(UnusedPort()).c_str()), 0);
  pump(refused, [&] { return refused.SocketHandle() == -1; });
  EXPECT_TRUE(refused.events.Saw("Status(Remote host connection failed.,111)"));
  EXPECT_EQ(refused.hooks, "");
}

TEST(HttpClientTest, ThousandExchangesLeaveNoDescriptorBehind) {
  Exchange x({{"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\ndone"}});
  ASSERT_EQ(x.c.PostToURL(x.Url().c_str()), 0);  // the first exchange may open lasting descriptors
  // The server thread closes its end a moment after answering; count only
  // once it has, or its descriptor passes for one of ours.
  ASSERT_TRUE(x.server.WaitUntilIdle());
  const int before = OpenDescriptors();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(x.c.Post(x.Url(), "ping"), 0) << i << ": " << x.c.GetLastError();
    ASSERT_EQ(x.c.Body(), "done");
  }
  ASSERT_TRUE(x.server.WaitUntilIdle());
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
}  // namespace orvelan
