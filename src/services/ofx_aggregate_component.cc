#include "services/ofx_aggregate_component.h"

namespace orvelan {
namespace {

using S = OFXAggregateService;
using P = PropertyBuilder<S>;

std::vector<PropertyDef<S>> Properties() {
  return {
      P::Text<&S::Aggregate, &S::SetAggregate>(OFXAGGREGATE_PROP_AGGREGATE, "Aggregate", ""),
      P::Int<&S::NamespaceCount>(OFXAGGREGATE_PROP_AGGREGATENAMESPACECOUNT, "AggregateNamespaceCount"),
      P::IndexedText<&S::NamespacePrefix, &S::CheckNamespaceIndex>(OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX,
                                                                   "AggregateNamespacePrefix"),
      P::IndexedText<&S::NamespaceURI, &S::CheckNamespaceIndex>(OFXAGGREGATE_PROP_AGGREGATENAMESPACEURI,
                                                                "AggregateNamespaceURI"),
      P::Int<&S::ChildCount>(OFXAGGREGATE_PROP_CHILDCOUNT, "ChildCount"),
      P::IndexedText<&S::ChildName, &S::CheckChildIndex>(OFXAGGREGATE_PROP_CHILDNAME, "ChildName"),
      P::IndexedText<&S::ChildNamespace, &S::CheckChildIndex>(OFXAGGREGATE_PROP_CHILDNAMESPACE, "ChildNamespace"),
      P::IndexedText<&S::ChildPrefix, &S::CheckChildIndex>(OFXAGGREGATE_PROP_CHILDPREFIX, "ChildPrefix"),
      P::IndexedText<&S::ChildText, &S::CheckChildIndex>(OFXAGGREGATE_PROP_CHILDTEXT, "ChildText"),
      P::Text<&S::ElementName>(OFXAGGREGATE_PROP_ELEMENTNAME, "ElementName"),
      P::Text<&S::ElementNamespace>(OFXAGGREGATE_PROP_ELEMENTNAMESPACE, "ElementNamespace"),
      P::Text<&S::ParentName>(OFXAGGREGATE_PROP_ELEMENTPARENT, "ElementParent"),
      P::Text<&S::ElementPath, &S::SetElementPath>(OFXAGGREGATE_PROP_ELEMENTPATH, "ElementPath", ""),
      P::Text<&S::ElementPrefix>(OFXAGGREGATE_PROP_ELEMENTPREFIX, "ElementPrefix"),
      P::Text<&S::ElementText>(OFXAGGREGATE_PROP_ELEMENTTEXT, "ElementText"),
  };
}

int RunPathExists(S& s, MethodCall<S>& call) {
  const bool exists = s.HasPath(call.Text(0));
  call.SetInteger(1, exists ? 1 : 0);
  return 0;
}

std::vector<MethodDef<S>> Methods() {
  return {MethodDef<S>{OFXAGGREGATE_METHOD_CONFIG, "Config", RunConfigMethod<S>},
          MethodDef<S>{OFXAGGREGATE_METHOD_PATHEXISTS, "PathExists", RunPathExists}};
}

}  // namespace

const ComponentTables<OFXAggregateService>& OFXAggregateTables() {
  static const ComponentTables<OFXAggregateService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
