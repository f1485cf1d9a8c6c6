#include "core/component_object.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/byte_string.h"

namespace orvelan {
namespace {

// A small service with one property of every kind and methods that raise
// events, so the dispatch and the event layout can be seen from outside.
class FakeService : public ComponentCore {
 public:
  int InitDefaults() override {
    ComponentCore::InitDefaults();
    ++init_calls;
    return 1;
  }
  void SetExternalEventLoop(bool on) { external_loop = on; }

  const char* Name() const { return name_.Data(); }
  int SetName(const char* value) {
    set_order.push_back("Name");
    return name_.Assign(value);
  }
  int32_t Level() const { return level_; }
  int SetLevel(int32_t value) {
    set_order.push_back("Level");
    if (value > 100) return ReportError(202, "Level is invalid.");
    level_ = value;
    return 0;
  }
  int64_t Big() const { return big_; }
  int SetBig(int64_t value) {
    big_ = value;
    return 0;
  }
  int Blob(const char*& data, int32_t& length) {
    if (blob_fails) return 271;
    data = blob_.Data();
    length = blob_.Length();
    return 0;
  }
  int SetBlob(const char* data, int32_t length) {
    set_order.push_back("Blob");
    return blob_.Assign(data, length);
  }
  int init_calls = 0;
  bool external_loop = false;
  bool blob_fails = false;
  std::vector<std::string> set_order;

