#pragma once

#include "core/component_object.h"
#include "services/account_service.h"

// What Account_Create returns: the Account property, method and event tables
// over one AccountService.
namespace orvelan {

const ComponentTables<AccountService>& AccountTables();

class AccountComponent : public ComponentObject<AccountService> {
 public:
  AccountComponent(EventCallback callback, void* user_data) : ComponentObject(AccountTables(), callback, user_data) {}
};

}  // namespace orvelan
