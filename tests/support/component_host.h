#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orvelan.h"
#include "services/ofx_batch_component.h"
#include "support/test_bank_server.h"

namespace orvelan {

// A component as a host drives it: properties by id, texts copied out.
template <class C>
struct Host {
  int Set(int id, const std::string& value, int index = 0) { return component.Set(id, index, value.c_str(), 0); }
  int SetInt(int id, intptr_t value) { return component.Set(id, 0, reinterpret_cast<void*>(value), 0); }
  std::string Get(int id, int index = 0) { return static_cast<const char*>(component.Get(id, index, nullptr)); }
  intptr_t GetInt(int id) { return reinterpret_cast<intptr_t>(component.Get(id, 0, nullptr)); }
  int Config(const std::string& setting) {
    const char* out = nullptr;
    return component.service().Config(setting.c_str(), out);
  }
  C component{nullptr, nullptr};
};

// The OFXRequest of a component with these properties set.
template <class C>
std::string RequestOf(int request_id, const std::vector<std::pair<int, std::string>>& values) {
  Host<C> host;
  for (const auto& [id, value] : values) EXPECT_EQ(host.Set(id, value), 0) << id;
  return host.Get(request_id);
}

// An OFXBatch signed on to `url` that trusts the test CA.
struct Batch : Host<OFXBatchComponent> {
  explicit Batch(const std::string& url = "http://127.0.0.1/ofx", const std::string& version = "102") {
    for (const auto& [id, value] : {std::pair<int, std::string>{OFXBATCH_PROP_FIURL, url}, {OFXBATCH_PROP_OFXUSER, "u"},
                                    {OFXBATCH_PROP_OFXPASSWORD, "secret"}, {OFXBATCH_PROP_OFXAPPID, "QWIN"},
                                    {OFXBATCH_PROP_OFXAPPVERSION, "2700"}, {OFXBATCH_PROP_FIORGANIZATION, "B"}}) {
      EXPECT_EQ(Set(id, value), 0);
    }
    EXPECT_EQ(Config("OFXVersion=" + version) | Config("OpenSSLCAFile=" + TestBankServer::CaFile()), 0);
  }
  int Add(const std::string& request) {
    const int index = component.service().ItemCount();
    EXPECT_EQ(SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, index + 1), 0);
    return Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, request, index);
  }
  std::string Response(int index) { return Get(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, index); }
  int Post() { return component.Do(OFXBATCH_METHOD_POSTBATCH, 0, nullptr, nullptr); }
  // What follows the sign-on in the request the batch would send now.
  std::string MessageSets(int& rc) {
    ByteString request;
    rc = component.service().BuildRequest(request, false);
    return std::string(request.View()).substr(request.View().find("</SIGNONMSGSRQV1>\r\n") + 19);
  }
};

}  // namespace orvelan
