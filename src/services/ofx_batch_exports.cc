#include "core/exported_functions.h"
#include "services/ofx_batch_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(OFXBatch, orvelan::OFXBatchComponent)
