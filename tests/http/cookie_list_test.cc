#include "http/cookie_list.h"

#include <gtest/gtest.h>

namespace orvelan {
namespace {

TEST(CookieListTest, ParsesSetCookie) {
  struct Case {
    const char* header;
    const char* name;
    const char* value;
    const char* expires;
    const char* domain;
    const char* path;
    bool secure;
  };
  const Case cases[] = {
      {"SID=abc; Path=/ofx; Domain=.bank.example; Secure", "SID", "abc", "", ".bank.example", "/ofx", true},
      {"a=b;expires=Wed, 21 Oct 2026 07:28:00 GMT;HttpOnly", "a", "b", "Wed, 21 Oct 2026 07:28:00 GMT", "", "",
       false},
      {"flag", "flag", "", "", "", "", false},
      {"x=", "x", "", "", "", "", false},
      {"x=1;  path=/p", "x", "1", "", "", "/p", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.header);
    const Cookie cookie = CookieList::ParseSetCookie(c.header);
    EXPECT_EQ(cookie.name, c.name);
    EXPECT_EQ(cookie.value, c.value);
    EXPECT_EQ(cookie.expires, c.expires);
    EXPECT_EQ(cookie.domain, c.domain);
    EXPECT_EQ(cookie.path, c.path);
    EXPECT_EQ(cookie.secure, c.secure);
  }
}

TEST(CookieListTest, SameNameDomainAndPathReplace) {
  CookieList list;
  list.Add(CookieList::ParseSetCookie("SID=1; Path=/"));
  list.Add(CookieList::ParseSetCookie("other=x"));
  list.Add(CookieList::ParseSetCookie("sid=2; path=/"));
  list.Add(CookieList::ParseSetCookie("SID=3; Path=/elsewhere"));
  EXPECT_EQ(list.HeaderValue(), "SID=2; other=x; SID=3");
  Cookie own;
  own.name = "mine";
  own.origin = 1;
  list.Add(own);
  list.RemoveReceived();
  EXPECT_EQ(list.HeaderValue(), "mine=");
}

}  // namespace
}  // namespace orvelan
