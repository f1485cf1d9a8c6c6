#include "core/exported_functions.h"
#include "services/cc_statement_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(CCStatement, orvelan::CCStatementComponent)
