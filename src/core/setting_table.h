#pragma once
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/error_codes.h"
#include "core/config_argument.h"

// The Config settings of one layer, declared as rows of a table. A layer's
// HandleConfig looks the name up in its own table and passes every name it
// does not know to its base, so the chain of layers reads as a chain of tables:
//
//   int CCStatementService::HandleConfig(ConfigArgument& argument, const char*& out) {
//     using R = Setting<CCStatementService>;
//     static constexpr R kSettings[] = {
//         R::OneZero<&CCStatementService::include_closing_>("IncludeClosing"),
//         R::Text<&CCStatementService::card_suffix_>("CardSuffix"),
//         {"LastBalance", [](CCStatementService& s, const char*& out) {
//            return s.ReturnConfigValue(out, s.balance_.Data());  // query only: a set changes nothing
//          }},
//     };
//     if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
//     return OFXClient::HandleConfig(argument, out);
//   }
//
// The table lives inside the layer's HandleConfig so that its rows may name
// private members. Rows are tried in order, names compared without ASCII case.
// A query runs the row's `query`, which writes the answer through
// ReturnConfigValue (so it is also the last-error text); a set runs `set`.
namespace orvelan {

template <class Layer>
struct Setting {
  // Answers a query through `out`; returns 0 or a code.
  using Query = int (*)(Layer& layer, const char*& out);
  // Applies `argument.Value()`; returns 0 or a code.
  using Apply = int (*)(Layer& layer, const ConfigArgument& argument);

  const char* name;
  Query query;
  Apply set = nullptr;  // null: a set is accepted and changes nothing

  int Run(Layer& layer, const ConfigArgument& argument, const char*& out) const {
    if (argument.IsQuery()) return query(layer, out);
    return set == nullptr ? kOk : set(layer, argument);
  }

  // Rows for plain members. A ByteString member answers its text and takes
  // the value as it is.
  template <auto kField>
  static constexpr Setting Text(const char* name) {
    return {name, QueryText<kField>, SetText<kField>};
  }
  // A bool member answered "True" or "False".
  template <auto kField>
  static constexpr Setting TrueFalse(const char* name) {
    return {name, QueryTrueFalse<kField>, SetBool<kField>};
  }
  // A bool member answered 1 or 0.
  template <auto kField>
  static constexpr Setting OneZero(const char* name) {
    return {name, QueryOneZero<kField>, SetBool<kField>};
  }
  // An integer member: the leading digits of the value, converted to the
  // member's type (a narrower member keeps the low bits).
  template <auto kField>
  static constexpr Setting Int(const char* name) {
    return {name, QueryInt<kField>, SetInt<kField>};
  }

  // The halves of those rows, for rows that answer plainly but set with a rule.
  template <auto kField>
  static int QueryText(Layer& layer, const char*& out) {
    return layer.ReturnConfigValue(out, (layer.*kField).Data());
  }
  template <auto kField>
  static int QueryTrueFalse(Layer& layer, const char*& out) {
    return layer.ReturnConfigValue(out, layer.*kField ? "True" : "False");
  }
  template <auto kField>
  static int QueryOneZero(Layer& layer, const char*& out) {
    return layer.ReturnConfigValue(out, int64_t{layer.*kField ? 1 : 0});
  }
  template <auto kField>
  static int QueryInt(Layer& layer, const char*& out) {
    return layer.ReturnConfigValue(out, static_cast<int64_t>(layer.*kField));
  }

 private:
  template <auto kField>
  static int SetText(Layer& layer, const ConfigArgument& argument) {
    return (layer.*kField).Assign(argument.Value(), argument.ValueLength());
  }
  template <auto kField>
  static int SetBool(Layer& layer, const ConfigArgument& argument) {
    layer.*kField = argument.ValueAsBool();
    return kOk;
  }
  template <auto kField>
  static int SetInt(Layer& layer, const ConfigArgument& argument) {
    using Member = std::remove_reference_t<decltype(layer.*kField)>;
    layer.*kField = static_cast<Member>(argument.ValueAsInt());
    return kOk;
  }
};

// The row of `table` named by `argument`, or null when the layer does not
// know the name.
template <class Layer, size_t N>
const Setting<Layer>* FindSetting(const Setting<Layer> (&table)[N], const ConfigArgument& argument) {
  for (const Setting<Layer>& row : table) {
    if (argument.NameIs(row.name)) return &row;
  }
  return nullptr;
}

// The "True"/"False" answer for a value that is not a plain member.
template <class Layer>
int AnswerTrueFalse(Layer& layer, const char*& out, bool value) {
  return layer.ReturnConfigValue(out, value ? "True" : "False");
}

}  // namespace orvelan
