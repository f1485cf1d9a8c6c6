#pragma once

#include "core/component_object.h"
#include "services/bank_transfer_service.h"

// What BankTransfer_Create returns: the BankTransfer property, method and
// event tables over one BankTransferService.
namespace orvelan {

const ComponentTables<BankTransferService>& BankTransferTables();

class BankTransferComponent : public ComponentObject<BankTransferService> {
 public:
  BankTransferComponent(EventCallback callback, void* user_data)
      : ComponentObject(BankTransferTables(), callback, user_data) {}
};

}  // namespace orvelan
