#pragma once

#include "core/component_object.h"
#include "services/loan_statement_service.h"

// What LoanStatement_Create returns: the LoanStatement property, method and
// event tables over one LoanStatementService.
namespace orvelan {

const ComponentTables<LoanStatementService>& LoanStatementTables();

class LoanStatementComponent : public ComponentObject<LoanStatementService> {
 public:
  LoanStatementComponent(EventCallback callback, void* user_data)
      : ComponentObject(LoanStatementTables(), callback, user_data) {}
};

}  // namespace orvelan
