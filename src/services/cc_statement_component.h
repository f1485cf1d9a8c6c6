#pragma once

#include "core/component_object.h"
#include "services/cc_statement_service.h"

// What CCStatement_Create returns: the CCStatement property, method and
// event tables over one CCStatementService.
namespace orvelan {

const ComponentTables<CCStatementService>& CCStatementTables();

class CCStatementComponent : public ComponentObject<CCStatementService> {
 public:
  CCStatementComponent(EventCallback callback, void* user_data)
      : ComponentObject(CCStatementTables(), callback, user_data) {}
};

}  // namespace orvelan
