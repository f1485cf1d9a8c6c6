#pragma once
// A service component driven as a host drives it, by property ids, over
// canned responses; and the checks the service suites share.
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_bank_server.h"

namespace orvelan {

// A response: a successful sign-on, then `body`.
inline std::string OfxResponse(const std::string& body) {
  return "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20260115<LANGUAGE>ENG</SONRS>"
         "</SIGNONMSGSRSV1>" + body + "</OFX>";
}

// A response with one transaction `wrapper` in the message set `set`.
inline std::string OfxResponse(const std::string& set, const std::string& wrapper, const std::string& body,
                               const std::string& status = "<CODE>0<SEVERITY>INFO") {
  return OfxResponse("<" + set + "><" + wrapper + "><TRNUID>1<STATUS>" + status + "</STATUS>" + body + "</" +
                     wrapper + "></" + set + ">");
}

// Each record event (id 5 and up) as "id|p|p|...": the parameters `shown`
// picks, or all but the aggregate (the first) when `shown` is empty.
struct EventLog {
  std::vector<int> shown;
  std::vector<std::string> lines;
  static int Callback(void* self, int id, int count, void** params, int*) {
    auto* log = static_cast<EventLog*>(self);
    if (id < 5) return 0;
    std::string line = std::to_string(id);
    if (log->shown.empty()) {
      for (int i = 1; i < count; ++i) line += "|" + std::string(static_cast<const char*>(params[i]));
    }
    for (int i : log->shown) line += "|" + std::string(static_cast<const char*>(params[i]));
    log->lines.push_back(line);
    return 0;
  }
  std::vector<std::string> Take() { return std::exchange(lines, {}); }
};

template <class Component>
struct ComponentHost : Component {
  // `extra_tags`: aggregates the fixed dictionary leaves out.
  explicit ComponentHost(const char* extra_tags = nullptr, EventCallback callback = nullptr, void* user = nullptr)
      : Component(callback, user) {
    const char* out = nullptr;
    if (extra_tags != nullptr) this->service().Config((std::string("ExtraTags=") + extra_tags).c_str(), out);
  }
  std::string Text(int id, int index = 0) {
    const void* value = this->Get(id, index, nullptr);
    return value == nullptr ? "" : static_cast<const char*>(value);
  }
  int64_t Int(int id, int index = 0) { return reinterpret_cast<intptr_t>(this->Get(id, index, nullptr)); }
  int SetInt(int id, intptr_t value, int index = 0) { return this->Set(id, index, reinterpret_cast<void*>(value), 0); }
  int Respond(const std::string& text) { return this->service().SetOFXResponse(text.c_str()); }
  int SetText(int id, const std::string& value, int index = 0) {
    return this->Set(id, index, value.c_str(), static_cast<int>(value.size()));
  }
  // Runs a method with an optional argument; `answer` receives a second, output, parameter.
  int Run(int method, const char* argument = nullptr, std::string* answer = nullptr) {
    void* params[2] = {const_cast<char*>(argument), nullptr};
    int lengths[2] = {0, 0};
    const int rc = this->Do(method, argument == nullptr ? 0 : answer == nullptr ? 1 : 2, params, lengths);
    if (answer != nullptr) *answer = params[1] != nullptr ? static_cast<const char*>(params[1]) : "";
    return rc;
  }
  // Signs on to the sandbox bank at `url` as `user` in `version`, trusting its CA.
  void SignOn(const std::string& url, const std::string& user, const char* version) {
    auto& s = this->service();
    s.SetFIUrl(url.c_str());
    s.SetOFXUser(user.c_str());
    s.SetOFXPassword("secret");
    s.SetOFXAppId("QWIN");
    s.SetOFXAppVersion("2700");
    s.SetFIOrganization("Orvelan Bank");
    s.SetFIId("1234");
    s.SetOFXVersion(version);
    const char* out = nullptr;
    EXPECT_EQ(s.Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
  }
};

// Rows: what to run, the code it returns and the text it leaves.
using FailureRow = std::tuple<std::function<int()>, int, const char*>;
constexpr char kExpectedElement[] = "Expected element missing from server response.";

template <class Host>
void ExpectFailures(Host& host, std::initializer_list<FailureRow> rows) {
  for (const auto& [run, code, text] : rows) {
    EXPECT_EQ(run(), code) << text;
    EXPECT_STREQ(host.GetLastError(), text);
  }
}

// Every id from 1 to `count` names one property, and no name came twice.
template <class Tables>
void ExpectEveryId(const Tables& tables, int count) {
  EXPECT_EQ(tables.Properties().size(), static_cast<size_t>(count));
  for (int id = 1; id <= count; ++id) EXPECT_NE(tables.Property(id), nullptr) << id;
}

// The ids first..last of a list holding `count` records refuse the index
// `count` (280; reading there gives "" and 432 with `text`); the ids around
// the list take any index.
struct IndexedList {
  int first, last, count;
  const char* text;
};
template <class Host>
void ExpectIndexedLists(Host& host, std::initializer_list<IndexedList> lists) {
  for (const IndexedList& list : lists) {
    for (int id = list.first - 1; id <= list.last + 1; ++id) {
      SCOPED_TRACE("id " + std::to_string(id));
      const bool indexed = id >= list.first && id <= list.last;
      EXPECT_EQ(host.CheckIndex(id, list.count), indexed ? 280 : 0);
      if (!indexed) continue;
      EXPECT_EQ(host.CheckIndex(id, list.count - 1), list.count > 0 ? 0 : 280);
      EXPECT_EQ(host.Text(id, list.count), "");
      EXPECT_EQ(host.GetLastErrorCode(), 432);
      EXPECT_STREQ(host.GetLastError(), list.text);
    }
  }
}

}  // namespace orvelan
