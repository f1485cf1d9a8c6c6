#pragma once
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "base/error_codes.h"

// The tables that map a component's numeric ids to its service. A component
// lists its properties and methods once; ComponentObject does the rest (the
// offsets, the index checks, the last-error rules, the defaults at creation).
//
//   using P = PropertyBuilder<BankStatementService>;
//   P::Text<&S::AccountId, &S::SetAccountId>(1, "AccountId", ""),
//   P::Int<&S::TxCount>(53, "TxCount"),
//   P::IndexedText<&S::TxAmount, &S::CheckTxIndex>(55, "TxAmount"),
//
// Getters of indexed properties run only after the list's index check passed.
namespace orvelan {

enum class PropertyType : uint8_t { kText, kInteger, kBoolean, kInt64, kBytes };

// What a getter hands back: a text or bytes pointer (never null for a text),
// an integer, and the byte count for bytes.
struct PropertyValue {
  const char* pointer = "";
  int64_t integer = 0;
  int32_t length = 0;
};

// What a setter receives, already decoded from the pointer-sized ABI value.
struct PropertyInput {
  int32_t index = 0;
  const char* text = "";  // text and bytes; never null
  int32_t length = 0;     // bytes
  int64_t integer = 0;    // integers, booleans (cut to 32 bits) and 64-bit numbers
};

template <class Service>
struct PropertyDef {
  int id = 0;
  const char* name = "";
  PropertyType type = PropertyType::kText;
  int (*get)(Service&, int32_t index, PropertyValue&) = nullptr;
  int (*set)(Service&, const PropertyInput&) = nullptr;  // null: read-only
  // Null for a property that is not indexed; else 0 or 432 with the list's text.
  int (*check_index)(Service&, int32_t index) = nullptr;
  // The value set through the setter when the component is created.
  bool has_default = false;
  const char* default_text = "";
  int32_t default_length = -1;  // bytes: the count; -1 for a text
  int64_t default_integer = 0;
};

template <class Service>
struct MethodCall;

template <class Service>
struct MethodDef {
  int id = 0;
  const char* name = "";
  int (*run)(Service&, MethodCall<Service>&) = nullptr;
};

// The parameter arrays of one X_Do call. Reads past the count give empty
// values and writes past it are dropped, so a host that passes too few slots
// gets a failure from the method rather than a write outside its arrays.
template <class Service>
struct MethodCall {
  int count = 0;
  void** params = nullptr;
  int* lengths = nullptr;

  const char* Text(int i) const {
    if (i >= count || params == nullptr || params[i] == nullptr) return "";
    return static_cast<const char*>(params[i]);
  }
  int64_t Integer(int i) const {
    if (i >= count || params == nullptr) return 0;
    return static_cast<int64_t>(reinterpret_cast<intptr_t>(params[i]));
  }
  void SetText(int i, const char* text) const {
    if (i < count && params != nullptr) params[i] = const_cast<char*>(text);
  }
  void SetInteger(int i, int64_t value) const {
    if (i < count && params != nullptr) params[i] = reinterpret_cast<void*>(static_cast<intptr_t>(value));
  }
  void SetBytes(int i, const char* bytes, int32_t length) const {
    if (i >= count || params == nullptr) return;
    params[i] = const_cast<char*>(bytes);
    if (lengths != nullptr) lengths[i] = length;
  }
};

// The Config method every component has: params[0] is the setting text,
// params[1] receives the answer (a pointer into the service).
template <class Service>
int RunConfigMethod(Service& service, MethodCall<Service>& call) {
  const char* answer = "";
  const int rc = service.Config(call.Text(0), answer);
  call.SetText(1, answer);
  return rc;
}

// Builders for table entries from service member functions. Getters are
// `const char* ()`, `int32_t ()`/`bool ()`, `int64_t ()`, or for bytes
// `int (const char*& data, int32_t& length)`; indexed getters take the index
// first. Setters take `const char*`, `int32_t`, `int64_t`, or
// `(const char* data, int32_t length)` and return 0 or a code.
// A setter template argument left at nullptr marks a read-only property.
template <auto Set>
inline constexpr bool HasSetter = !std::is_same_v<decltype(Set), std::nullptr_t>;

template <class S>
struct PropertyBuilder {
  template <auto Get, auto Set = nullptr>
  static PropertyDef<S> Text(int id, const char* name, const char* default_text = nullptr) {
    PropertyDef<S> d = Base(id, name, PropertyType::kText);
    d.get = [](S& s, int32_t, PropertyValue& v) {
      v.pointer = (s.*Get)();
      return kOk;
    };
    if constexpr (HasSetter<Set>) d.set = [](S& s, const PropertyInput& in) { return (s.*Set)(in.text); };
    if (default_text != nullptr) {
      d.has_default = true;
      d.default_text = default_text;
    }
    return d;
  }

