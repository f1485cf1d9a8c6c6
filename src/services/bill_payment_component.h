#pragma once

#include "core/component_object.h"
#include "services/bill_payment_service.h"

// What BillPayment_Create returns: the BillPayment property, method and
// event tables over one BillPaymentService.
namespace orvelan {

const ComponentTables<BillPaymentService>& BillPaymentTables();

class BillPaymentComponent : public ComponentObject<BillPaymentService> {
 public:
  BillPaymentComponent(EventCallback callback, void* user_data)
      : ComponentObject(BillPaymentTables(), callback, user_data) {}
};

}  // namespace orvelan
