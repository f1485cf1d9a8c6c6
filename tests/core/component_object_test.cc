#include "core/component_object.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/byte_string.h"

namespace orvelan {
namespace {

using namespace std::string_literals;

// One property of every kind and methods that raise events, so dispatch and
// the event layout can be seen from outside.
class FakeService : public ComponentCore {
 public:
  void SetExternalEventLoop(bool on) { external_loop = on; }
  int32_t Level() const { return level_; }
  int SetLevel(int32_t value) { return value > 100 ? ReportError(202, "Level is invalid.") : (level_ = value, 0); }
  int64_t Big() const { return big_; }
  int SetBig(int64_t value) { return big_ = value, 0; }
  int Blob(const char*& data, int32_t& length) {
    if (blob_fails) return 271;
    data = blob_.Data();
    length = blob_.Length();
    return 0;
  }
  int SetBlob(const char* data, int32_t length) { return blob_.Assign(data, length); }

  bool external_loop = false, blob_fails = false;

 private:
  ByteString blob_;
  int32_t level_ = 0;
  int64_t big_ = 0;
};

using S = FakeService;
using P = PropertyBuilder<S>;

int RunEvents(S& s, MethodCall<S>&) {
  s.FireConnectionStatus("Connected", 0, "up");
  s.FireError(2001, nullptr);  // a null text reaches the host as ""
  int accept = 0;
  s.FireSSLServerAuthentication("\x30\x00\x01", 3, "CN=bank", "CN=ca", "chain broken", accept);
  s.FireSSLStatus("handshake");
  long timeout = 20, handle = 0;
  s.FireWaitForEvents(timeout);
  s.FireWatchSocket(5, 3, handle);
  s.FireUnwatchSocket(handle);
  return accept == 1 ? 0 : 99;
}
int RunFail(S&, MethodCall<S>& call) { return static_cast<int>(call.Integer(0)); }
int RunEcho(S&, MethodCall<S>& call) {
  call.SetText(1, call.Text(0));
  call.SetBytes(2, "xyz", 3);
  return 0;
}

const ComponentTables<S>& Tables() {
  static const ComponentTables<S> tables(
      {P::Int<&S::Level, &S::SetLevel>(2, "Level", true, 7),
       P::Bytes<&S::Blob, &S::SetBlob>(1, "Blob", "AB\0C", 4), P::Int64<&S::Big, &S::SetBig>(4, "Big")},
      {MethodDef<S>{2, "Events", RunEvents}, MethodDef<S>{3, "Fail", RunFail}, MethodDef<S>{4, "Echo", RunEcho}});
  return tables;
}

// Writes each event as "id: slot slot ...", texts (counted when a length is
// given) and integers alike; accepts the certificate and hands back a handle.
int RecordEvent(void* user_data, int id, int count, void** params, int* lengths) {
  const int text_slots = id == 1 ? 0b101 : id == 2 ? 0b10 : id == 3 ? 0b1111 : id == 4 ? 0b1 : 0;
  std::string line = std::to_string(id) + ":";
  for (int i = 0; i < count; ++i) {
    const char* text = static_cast<const char*>(params[i]);
    line += " ";
    if ((text_slots >> i & 1) == 0) {
      line += std::to_string(reinterpret_cast<intptr_t>(params[i]));
    } else {
      line.append(text, lengths[i] > 0 ? static_cast<size_t>(lengths[i]) : std::strlen(text));
    }
  }
  static_cast<std::vector<std::string>*>(user_data)->push_back(line);
  if (id == 3) params[4] = reinterpret_cast<void*>(intptr_t{1});
  if (id == 2001) params[2] = reinterpret_cast<void*>(intptr_t{77});
  return 0;
}

class ComponentObjectTest : public ::testing::Test {
 protected:
  intptr_t Integer(int id) { return reinterpret_cast<intptr_t>(obj_.Get(id, 0, nullptr)); }
  int SetInteger(int id, intptr_t value) { return obj_.Set(id, 0, reinterpret_cast<void*>(value), 0); }

