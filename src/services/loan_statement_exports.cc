#include "core/exported_functions.h"
#include "services/loan_statement_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(LoanStatement, orvelan::LoanStatementComponent)
