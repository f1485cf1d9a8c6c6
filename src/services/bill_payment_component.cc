#include "services/bill_payment_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = BillPaymentService;
using M = PaymentInfo;
using E = PayeeInfo;
using P = PropertyBuilder<S>;

template <M::Field kField>
PropertyDef<S> PaymentInput(int id, const char* name) {
  return P::Text<&S::PaymentText<kField>, &S::SetPaymentText<kField>>(id, name, "");
}
template <E::Field kField>
PropertyDef<S> PayeeInput(int id, const char* name) {
  return P::Text<&S::PayeeText<kField>, &S::SetPayeeText<kField>>(id, name, "");
}

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Bool<&S::LostSync>(BILLPAYMENT_PROP_LOSTSYNC, "LostSync"),
      PayeeInput<E::kAccount>(BILLPAYMENT_PROP_PAYEEACCOUNT, "PayeeAccount"),
      PayeeInput<E::kAddr1>(BILLPAYMENT_PROP_PAYEEADDR1, "PayeeAddr1"),
      PayeeInput<E::kAddr2>(BILLPAYMENT_PROP_PAYEEADDR2, "PayeeAddr2"),
      PayeeInput<E::kAddr3>(BILLPAYMENT_PROP_PAYEEADDR3, "PayeeAddr3"),
      PayeeInput<E::kCity>(BILLPAYMENT_PROP_PAYEECITY, "PayeeCity"),
      PayeeInput<E::kPayeeId>(BILLPAYMENT_PROP_PAYEEID, "PayeeId"),
      PayeeInput<E::kListId>(BILLPAYMENT_PROP_PAYEELISTID, "PayeeListId"),
      PayeeInput<E::kName>(BILLPAYMENT_PROP_PAYEENAME, "PayeeName"),
      PayeeInput<E::kPhone>(BILLPAYMENT_PROP_PAYEEPHONE, "PayeePhone"),
      PayeeInput<E::kPostalCode>(BILLPAYMENT_PROP_PAYEEPOSTALCODE, "PayeePostalCode"),
      PayeeInput<E::kState>(BILLPAYMENT_PROP_PAYEESTATE, "PayeeState"),
      P::Text<&S::PayeeText<E::kDaysToPay>>(BILLPAYMENT_PROP_PAYEEDAYSTOPAY, "PayeeDaysToPay"),
      P::Text<&S::PayeeText<E::kIdScope>>(BILLPAYMENT_PROP_PAYEEIDSCOPE, "PayeeIdScope"),
      P::Text<&S::PayeeText<E::kAggregate>, &S::SetPayeeAggregate>(BILLPAYMENT_PROP_PAYEEAGGREGATE, "PayeeAggregate",
                                                                   ""),
      P::Text<&S::PayeeText<E::kCountry>, &S::SetPayeeText<E::kCountry>>(BILLPAYMENT_PROP_PAYEECOUNTRY, "PayeeCountry",
                                                                         "USA"),
      PaymentInput<M::kAmount>(BILLPAYMENT_PROP_PAYMENTAMOUNT, "PaymentAmount"),
      PaymentInput<M::kBillRefInfo>(BILLPAYMENT_PROP_PAYMENTBILLREFINFO, "PaymentBillRefInfo"),
      PaymentInput<M::kDateDue>(BILLPAYMENT_PROP_PAYMENTDATEDUE, "PaymentDateDue"),
      PaymentInput<M::kFromAccountId>(BILLPAYMENT_PROP_PAYMENTFROMACCOUNTID, "PaymentFromAccountId"),
      PaymentInput<M::kFromBankId>(BILLPAYMENT_PROP_PAYMENTFROMBANKID, "PaymentFromBankId"),
      PaymentInput<M::kPaymentId>(BILLPAYMENT_PROP_PAYMENTID, "PaymentId"),
      PaymentInput<M::kMemo>(BILLPAYMENT_PROP_PAYMENTMEMO, "PaymentMemo"),
      PaymentInput<M::kToAccountId>(BILLPAYMENT_PROP_PAYMENTTOACCOUNTID, "PaymentToAccountId"),
      PaymentInput<M::kToBankId>(BILLPAYMENT_PROP_PAYMENTTOBANKID, "PaymentToBankId"),
      P::Text<&S::PaymentText<M::kAggregate>>(BILLPAYMENT_PROP_PAYMENTAGGREGATE, "PaymentAggregate"),
      P::Text<&S::PaymentText<M::kCheckNumber>>(BILLPAYMENT_PROP_PAYMENTCHECKNUMBER, "PaymentCheckNumber"),
      P::Text<&S::PaymentText<M::kCurrency>>(BILLPAYMENT_PROP_PAYMENTCURRENCY, "PaymentCurrency"),
      P::Text<&S::PaymentText<M::kPayeeAccount>>(BILLPAYMENT_PROP_PAYMENTPAYEEACCOUNT, "PaymentPayeeAccount"),
      P::Text<&S::PaymentText<M::kPayeeAggregate>>(BILLPAYMENT_PROP_PAYMENTPAYEEAGGREGATE, "PaymentPayeeAggregate"),
      P::Text<&S::PaymentText<M::kPayeeId>>(BILLPAYMENT_PROP_PAYMENTPAYEEID, "PaymentPayeeId"),
      P::Text<&S::PaymentText<M::kPayeeListId>>(BILLPAYMENT_PROP_PAYMENTPAYEELISTID, "PaymentPayeeListId"),
      P::Text<&S::PaymentText<M::kProcessingStatus>>(BILLPAYMENT_PROP_PAYMENTSTATUS, "PaymentStatus"),
      P::Text<&S::PaymentText<M::kStatus>>(BILLPAYMENT_PROP_PAYMENTTYPE, "PaymentType"),
      P::Text<&S::PaymentDateProcessed>(BILLPAYMENT_PROP_PAYMENTDATEPROCESSED, "PaymentDateProcessed"),
      P::Int<&S::FromAccountType, &S::SetFromAccountType>(BILLPAYMENT_PROP_PAYMENTFROMACCOUNTTYPE,
                                                          "PaymentFromAccountType", true, 0),
      P::Int<&S::ToAccountType, &S::SetToAccountType>(BILLPAYMENT_PROP_PAYMENTTOACCOUNTTYPE, "PaymentToAccountType",
                                                      true, 1),
      P::Int<&S::SyncPayeeCount>(BILLPAYMENT_PROP_SYNCPAYEECOUNT, "SyncPayeeCount"),
      P::IndexedText<&S::SyncPayeeText<E::kAccount>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEACCOUNT,
                                                                          "SyncPayeeAccount"),
      P::IndexedText<&S::SyncPayeeText<E::kAddr1>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEADDR1,
                                                                        "SyncPayeeAddr1"),
      P::IndexedText<&S::SyncPayeeText<E::kAddr2>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEADDR2,
                                                                        "SyncPayeeAddr2"),
      P::IndexedText<&S::SyncPayeeText<E::kAddr3>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEADDR3,
                                                                        "SyncPayeeAddr3"),
      P::IndexedText<&S::SyncPayeeText<E::kAggregate>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEAGGREGATE,
                                                                            "SyncPayeeAggregate"),
      P::IndexedText<&S::SyncPayeeText<E::kCity>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEECITY, "SyncPayeeCity"),
      P::IndexedText<&S::SyncPayeeText<E::kCountry>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEECOUNTRY,
                                                                          "SyncPayeeCountry"),
      P::IndexedText<&S::SyncPayeeText<E::kDaysToPay>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEDAYSTOPAY,
                                                                            "SyncPayeeDaysToPay"),
      P::IndexedText<&S::SyncPayeeText<E::kPayeeId>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEID, "SyncPayeeId"),
      P::IndexedText<&S::SyncPayeeText<E::kIdScope>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEIDSCOPE,
                                                                          "SyncPayeeIdScope"),
      P::IndexedText<&S::SyncPayeeText<E::kListId>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEELISTID,
                                                                         "SyncPayeeListId"),
      P::IndexedText<&S::SyncPayeeText<E::kName>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEENAME, "SyncPayeeName"),
      P::IndexedText<&S::SyncPayeeText<E::kPhone>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEPHONE,
                                                                        "SyncPayeePhone"),
      P::IndexedText<&S::SyncPayeeText<E::kPostalCode>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEEPOSTALCODE,
                                                                             "SyncPayeePostalCode"),
      P::IndexedText<&S::SyncPayeeText<E::kState>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEESTATE,
                                                                        "SyncPayeeState"),
      P::IndexedText<&S::SyncPayeeText<E::kStatus>, &S::CheckPayeeIndex>(BILLPAYMENT_PROP_SYNCPAYEETYPE,
                                                                         "SyncPayeeType"),
      P::Int<&S::SyncPaymentCount>(BILLPAYMENT_PROP_SYNCPAYMENTCOUNT, "SyncPaymentCount"),
      P::IndexedText<&S::SyncPaymentText<M::kAggregate>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTAGGREGATE,
                                                                                "SyncPaymentAggregate"),
      P::IndexedText<&S::SyncPaymentText<M::kAmount>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTAMOUNT,
                                                                             "SyncPaymentAmount"),
      P::IndexedText<&S::SyncPaymentText<M::kBillRefInfo>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTBILLREFINFO, "SyncPaymentBillRefInfo"),
      P::IndexedText<&S::SyncPaymentText<M::kCheckNumber>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTCHECKNUMBER, "SyncPaymentCheckNumber"),
      P::IndexedText<&S::SyncPaymentText<M::kCurrency>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTCURRENCY,
                                                                               "SyncPaymentCurrency"),
      P::IndexedText<&S::SyncPaymentText<M::kDateDue>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTDATEDUE,
                                                                              "SyncPaymentDateDue"),
      P::IndexedText<&S::SyncPaymentText<M::kPaymentId>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTID,
                                                                                "SyncPaymentId"),
      P::IndexedText<&S::SyncPaymentText<M::kMemo>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTMEMO,
                                                                           "SyncPaymentMemo"),
      P::IndexedText<&S::SyncPaymentText<M::kPayeeAccount>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTPAYEEACCOUNT, "SyncPaymentPayeeAccount"),
      P::IndexedText<&S::SyncPaymentText<M::kPayeeAggregate>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTPAYEEAGGREGATE, "SyncPaymentPayeeAggregate"),
      P::IndexedText<&S::SyncPaymentText<M::kPayeeId>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTPAYEEID,
                                                                              "SyncPaymentPayeeId"),
      P::IndexedText<&S::SyncPaymentText<M::kPayeeListId>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTPAYEELISTID, "SyncPaymentPayeeListId"),
      P::IndexedText<&S::SyncPaymentText<M::kProcessingStatus>, &S::CheckPaymentIndex>(
          BILLPAYMENT_PROP_SYNCPAYMENTSTATUS, "SyncPaymentStatus"),
      P::IndexedText<&S::SyncPaymentText<M::kStatus>, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTTYPE,
                                                                             "SyncPaymentType"),
      P::IndexedText<&S::SyncPaymentDateProcessed, &S::CheckPaymentIndex>(BILLPAYMENT_PROP_SYNCPAYMENTDATEPROCESSED,
                                                                          "SyncPaymentDateProcessed"),
  };
  std::vector<PropertyDef<S>> common;
  AppendCommonRows(common);
  AppendNamedRows(table, common,
                  {
                      {BILLPAYMENT_PROP_FIID, "FIId"},
                      {BILLPAYMENT_PROP_FIORGANIZATION, "FIOrganization"},
                      {BILLPAYMENT_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {BILLPAYMENT_PROP_FIREWALLTYPE, "FirewallType"},
                      {BILLPAYMENT_PROP_FIREWALLHOST, "FirewallHost"},
                      {BILLPAYMENT_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {BILLPAYMENT_PROP_FIREWALLPORT, "FirewallPort"},
                      {BILLPAYMENT_PROP_FIREWALLUSER, "FirewallUser"},
                      {BILLPAYMENT_PROP_FIURL, "FIUrl"},
                      {BILLPAYMENT_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {BILLPAYMENT_PROP_OFXAPPID, "OFXAppId"},
                      {BILLPAYMENT_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {BILLPAYMENT_PROP_OFXPASSWORD, "OFXPassword"},
                      {BILLPAYMENT_PROP_OFXREQUEST, "OFXRequest"},
                      {BILLPAYMENT_PROP_OFXRESPONSE, "OFXResponse"},
                      {BILLPAYMENT_PROP_OFXUSER, "OFXUser"},
                      {BILLPAYMENT_PROP_OFXVERSION, "OFXVersion"},
                      {BILLPAYMENT_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {BILLPAYMENT_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {BILLPAYMENT_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {BILLPAYMENT_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {BILLPAYMENT_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {BILLPAYMENT_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {BILLPAYMENT_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {BILLPAYMENT_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

// params: an id; the method's own fields come from the properties.
template <int (S::*kMethod)(const char*)>
int WithId(S& s, MethodCall<S>& call) {
  return (s.*kMethod)(call.Text(0));
}
// params: token; out: the server's new token in the second slot.
template <int (S::*kMethod)(const char*, const char*&)>
int WithToken(S& s, MethodCall<S>& call) {
  const char* answer = "";
  const int rc = (s.*kMethod)(call.Text(0), answer);
  call.SetText(1, answer);
  return rc;
}

std::vector<MethodDef<S>> Methods() {
  return {
      {BILLPAYMENT_METHOD_ADDPAYEE, "AddPayee", [](S& s, MethodCall<S>&) { return s.AddPayee(); }},
      {BILLPAYMENT_METHOD_CANCELPAYMENT, "CancelPayment", WithId<&S::CancelPayment>},
      {BILLPAYMENT_METHOD_CONFIG, "Config", RunConfigMethod<S>},
      {BILLPAYMENT_METHOD_DELETEPAYEE, "DeletePayee", WithId<&S::DeletePayee>},
      {BILLPAYMENT_METHOD_GETPAYMENTSTATUS, "GetPaymentStatus", WithId<&S::GetPaymentStatus>},
      {BILLPAYMENT_METHOD_MODIFYPAYEE, "ModifyPayee", WithId<&S::ModifyPayee>},
      {BILLPAYMENT_METHOD_MODIFYPAYMENT, "ModifyPayment", WithId<&S::ModifyPayment>},
      {BILLPAYMENT_METHOD_PAYBILL, "PayBill", [](S& s, MethodCall<S>&) { return s.PayBill(); }},
      {BILLPAYMENT_METHOD_RESET, "Reset", [](S& s, MethodCall<S>&) { return s.Reset(); }},
      {BILLPAYMENT_METHOD_SYNCHRONIZEPAYEES, "SynchronizePayees", WithToken<&S::SynchronizePayees>},
      {BILLPAYMENT_METHOD_SYNCHRONIZEPAYMENTS, "SynchronizePayments", WithToken<&S::SynchronizePayments>},
  };
}

}  // namespace

const ComponentTables<BillPaymentService>& BillPaymentTables() {
  static const ComponentTables<BillPaymentService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
