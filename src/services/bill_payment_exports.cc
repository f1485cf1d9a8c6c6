#include "core/exported_functions.h"
#include "services/bill_payment_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(BillPayment, orvelan::BillPaymentComponent)
