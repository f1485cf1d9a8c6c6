// Every wrapper class of orvelan.hpp, generated from its member table there.
#include "wrappers/wrapper_glue.h"

namespace w = orvelan::wrappers;

#define ORVELAN_DEFINE_MEMBER(C, kind, name, id) ORVELAN_DEFINE_##kind(C, name, id)
#define ORVELAN_DEFINE_GetText(C, name, id) \
  const char* C::Get##name() { return w::Text(C##_Get, component_, id, 0); }
#define ORVELAN_DEFINE_GetTextAt(C, name, id) \
  const char* C::Get##name(int index) { return w::Text(C##_Get, component_, id, index); }
#define ORVELAN_DEFINE_GetInt(C, name, id) \
  int C::Get##name() { return w::Integer(C##_Get, component_, id, 0); }
#define ORVELAN_DEFINE_GetIntAt(C, name, id) \
  int C::Get##name(int index) { return w::Integer(C##_Get, component_, id, index); }
#define ORVELAN_DEFINE_GetBool(C, name, id) \
  bool C::Get##name() { return w::Integer(C##_Get, component_, id, 0) != 0; }
#define ORVELAN_DEFINE_GetBoolAt(C, name, id) \
  bool C::Get##name(int index) { return w::Integer(C##_Get, component_, id, index) != 0; }
#define ORVELAN_DEFINE_SetText(C, name, id) \
  int C::Set##name(const char* value) { return w::SetText(C##_Set, component_, id, value); }
#define ORVELAN_DEFINE_SetTextAt(C, name, id) \
  int C::Set##name(int index, const char* value) { return C##_Set(component_, id, index, value, 0); }
#define ORVELAN_DEFINE_SetInt(C, name, id) \
  int C::Set##name(int value) { return w::SetInteger(C##_Set, component_, id, value); }
#define ORVELAN_DEFINE_Method(C, name, id) \
  int C::name() { return w::Run(C##_Do, component_, id); }
#define ORVELAN_DEFINE_MethodText(C, name, id) \
  int C::name(const char* text) { return w::RunWithText(C##_Do, component_, id, text); }

// The constructor registers the wrapper itself as the callback's user data.
#define ORVELAN_DEFINE_WRAPPER(C, PREFIX)                                                           \
  C::C(const char* text) : component_(C##_Create(&C::C##EventSink, this, const_cast<char*>(text))) {} \
  C::~C() { C##_Destroy(component_); }                                                              \
  int C::FireConnectionStatus(C##ConnectionStatusEventParams*) { return 0; }                        \
  int C::FireError(C##ErrorEventParams*) { return 0; }                                              \
  int C::FireSSLServerAuthentication(C##SSLServerAuthenticationEventParams*) { return 0; }          \
  int C::FireSSLStatus(C##SSLStatusEventParams*) { return 0; }                                      \
  int C::C##EventSinkW(int, int, void**, int*) { return 0; }                                        \
  const char* C::GetLastError() { return C##_GetLastError(component_); }                           \
  const char* C::Config(const char* text) { return w::Config(C##_Do, component_, PREFIX##_METHOD_CONFIG, text); } \
  int C::C##EventSink(void* object, int id, int count, void** params, int* lengths) {               \
    return w::Deliver(*static_cast<C*>(object), &C::C##EventSinkW, id, count, params, lengths);     \
  }                                                                                                 \
  ORVELAN_##PREFIX##_MEMBERS(ORVELAN_DEFINE_MEMBER, C)

// A new wrapper is its member table, records and class in orvelan.hpp, a line
// here, and its class in cmake/orvelan.map; own events also need a
// FireOwnEvent overload in wrapper_glue.h.
ORVELAN_DEFINE_WRAPPER(Account, ACCOUNT)
ORVELAN_DEFINE_WRAPPER(BankStatement, BANKSTATEMENT)
ORVELAN_DEFINE_WRAPPER(BankTransfer, BANKTRANSFER)
ORVELAN_DEFINE_WRAPPER(BillPayment, BILLPAYMENT)
ORVELAN_DEFINE_WRAPPER(CCStatement, CCSTATEMENT)
ORVELAN_DEFINE_WRAPPER(FIProfile, FIPROFILE)
ORVELAN_DEFINE_WRAPPER(InvStatement, INVSTATEMENT)
ORVELAN_DEFINE_WRAPPER(LoanStatement, LOANSTATEMENT)
ORVELAN_DEFINE_WRAPPER(OFXAggregate, OFXAGGREGATE)
ORVELAN_DEFINE_WRAPPER(OFXBatch, OFXBATCH)

int BankTransfer::FireSyncTransfers(BankTransferSyncTransfersEventParams*) { return 0; }
int BillPayment::FireSyncPayees(BillPaymentSyncPayeesEventParams*) { return 0; }
int BillPayment::FireSyncPayments(BillPaymentSyncPaymentsEventParams*) { return 0; }

bool OFXAggregate::PathExists(const char* path) {
  void* params[2] = {const_cast<char*>(path), nullptr};
  int lengths[2] = {0, 0};
  if (OFXAggregate_Do(component_, OFXAGGREGATE_METHOD_PATHEXISTS, 2, params, lengths) != 0) return false;
  return reinterpret_cast<intptr_t>(params[1]) != 0;
}
