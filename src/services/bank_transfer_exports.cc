#include "core/exported_functions.h"
#include "services/bank_transfer_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(BankTransfer, orvelan::BankTransferComponent)
