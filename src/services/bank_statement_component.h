#pragma once

#include "core/component_object.h"
#include "services/bank_statement_service.h"

// What BankStatement_Create returns: the BankStatement property, method and
// event tables over one BankStatementService.
namespace orvelan {

const ComponentTables<BankStatementService>& BankStatementTables();

class BankStatementComponent : public ComponentObject<BankStatementService> {
 public:
  BankStatementComponent(EventCallback callback, void* user_data)
      : ComponentObject(BankStatementTables(), callback, user_data) {}
};

}  // namespace orvelan
