#include "http/url_parts.h"

#include <gtest/gtest.h>

namespace orvelan {
namespace {

struct UrlCase {
  const char* url;
  const char* scheme;
  const char* user;
  const char* password;
  const char* host;
  int port;
  const char* path;
};

TEST(UrlPartsTest, SplitsUrls) {
  const UrlCase cases[] = {
      {"https://u:p@h:8443/a?b", "https", "u", "p", "h", 8443, "/a?b"},
      {"http://ofx.bank.example/cgi", "http", "", "", "ofx.bank.example", 80, "/cgi"},
      {"https://ofx.bank.example", "https", "", "", "ofx.bank.example", 443, "/"},
      {"https://h?q=1", "https", "", "", "h", 443, "/?q=1"},
      {"http://u@h:81", "http", "u", "", "h", 81, "/"},
      {"http://[::1]:8080/x", "http", "", "", "::1", 8080, "/x"},
      {"http://[fe80::1%25eth0]/", "http", "", "", "fe80::1%25eth0", 80, "/"},
  };
  for (const UrlCase& c : cases) {
    SCOPED_TRACE(c.url);
    UrlParts url;
    url.Parse(c.url, false);
    EXPECT_EQ(url.scheme, c.scheme);
    EXPECT_EQ(url.user, c.user);
    EXPECT_EQ(url.password, c.password);
    EXPECT_EQ(url.host, c.host);
    EXPECT_EQ(url.port, c.port);
    EXPECT_EQ(url.path, c.path);
  }
}

TEST(UrlPartsTest, PathsWithoutAuthorityKeepHost) {
  UrlParts url;
  url.Parse("https://h:444/dir", false);
  url.Parse("/abs", false);
  EXPECT_EQ(url.host, "h");
  EXPECT_EQ(url.port, 444);
  EXPECT_EQ(url.path, "/abs");
  url.Parse("./rel", false);
  EXPECT_EQ(url.path, "/abs/rel");
  url.Parse("http://[::1]/", false);
  EXPECT_TRUE(url.ipv6);
}

TEST(UrlPartsTest, EncodesPathAndQuerySeparately) {
  UrlParts url;
  url.Parse("http://h/a b/~x!?k=v&w=1 2", true);
  EXPECT_EQ(url.path, "/a%20b/%7Ex%21?k=v%26w=1%202");
  EXPECT_EQ(UrlParts::Encode(std::string("*-./=@_az09\x01\x7f\xff", 14)), "*-./=@_az09%01%7F%FF");
  EXPECT_EQ(UrlParts::Encode("\"#$%'()+,:;<>[\\]^`{|}"),
            "%22%23%24%25%27%28%29%2B%2C%3A%3B%3C%3E%5B%5C%5D%5E%60%7B%7C%7D");
}

}  // namespace
}  // namespace orvelan
