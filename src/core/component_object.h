#pragma once
#include <algorithm>
#include <cstdint>
#include <exception>
#include <vector>

#include "base/error_codes.h"
#include "core/component_core.h"
#include "core/component_events.h"
#include "core/property_table.h"
#include "orvelan.h"

// The object a host holds: what X_Create returns. It owns the service by
// value, maps ids to the service through the component's tables, keeps the
// last-error rules, and turns the service's events into callback calls.
//
//   class BankStatementComponent : public ComponentObject<BankStatementService> {
//    public:
//     BankStatementComponent(EventCallback cb, void* user_data)
//         : ComponentObject(BankStatementTables(), cb, user_data) {}
//   };
//
// Nothing here throws out: the exported functions wrap every call (see
// exported_functions.h). One object is used by one thread at a time.
namespace orvelan {

// Id lookup for one component, built once per component type.
template <class S>
class ComponentTables {
 public:
  ComponentTables(std::vector<PropertyDef<S>> properties, std::vector<MethodDef<S>> methods)
      : properties_(std::move(properties)), methods_(std::move(methods)) {
    std::sort(properties_.begin(), properties_.end(),
              [](const PropertyDef<S>& a, const PropertyDef<S>& b) { return a.id < b.id; });
    int max_id = 0;
    for (const auto& p : properties_) max_id = std::max(max_id, p.id);
    by_id_.assign(static_cast<size_t>(max_id) + 1, nullptr);
    for (const auto& p : properties_) by_id_[static_cast<size_t>(p.id)] = &p;
  }
  ComponentTables(const ComponentTables&) = delete;
  ComponentTables& operator=(const ComponentTables&) = delete;

  const PropertyDef<S>* Property(int id) const {
    return (id < 0 || static_cast<size_t>(id) >= by_id_.size()) ? nullptr : by_id_[static_cast<size_t>(id)];
  }
  const MethodDef<S>* Method(int id) const {
    for (const auto& m : methods_) {
      if (m.id == id) return &m;
    }
    return nullptr;
  }
  // In id order.
  const std::vector<PropertyDef<S>>& Properties() const { return properties_; }
  const std::vector<MethodDef<S>>& Methods() const { return methods_; }

 private:
  std::vector<PropertyDef<S>> properties_;
  std::vector<MethodDef<S>> methods_;
  std::vector<const PropertyDef<S>*> by_id_;
};

template <class S>
class ComponentObject : public ComponentEvents {
 public:
  // Runs the service's InitDefaults, then sets every property that has a
  // default through its setter, in id order, and starts with no error.
  ComponentObject(const ComponentTables<S>& tables, EventCallback callback, void* user_data)
      : tables_(tables), callback_(callback), user_data_(user_data) {
    service_.SetEventSink(this);
    service_.InitDefaults();
    for (const PropertyDef<S>& p : tables_.Properties()) {
      if (p.set == nullptr || !p.has_default) continue;
      PropertyInput in;
      in.text = p.default_text;
      in.length = p.default_length < 0 ? 0 : p.default_length;
      in.integer = p.default_integer;
      p.set(service_, in);
    }
    service_.ClearError();
  }
  ComponentObject(const ComponentObject&) = delete;
  ComponentObject& operator=(const ComponentObject&) = delete;
  ~ComponentObject() override { service_.SetEventSink(nullptr); }

  S& service() { return service_; }
  const ComponentTables<S>& tables() const { return tables_; }

  void* Get(int id, int index, int* length) {
    Begin();
    service_.SetLastErrorCode(kOk);
    // 10000 and 20000 themselves read the banner, so the bounds are inclusive.
    if (id >= 20000) {
      id -= 20000;
    } else if (id >= 10000) {
      id -= 10000;
    }
    if (id == ORVELAN_PROP_VERSION) return const_cast<char*>(ORVELAN_VERSION_BANNER);
    if (id == ORVELAN_PROP_CODEPAGE) return IntegerResult(service_.CodePage());
    const PropertyDef<S>* p = tables_.Property(id);
    if (p == nullptr || p->get == nullptr) return nullptr;
    if (p->check_index != nullptr) {
      if (int rc = p->check_index(service_, index); rc != kOk) {
        service_.SetLastErrorCode(rc);
        return EmptyResult(p->type);
      }
    }
    PropertyValue value;
    const int rc = p->get(service_, index, value);
    if (p->type == PropertyType::kBytes) {
      if (rc != kOk) {
        if (length != nullptr) *length = rc;
        return nullptr;
      }
      if (length != nullptr) *length = value.length;
      return const_cast<char*>(value.pointer);
    }
    if (rc != kOk) {
      // A getter that cannot produce its value reads as empty and says why.
      Finish(rc);
      return EmptyResult(p->type);
    }
    if (p->type == PropertyType::kText) return const_cast<char*>(value.pointer);
    return IntegerResult(value.integer);
  }

  int Set(int id, int index, const void* value, int length) {
    const PropertyDef<S>* p = tables_.Property(id);
    if (p == nullptr || p->set == nullptr) return kErrUnknown;
    PropertyInput in;
    in.index = index;
    switch (p->type) {
      case PropertyType::kText:
        in.text = value == nullptr ? "" : static_cast<const char*>(value);
        break;
      case PropertyType::kBytes:
        in.text = value == nullptr ? "" : static_cast<const char*>(value);
        in.length = value == nullptr || length < 0 ? 0 : length;
        break;
      case PropertyType::kInteger:
      case PropertyType::kBoolean:
        in.integer = static_cast<int32_t>(reinterpret_cast<intptr_t>(value));
        break;
      case PropertyType::kInt64:
        in.integer = static_cast<int64_t>(reinterpret_cast<intptr_t>(value));
        break;
    }
    Begin();
    // A bad index says why but leaves the last error code as it was.
    if (p->check_index != nullptr) {
      if (int rc = p->check_index(service_, index); rc != kOk) return rc;
    }
    return Finish(p->set(service_, in));
  }

