#include "core/exported_functions.h"
#include "services/account_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(Account, orvelan::AccountComponent)
