#pragma once

#include "core/component_object.h"
#include "services/ofx_batch_service.h"

// What OFXBatch_Create returns: the OFXBatch property and method tables over
// one OFXBatchService. The only component with the HTTP proxy as properties.
namespace orvelan {

const ComponentTables<OFXBatchService>& OFXBatchTables();

class OFXBatchComponent : public ComponentObject<OFXBatchService> {
 public:
  OFXBatchComponent(EventCallback callback, void* user_data)
      : ComponentObject(OFXBatchTables(), callback, user_data) {}
};

}  // namespace orvelan
