#include "core/exported_functions.h"
#include "services/bank_statement_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(BankStatement, orvelan::BankStatementComponent)
