#include "core/exported_functions.h"
#include "services/ofx_aggregate_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(OFXAggregate, orvelan::OFXAggregateComponent)
