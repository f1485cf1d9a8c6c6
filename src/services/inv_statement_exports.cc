#include "core/exported_functions.h"
#include "services/inv_statement_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(InvStatement, orvelan::InvStatementComponent)
