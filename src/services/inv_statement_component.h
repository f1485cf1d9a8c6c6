#pragma once

#include "core/component_object.h"
#include "services/inv_statement_service.h"

// What InvStatement_Create returns: the InvStatement property, method and
// event tables over one InvStatementService.
namespace orvelan {

const ComponentTables<InvStatementService>& InvStatementTables();

class InvStatementComponent : public ComponentObject<InvStatementService> {
 public:
  InvStatementComponent(EventCallback callback, void* user_data)
      : ComponentObject(InvStatementTables(), callback, user_data) {}
};

}  // namespace orvelan