  int CheckIndex(int id, int index) {
    Begin();
    const PropertyDef<S>* p = tables_.Property(id);
    if (p == nullptr || p->check_index == nullptr) return kOk;
    return p->check_index(service_, index) == kOk ? kOk : kErrCheckIndex;
  }

  int Do(int id, int count, void** params, int* lengths) {
    if (id >= 10000) id -= 10000;  // text parameters pass unchanged on this platform
    if (id == ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_OFF || id == ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_ON) {
      service_.SetExternalEventLoop(id == ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_ON);
      return kOk;
    }
    if (id == ORVELAN_METHOD_PROCESS_EVENTS) return service_.ProcessEvents(0);
    Begin();
    const MethodDef<S>* m = tables_.Method(id);
    if (m == nullptr) return Finish(kOk);
    MethodCall<S> call{count < 0 ? 0 : count, params, lengths};
    return Finish(m->run(service_, call));
  }

  const char* GetLastError() const { return service_.GetLastError(); }
  int GetLastErrorCode() const { return service_.GetLastErrorCode(); }

  // Stores a result as the last error. A failure whose layers set no text
  // gets the default text, never the one an earlier operation left (a
  // success leaves that in place). Also the landing place of a caught
  // allocation failure.
  int Finish(int rc) {
    service_.FillDefaultErrorTextSince(text_version_at_start_, rc);
    service_.SetLastErrorCode(rc);
    return rc;
  }

  // ComponentEvents: one callback call each, with zeroed arrays.
  void SetEventCodePage(int) override {}
  int WaitForEvents(long& timeout_ms) override {
    void* params[1] = {IntegerSlot(timeout_ms)};
    int lengths[1] = {0};
    const int rc = Deliver(ORVELAN_EVENT_WAIT_FOR_EVENTS, 1, params, lengths);
    timeout_ms = static_cast<long>(reinterpret_cast<intptr_t>(params[0]));
    return rc;
  }
  int WatchSocket(long socket, long event_mask, long& handle) override {
    void* params[3] = {IntegerSlot(socket), IntegerSlot(event_mask), IntegerSlot(handle)};
    int lengths[3] = {0, 0, 0};
    const int rc = Deliver(ORVELAN_EVENT_WATCH_SOCKET, 3, params, lengths);
    handle = static_cast<long>(reinterpret_cast<intptr_t>(params[2]));
    return rc;
  }
  int UnwatchSocket(long handle) override {
    void* params[1] = {IntegerSlot(handle)};
    int lengths[1] = {0};
    return Deliver(ORVELAN_EVENT_UNWATCH_SOCKET, 1, params, lengths);
  }
  int FireConnectionStatus(const char* connection_event, int status_code, const char* description) override {
    void* params[3] = {TextSlot(connection_event), IntegerSlot(status_code), TextSlot(description)};
    int lengths[3] = {0, 0, 0};
    return Deliver(ORVELAN_EVENT_CONNECTION_STATUS, 3, params, lengths);
  }
  int FireError(int error_code, const char* description) override {
    void* params[2] = {IntegerSlot(error_code), TextSlot(description)};
    int lengths[2] = {0, 0};
    return Deliver(ORVELAN_EVENT_ERROR, 2, params, lengths);
  }
  int FireSSLServerAuthentication(const char* cert_encoded, int cert_length, const char* cert_subject,
                                  const char* cert_issuer, const char* status, int& accept) override {
    void* params[5] = {TextSlot(cert_encoded), TextSlot(cert_subject), TextSlot(cert_issuer), TextSlot(status),
                       IntegerSlot(accept)};
    int lengths[5] = {cert_length, 0, 0, 0, 0};
    const int rc = Deliver(ORVELAN_EVENT_SSL_SERVER_AUTHENTICATION, 5, params, lengths);
    if (callback_ != nullptr) accept = static_cast<int>(reinterpret_cast<intptr_t>(params[4]));
    return rc;
  }
  int FireSSLStatus(const char* message) override {
    void* params[1] = {TextSlot(message)};
    int lengths[1] = {0};
    return Deliver(ORVELAN_EVENT_SSL_STATUS, 1, params, lengths);
  }
  int FireTextEvent(int event_id, int count, const char* const* texts) override {
    std::vector<void*> params(static_cast<size_t>(count));
    std::vector<int> lengths(static_cast<size_t>(count), 0);
    for (int i = 0; i < count; ++i) params[static_cast<size_t>(i)] = TextSlot(texts[i]);
    return Deliver(event_id, count, params.data(), lengths.data());
  }

 private:
  static void* IntegerResult(int64_t value) { return reinterpret_cast<void*>(static_cast<intptr_t>(value)); }
  static void* IntegerSlot(long value) { return reinterpret_cast<void*>(static_cast<intptr_t>(value)); }
  static void* TextSlot(const char* text) { return const_cast<char*>(text); }
  static void* EmptyResult(PropertyType type) {
    return type == PropertyType::kText ? const_cast<char*>("") : nullptr;
  }
  // The last-error text is not emptied here: it stays until replaced.
  void Begin() { text_version_at_start_ = service_.ErrorTextVersion(); }
  int Deliver(int id, int count, void** params, int* lengths) {
    if (callback_ == nullptr) return 0;
    return callback_(user_data_, id, count, params, lengths);
  }

  S service_;
  const ComponentTables<S>& tables_;
  EventCallback callback_;
  void* user_data_;
  uint32_t text_version_at_start_ = 0;
};

}  // namespace orvelan