  std::vector<std::string> events_;
  ComponentObject<S> obj_{Tables(), RecordEvent, &events_};
};

TEST_F(ComponentObjectTest, EventsReachTheCallbackInTheDocumentedLayout) {
  ASSERT_EQ(obj_.Do(2, 0, nullptr, nullptr), 0);  // 0: the host's accept came back
  EXPECT_EQ(events_, (std::vector<std::string>{"1: Connected 0 up", "2: 2001 ",
                                               "3: \x30\x00\x01 CN=bank CN=ca chain broken 0"s, "4: handshake",
                                               "2000: 20", "2001: 5 3 0", "2002: 77"}));
}

TEST_F(ComponentObjectTest, MethodsReportTheirResultsAndFillSlots) {
  void* code[1] = {reinterpret_cast<void*>(intptr_t{200})};
  EXPECT_EQ(obj_.Do(3, 1, code, nullptr), 200);
  EXPECT_EQ(obj_.GetLastErrorCode(), 200);
  EXPECT_STREQ(obj_.GetLastError(), "Out of memory.");
  // A success leaves the text for the next operation that sets one; a failure
  // that sets none gets the default text, never the one left over.
  code[0] = nullptr;
  EXPECT_EQ(obj_.Do(3, 1, code, nullptr), 0);
  EXPECT_EQ(obj_.GetLastErrorCode(), 0);
  EXPECT_STREQ(obj_.GetLastError(), "Out of memory.");
  code[0] = reinterpret_cast<void*>(intptr_t{99});
  EXPECT_EQ(obj_.Do(3, 1, code, nullptr), 99);
  EXPECT_STREQ(obj_.GetLastError(), "");  // the core's own default covers 200 only

  void* params[3] = {const_cast<char*>("in"), nullptr, nullptr};
  int lengths[3] = {0, 0, 0};
  EXPECT_EQ(obj_.Do(4, 3, params, lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(params[1]), "in");
  EXPECT_EQ(std::string(static_cast<const char*>(params[2]), static_cast<size_t>(lengths[2])), "xyz");
  // Too few slots: nothing is written past them; a null text reads as empty.
  void* two[2] = {nullptr, nullptr};
  int two_lengths[2] = {5, 5};
  EXPECT_EQ(obj_.Do(4, 2, two, two_lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(two[1]), "");
  EXPECT_EQ(two_lengths[1], 5);

  // Reserved ids, also behind the text-converting offset.
  EXPECT_EQ(obj_.Do(2001, 0, nullptr, nullptr), 0);
  EXPECT_TRUE(obj_.service().external_loop);
  EXPECT_EQ(obj_.Do(12000, 0, nullptr, nullptr), 0);
  EXPECT_FALSE(obj_.service().external_loop);
}

TEST_F(ComponentObjectTest, PropertyValuesAndFailures) {
  EXPECT_EQ(SetInteger(4, -5000000000LL), 0);
  EXPECT_EQ(Integer(4), -5000000000LL);  // 64-bit numbers keep their width

  EXPECT_EQ(SetInteger(2, 500), 202);
  EXPECT_STREQ(obj_.GetLastError(), "Level is invalid.");
  EXPECT_EQ(Integer(2), 7);
  EXPECT_EQ(obj_.Set(1, 0, "abc", -4), 0);  // bytes with a negative length count as none
  EXPECT_STREQ(obj_.GetLastError(), "Level is invalid.");
  int length = -1;
  obj_.Get(1, 0, &length);
  EXPECT_EQ(length, 0);

  // A failing bytes getter reports its code through the length.
  obj_.service().blob_fails = true;
  EXPECT_EQ(obj_.Get(1, 0, &length), nullptr);
  EXPECT_EQ(length, 271);
  EXPECT_EQ(obj_.Get(1, 0, nullptr), nullptr);  // a null length is allowed
}

}  // namespace
}  // namespace orvelan
