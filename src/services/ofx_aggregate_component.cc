#include "services/ofx_aggregate_component.h"

namespace orvelan {
namespace {

using S = OFXAggregateService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  return {
      P::Text<&S::Aggregate, &S::SetAggregate>(1, "Aggregate", ""),
      P::Int<&S::NamespaceCount>(2, "AggregateNamespaceCount"),
      P::IndexedText<&S::NamespacePrefix, &S::CheckNamespaceIndex>(3, "AggregateNamespacePrefix"),
      P::IndexedText<&S::NamespaceURI, &S::CheckNamespaceIndex>(4, "AggregateNamespaceURI"),
      P::Int<&S::ChildCount>(5, "ChildCount"),
      P::IndexedText<&S::ChildName, &S::CheckChildIndex>(6, "ChildName"),
      P::IndexedText<&S::ChildNamespace, &S::CheckChildIndex>(7, "ChildNamespace"),
      P::IndexedText<&S::ChildPrefix, &S::CheckChildIndex>(8, "ChildPrefix"),
      P::IndexedText<&S::ChildText, &S::CheckChildIndex>(9, "ChildText"),
      P::Text<&S::ElementName>(10, "ElementName"),
      P::Text<&S::ElementNamespace>(11, "ElementNamespace"),
      P::Text<&S::ParentName>(12, "ElementParent"),
      P::Text<&S::ElementPath, &S::SetElementPath>(13, "ElementPath", ""),
      P::Text<&S::ElementPrefix>(14, "ElementPrefix"),
      P::Text<&S::ElementText>(15, "ElementText"),
  };
}

int RunPathExists(S& s, MethodCall<S>& call) {
  const bool exists = s.HasPath(call.Text(0));
  call.SetInteger(1, exists ? 1 : 0);
  return 0;
}

std::vector<MethodDef<S>> Methods() {
  return {MethodDef<S>{2, "Config", RunConfigMethod<S>}, MethodDef<S>{3, "PathExists", RunPathExists}};
}

}  // namespace

const ComponentTables<OFXAggregateService>& OFXAggregateTables() {
  static const ComponentTables<OFXAggregateService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