  template <auto Get, auto Set = nullptr>
  static PropertyDef<S> Int(int id, const char* name, bool has_default = false, int64_t default_value = 0) {
    return Integral<Get, Set>(id, name, PropertyType::kInteger, has_default, default_value);
  }

  template <auto Get, auto Set = nullptr>
  static PropertyDef<S> Bool(int id, const char* name, bool has_default = false, bool default_value = false) {
    return Integral<Get, Set>(id, name, PropertyType::kBoolean, has_default, default_value ? 1 : 0);
  }

  template <auto Get, auto Set = nullptr>
  static PropertyDef<S> Int64(int id, const char* name, bool has_default = false, int64_t default_value = 0) {
    return Integral<Get, Set>(id, name, PropertyType::kInt64, has_default, default_value);
  }

  template <auto Get, auto Set = nullptr>
  static PropertyDef<S> Bytes(int id, const char* name, const char* default_bytes = nullptr,
                              int32_t default_length = 0) {
    PropertyDef<S> d = Base(id, name, PropertyType::kBytes);
    d.get = [](S& s, int32_t, PropertyValue& v) {
      const char* data = "";
      int32_t length = 0;
      const int rc = (s.*Get)(data, length);
      v.pointer = data == nullptr ? "" : data;
      v.length = length;
      return rc;
    };
    if constexpr (HasSetter<Set>) {
      d.set = [](S& s, const PropertyInput& in) { return (s.*Set)(in.text, in.length); };
    }
    if (default_bytes != nullptr) {
      d.has_default = true;
      d.default_text = default_bytes;
      d.default_length = default_length;
    }
    return d;
  }

  // Check is the list's index check: `int (int32_t index)`, 0 or 432. Set,
  // when given, is `int (int32_t index, const char*)` and runs only after
  // the check passed.
  template <auto Get, auto Check, auto Set = nullptr>
  static PropertyDef<S> IndexedText(int id, const char* name) {
    PropertyDef<S> d = Base(id, name, PropertyType::kText);
    d.get = [](S& s, int32_t index, PropertyValue& v) {
      v.pointer = (s.*Get)(index);
      return kOk;
    };
    d.check_index = [](S& s, int32_t index) { return (s.*Check)(index); };
    if constexpr (HasSetter<Set>) d.set = [](S& s, const PropertyInput& in) { return (s.*Set)(in.index, in.text); };
    return d;
  }

  template <auto Get, auto Check>
  static PropertyDef<S> IndexedBool(int id, const char* name) {
    PropertyDef<S> d = IndexedInt<Get, Check>(id, name);
    d.type = PropertyType::kBoolean;
    return d;
  }

  template <auto Get, auto Check>
  static PropertyDef<S> IndexedInt(int id, const char* name) {
    PropertyDef<S> d = Base(id, name, PropertyType::kInteger);
    d.get = [](S& s, int32_t index, PropertyValue& v) {
      v.integer = static_cast<int64_t>((s.*Get)(index));
      return kOk;
    };
    d.check_index = [](S& s, int32_t index) { return (s.*Check)(index); };
    return d;
  }

 private:
  static PropertyDef<S> Base(int id, const char* name, PropertyType type) {
    PropertyDef<S> d;
    d.id = id;
    d.name = name;
    d.type = type;
    return d;
  }

  template <auto Get, auto Set>
  static PropertyDef<S> Integral(int id, const char* name, PropertyType type, bool has_default,
                                 int64_t default_value) {
    PropertyDef<S> d = Base(id, name, type);
    d.get = [](S& s, int32_t, PropertyValue& v) {
      v.integer = static_cast<int64_t>((s.*Get)());
      return kOk;
    };
    if constexpr (HasSetter<Set>) {
      d.set = [](S& s, const PropertyInput& in) {
        using Arg = decltype(ArgumentOf(Set));
        return (s.*Set)(static_cast<Arg>(in.integer));
      };
    }
    d.has_default = has_default;
    d.default_integer = default_value;
    return d;
  }

  template <class C, class R, class A>
  static A ArgumentOf(R (C::*)(A));
  template <class C, class R, class A>
  static A ArgumentOf(R (C::*)(A) noexcept);
};

}  // namespace orvelan