 private:
  ByteString name_;
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
  long timeout = 20;
  s.FireWaitForEvents(timeout);
  long handle = 0;
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
      {
          P::Text<&S::Name, &S::SetName>(3, "Name", "anon"),
          P::Int<&S::Level, &S::SetLevel>(2, "Level", true, 7),
          P::Bytes<&S::Blob, &S::SetBlob>(1, "Blob", "AB\0C", 4),
          P::Int64<&S::Big, &S::SetBig>(4, "Big"),
      },
      {
          MethodDef<S>{2, "Events", RunEvents},
          MethodDef<S>{3, "Fail", RunFail},
          MethodDef<S>{4, "Echo", RunEcho},
      });
  return tables;
}

struct Delivered {
  int id;
  int count;
  std::vector<std::string> texts;  // text slots as seen by the host
  std::vector<intptr_t> integers;  // integer slots
  std::vector<int> lengths;
};

int RecordEvent(void* user_data, int id, int count, void** params, int* lengths) {
  auto* log = static_cast<std::vector<Delivered>*>(user_data);
  Delivered d{id, count, {}, {}, {}};
  for (int i = 0; i < count; ++i) {
    d.lengths.push_back(lengths[i]);
    d.integers.push_back(reinterpret_cast<intptr_t>(params[i]));
  }
  switch (id) {
    case 1:
      d.texts = {static_cast<char*>(params[0]), static_cast<char*>(params[2])};
      break;
    case 2:
      d.texts = {static_cast<char*>(params[1])};
      break;
    case 3:
      d.texts = {std::string(static_cast<char*>(params[0]), static_cast<size_t>(lengths[0])),
                 static_cast<char*>(params[1]), static_cast<char*>(params[2]), static_cast<char*>(params[3])};
      params[4] = reinterpret_cast<void*>(intptr_t{1});  // accept
      break;
    case 4:
      d.texts = {static_cast<char*>(params[0])};
      break;
    case 2000:
      params[0] = reinterpret_cast<void*>(intptr_t{-1});
      break;
    case 2001:
      params[2] = reinterpret_cast<void*>(intptr_t{77});
      break;
    default:
      break;
  }
  log->push_back(d);
  return 0;
}

class ComponentObjectTest : public ::testing::Test {
 protected:
  std::vector<Delivered> events_;
  ComponentObject<S> obj_{Tables(), RecordEvent, &events_};
};

TEST_F(ComponentObjectTest, CreationSetsDefaultsThroughSettersInIdOrder) {
  EXPECT_EQ(obj_.service().init_calls, 1);
  EXPECT_EQ(obj_.service().set_order, (std::vector<std::string>{"Blob", "Level", "Name"}));
  EXPECT_STREQ(static_cast<const char*>(obj_.Get(3, 0, nullptr)), "anon");
  EXPECT_EQ(reinterpret_cast<intptr_t>(obj_.Get(2, 0, nullptr)), 7);
  int length = 0;
  const char* blob = static_cast<const char*>(obj_.Get(1, 0, &length));
  EXPECT_EQ(std::string(blob, static_cast<size_t>(length)), std::string("AB\0C", 4));
  EXPECT_EQ(obj_.GetLastErrorCode(), 0);
  EXPECT_STREQ(obj_.GetLastError(), "");
}

TEST_F(ComponentObjectTest, EventsReachTheCallbackInTheDocumentedLayout) {
  ASSERT_EQ(obj_.Do(2, 0, nullptr, nullptr), 0);  // 0: the host's accept came back
  ASSERT_EQ(events_.size(), 7u);

  EXPECT_EQ(events_[0].id, 1);
  EXPECT_EQ(events_[0].count, 3);
  EXPECT_EQ(events_[0].texts, (std::vector<std::string>{"Connected", "up"}));
  EXPECT_EQ(events_[0].integers[1], 0);

  EXPECT_EQ(events_[1].id, 2);
  EXPECT_EQ(events_[1].count, 2);
  EXPECT_EQ(events_[1].integers[0], 2001);
  EXPECT_EQ(events_[1].texts, (std::vector<std::string>{""}));

  EXPECT_EQ(events_[2].id, 3);
  EXPECT_EQ(events_[2].count, 5);
  EXPECT_EQ(events_[2].lengths, (std::vector<int>{3, 0, 0, 0, 0}));
  EXPECT_EQ(events_[2].texts, (std::vector<std::string>{std::string("\x30\x00\x01", 3), "CN=bank", "CN=ca",
                                                        "chain broken"}));
  EXPECT_EQ(events_[2].integers[4], 0);  // accept goes in as the caller's value

  EXPECT_EQ(events_[3].id, 4);
  EXPECT_EQ(events_[3].texts, (std::vector<std::string>{"handshake"}));

  EXPECT_EQ(events_[4].id, 2000);
  EXPECT_EQ(events_[4].integers, (std::vector<intptr_t>{20}));
  EXPECT_EQ(events_[5].id, 2001);
  EXPECT_EQ(events_[5].integers, (std::vector<intptr_t>{5, 3, 0}));
  EXPECT_EQ(events_[6].id, 2002);
  EXPECT_EQ(events_[6].integers, (std::vector<intptr_t>{77}));  // the handle the host gave back
}

TEST(ComponentObjectNoCallbackTest, EventsAreDroppedAndTheMethodGoesOn) {
  ComponentObject<S> obj(Tables(), nullptr, nullptr);
  EXPECT_EQ(obj.Do(2, 0, nullptr, nullptr), 99);  // nobody accepted the certificate
  EXPECT_EQ(obj.GetLastErrorCode(), 99);
  EXPECT_STREQ(obj.GetLastError(), "");  // the core's own default text covers 200 only
}

TEST_F(ComponentObjectTest, MethodResultsBecomeTheLastError) {
  void* params[1] = {reinterpret_cast<void*>(intptr_t{200})};
  EXPECT_EQ(obj_.Do(3, 1, params, nullptr), 200);
  EXPECT_EQ(obj_.GetLastErrorCode(), 200);
  EXPECT_STREQ(obj_.GetLastError(), "Out of memory.");
  params[0] = reinterpret_cast<void*>(intptr_t{0});
  EXPECT_EQ(obj_.Do(3, 1, params, nullptr), 0);
  EXPECT_STREQ(obj_.GetLastError(), "");
}

TEST_F(ComponentObjectTest, MethodOutputsGoToParameterSlots) {
  void* params[3] = {const_cast<char*>("in"), nullptr, nullptr};
  int lengths[3] = {0, 0, 0};
  EXPECT_EQ(obj_.Do(4, 3, params, lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(params[1]), "in");
  EXPECT_EQ(std::string(static_cast<const char*>(params[2]), static_cast<size_t>(lengths[2])), "xyz");
  // Too few slots: nothing is written past them.
  void* two[2] = {nullptr, nullptr};
  int two_lengths[2] = {5, 5};
  EXPECT_EQ(obj_.Do(4, 2, two, two_lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(two[1]), "");  // a null text parameter reads as empty
  EXPECT_EQ(two_lengths[1], 5);
}

TEST_F(ComponentObjectTest, ReservedMethodsSwitchTheExternalLoop) {
  EXPECT_EQ(obj_.Do(2001, 0, nullptr, nullptr), 0);
  EXPECT_TRUE(obj_.service().external_loop);
  EXPECT_EQ(obj_.Do(12000, 0, nullptr, nullptr), 0);
  EXPECT_FALSE(obj_.service().external_loop);
}

TEST_F(ComponentObjectTest, SixtyFourBitNumbersKeepTheirWidth) {
  EXPECT_EQ(obj_.Set(4, 0, reinterpret_cast<void*>(intptr_t{-5000000000LL}), 0), 0);
  EXPECT_EQ(reinterpret_cast<intptr_t>(obj_.Get(4, 0, nullptr)), -5000000000LL);
}

TEST_F(ComponentObjectTest, FailingBytesGetterReportsItsCodeThroughLength) {
  obj_.service().blob_fails = true;
  int length = 0;
  EXPECT_EQ(obj_.Get(1, 0, &length), nullptr);
  EXPECT_EQ(length, 271);
  EXPECT_EQ(obj_.Get(1, 0, nullptr), nullptr);  // a null length is allowed
}

TEST_F(ComponentObjectTest, FailedSetKeepsTheLayerTextAndTheOldValue) {
  EXPECT_EQ(obj_.Set(2, 0, reinterpret_cast<void*>(intptr_t{500}), 0), 202);
  EXPECT_STREQ(obj_.GetLastError(), "Level is invalid.");
  EXPECT_EQ(reinterpret_cast<intptr_t>(obj_.Get(2, 0, nullptr)), 7);
  EXPECT_EQ(obj_.Set(1, 0, "abc", -4), 0);  // bytes with a negative length count as none
  int length = -1;
  obj_.Get(1, 0, &length);
  EXPECT_EQ(length, 0);
}

}  // namespace
}  // namespace orvelan
