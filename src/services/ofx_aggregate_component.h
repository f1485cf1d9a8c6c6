#pragma once

#include "core/component_object.h"
#include "services/ofx_aggregate_service.h"

// What OFXAggregate_Create returns: the OFXAggregate property and method
// tables over one OFXAggregateService. It raises no events.
namespace orvelan {

const ComponentTables<OFXAggregateService>& OFXAggregateTables();

class OFXAggregateComponent : public ComponentObject<OFXAggregateService> {
 public:
  OFXAggregateComponent(EventCallback callback, void* user_data)
      : ComponentObject(OFXAggregateTables(), callback, user_data) {}
};

}  // namespace orvelan
