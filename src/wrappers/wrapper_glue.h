#pragma once
#include <cstdint>
#include <cstring>

#include "orvelan.hpp"

// What every wrapper member does, once: turn a named call into X_Get, X_Set or
// X_Do on the component with the right id, and turn the component's callback
// into a record and a virtual Fire call. The wrappers sit on the exported C
// functions only, as a host's own code would.
namespace orvelan::wrappers {

using GetFn = void* (*)(void*, int, int, int*);
using SetFn = int (*)(void*, int, int, const void*, int);
using DoFn = int (*)(void*, int, int, void**, int*);

inline const char* Text(GetFn get, void* component, int id, int index) {
  const char* text = static_cast<const char*>(get(component, id, index, nullptr));
  return text != nullptr ? text : "";
}
inline int Integer(GetFn get, void* component, int id, int index) {
  return static_cast<int>(reinterpret_cast<intptr_t>(get(component, id, index, nullptr)));
}
inline int SetText(SetFn set, void* component, int id, const char* value) { return set(component, id, 0, value, 0); }
// Integers travel in the value slot itself.
inline int SetInteger(SetFn set, void* component, int id, int value) {
  return set(component, id, 0, reinterpret_cast<void*>(static_cast<intptr_t>(value)), 0);
}
inline int Run(DoFn run, void* component, int id) { return run(component, id, 0, nullptr, nullptr); }
inline int RunWithText(DoFn run, void* component, int id, const char* text) {
  void* params[1] = {const_cast<char*>(text)};
  int lengths[1] = {0};
  return run(component, id, 1, params, lengths);
}
// The component drops outputs beyond the parameter count, so the answer slot
// is counted in.
inline const char* Config(DoFn run, void* component, int id, const char* text) {
  void* params[2] = {const_cast<char*>(text), nullptr};
  int lengths[2] = {0, 0};
  run(component, id, 2, params, lengths);
  return params[1] != nullptr ? static_cast<const char*>(params[1]) : "";
}

// The callback's parameter slots; a slot beyond the count reads as empty.
struct Slots {
  int count;
  void** params;
  int* lengths;
  void* At(int i) const { return i < count && params != nullptr ? params[i] : nullptr; }
  const char* Text(int i) const { return static_cast<const char*>(At(i)); }
  int Integer(int i) const { return static_cast<int>(reinterpret_cast<intptr_t>(At(i))); }
  int Length(int i) const { return i < count && lengths != nullptr ? lengths[i] : 0; }
};

template <class W, class R, class Fill>
int Fire(W& wrapper, int (W::*fire)(R*), Fill fill) {
  R record{};
  fill(record);
  return (wrapper.*fire)(&record);
}

// Records of events whose parameters are all texts hold one pointer per slot.
template <class W, class R>
int FireTexts(W& wrapper, int (W::*fire)(R*), const Slots& slots) {
  return Fire(wrapper, fire, [&](R& record) {
    constexpr int kFields = sizeof(R) / sizeof(const char*);
    const char* texts[kFields];
    for (int i = 0; i < kFields; ++i) texts[i] = slots.Text(i);
    std::memcpy(&record, texts, sizeof(record));
  });
}

// A component's own events (ids 5 and up); none unless overloaded below.
template <class W>
int FireOwnEvent(W&, int, const Slots&) {
  return 0;
}
inline int FireOwnEvent(BankTransfer& w, int id, const Slots& slots) {
  return id == BANKTRANSFER_EVENT_SYNCTRANSFERS ? FireTexts(w, &BankTransfer::FireSyncTransfers, slots) : 0;
}
inline int FireOwnEvent(BillPayment& w, int id, const Slots& slots) {
  if (id == BILLPAYMENT_EVENT_SYNCPAYEES) return FireTexts(w, &BillPayment::FireSyncPayees, slots);
  if (id == BILLPAYMENT_EVENT_SYNCPAYMENTS) return FireTexts(w, &BillPayment::FireSyncPayments, slots);
  return 0;
}

// The host's decision travels back in the Accept slot.
template <class W, class R>
int FireCertificate(W& wrapper, int (W::*fire)(R*), const Slots& slots) {
  R record{};
  record.CertEncoded = slots.Text(0);
  record.CertSubject = slots.Text(1);
  record.CertIssuer = slots.Text(2);
  record.Status = slots.Text(3);
  record.Accept = slots.Integer(4);
  record.lenCertEncoded = slots.Length(0);
  const int rc = (wrapper.*fire)(&record);
  if (slots.count > 4 && slots.params != nullptr) {
    slots.params[4] = reinterpret_cast<void*>(static_cast<intptr_t>(record.Accept));
  }
  return rc;
}

template <class W>
int Deliver(W& w, int (W::*wide)(int, int, void**, int*), int id, int count, void** params, int* lengths) {
  if (id > 10000) return (w.*wide)(id - 10000, count, params, lengths);
  const Slots s{count, params, lengths};
  switch (id) {
    case ORVELAN_EVENT_CONNECTION_STATUS:
      return Fire(w, &W::FireConnectionStatus, [&](auto& r) {
        r.ConnectionEvent = s.Text(0);
        r.StatusCode = s.Integer(1);
        r.Description = s.Text(2);
      });
    case ORVELAN_EVENT_ERROR:
      return Fire(w, &W::FireError, [&](auto& r) {
        r.ErrorCode = s.Integer(0);
        r.Description = s.Text(1);
      });
    case ORVELAN_EVENT_SSL_SERVER_AUTHENTICATION:
      return FireCertificate(w, &W::FireSSLServerAuthentication, s);
    case ORVELAN_EVENT_SSL_STATUS:
      return Fire(w, &W::FireSSLStatus, [&](auto& r) { r.Message = s.Text(0); });
    default:
      return FireOwnEvent(w, id, s);
  }
}

}  // namespace orvelan::wrappers
