// Transfers, payments and payees over TLS against the sandbox bank, which
// keeps them: what a first synchronization reports after adds, changes and
// cancels. Later tokens, lost synchronizations and the inter-bank wrapper are
// checked on canned responses in MoneyServiceTest.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "orvelan.h"
#include "services/bank_transfer_component.h"
#include "services/bill_payment_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

template <class C>
struct Host : ComponentHost<C> {
  Host(const TestBankServer& bank, const std::string& user, const char* version, std::vector<int> shown)
      : ComponentHost<C>(nullptr, &EventLog::Callback, &events) {
    events.shown = std::move(shown);
    this->SignOn(bank.TlsUrl(), user, version);
  }
  void SetAll(std::initializer_list<std::pair<int, const char*>> values) {
    for (const auto& [id, value] : values) EXPECT_EQ(this->SetText(id, value), 0) << id;
  }
  EventLog events;
};

using Strings = std::vector<std::string>;

TEST(MoneyBankTest, TransfersAddModifyCancelThenSynchronize) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    // Type, TransferId, Amount, Status.
    Host<BankTransferComponent> t(bank, std::string("saver") + version, version, {1, 2, 3, 6});
    t.SetAll({{BANKTRANSFER_PROP_TRANSFERFROMBANKID, "111"}, {BANKTRANSFER_PROP_TRANSFERFROMACCOUNTID, "A1"},
           {BANKTRANSFER_PROP_TRANSFERTOACCOUNTID, "B2"}, {BANKTRANSFER_PROP_TRANSFERAMOUNT, "25.00"},
           {BANKTRANSFER_PROP_TRANSFERDATEDUE, "12/31/2099 00:00:00"}});
    ASSERT_EQ(t.Run(BANKTRANSFER_METHOD_TRANSFERFUNDS), 0) << t.GetLastError();
    EXPECT_EQ(t.Text(BANKTRANSFER_PROP_TRANSFERID) + t.Text(BANKTRANSFER_PROP_TRANSFERSTATUS), "XF000001WILLPROCESSON");
    t.SetAll({{BANKTRANSFER_PROP_TRANSFERAMOUNT, "10.00"}, {BANKTRANSFER_PROP_TRANSFERDATEDUE, ""}});
    ASSERT_EQ(t.Run(BANKTRANSFER_METHOD_TRANSFERFUNDS), 0) << t.GetLastError();
    EXPECT_EQ(t.Text(BANKTRANSFER_PROP_TRANSFERID) + t.Text(BANKTRANSFER_PROP_TRANSFERSTATUS), "XF000002POSTEDON");
    t.SetAll({{BANKTRANSFER_PROP_TRANSFERAMOUNT, "30.00"}, {BANKTRANSFER_PROP_TRANSFERDATEDUE, "12/30/2099 00:00:00"}});
    ASSERT_EQ(t.Run(BANKTRANSFER_METHOD_MODIFYTRANSFER, "XF000001"), 0) << t.GetLastError();
    EXPECT_EQ(t.Run(BANKTRANSFER_METHOD_CANCELTRANSFER, "XF000002"), 2001);  // posted: 2016
    ASSERT_EQ(t.Run(BANKTRANSFER_METHOD_CANCELTRANSFER, "XF000001"), 0) << t.GetLastError();

    std::string token;
    ASSERT_EQ(t.Run(BANKTRANSFER_METHOD_SYNCHRONIZETRANSFERS, "0", &token), 0) << t.GetLastError();
    EXPECT_EQ(token, "4");
    EXPECT_EQ(t.events.Take(), (Strings{"5|ADDED|XF000001|25.00|WILLPROCESSON", "5|ADDED|XF000002|10.00|POSTEDON",
                                        "5|MODIFIED|XF000001|30.00|WILLPROCESSON", "5|CANCELLED|XF000001||CANCELLED"}));
  }
}

TEST(MoneyBankTest, PayeesAndPaymentsAddModifyCancelThenSynchronize) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    const std::string user = std::string("payer") + version;
    // Payees: Type, ListId, Name. Payments: Type, PaymentId, PayeeListId, Amount, Status.
    Host<BillPaymentComponent> payees(bank, user, version, {1, 4, 6});
    Host<BillPaymentComponent> payments(bank, user, version, {1, 2, 4, 7, 9});
    const auto address = [](Host<BillPaymentComponent>& b, const char* phone) {
      b.SetAll({{BILLPAYMENT_PROP_PAYEEID, ""}, {BILLPAYMENT_PROP_PAYEENAME, "Gas Co"},
             {BILLPAYMENT_PROP_PAYEEADDR1, "1 Main"}, {BILLPAYMENT_PROP_PAYEECITY, "Town"},
             {BILLPAYMENT_PROP_PAYEESTATE, "CA"}, {BILLPAYMENT_PROP_PAYEEPOSTALCODE, "94000"},
             {BILLPAYMENT_PROP_PAYEEPHONE, phone}, {BILLPAYMENT_PROP_PAYEEACCOUNT, "G-1"}});
    };
    address(payees, "555-0001");
    ASSERT_EQ(payees.Run(BILLPAYMENT_METHOD_ADDPAYEE), 0) << payees.GetLastError();
    EXPECT_EQ(payees.Text(BILLPAYMENT_PROP_PAYEELISTID), "PL00001");
    payees.SetAll({{BILLPAYMENT_PROP_PAYEEID, "ELEC01"}, {BILLPAYMENT_PROP_PAYEEACCOUNT, "E-1"}});
    ASSERT_EQ(payees.Run(BILLPAYMENT_METHOD_ADDPAYEE), 0) << payees.GetLastError();
    address(payees, "555-0002");
    ASSERT_EQ(payees.Run(BILLPAYMENT_METHOD_MODIFYPAYEE, "PL00001"), 0) << payees.GetLastError();

    payments.SetAll({{BILLPAYMENT_PROP_PAYMENTFROMBANKID, "111"}, {BILLPAYMENT_PROP_PAYMENTFROMACCOUNTID, "A1"},
                  {BILLPAYMENT_PROP_PAYMENTAMOUNT, "40.00"}, {BILLPAYMENT_PROP_PAYMENTDATEDUE, "12/01/2099 00:00:00"},
                  {BILLPAYMENT_PROP_PAYEELISTID, "PL00002"}, {BILLPAYMENT_PROP_PAYEEID, "ELEC01"},
                  {BILLPAYMENT_PROP_PAYEEACCOUNT, "E-1"}});
    ASSERT_EQ(payments.Run(BILLPAYMENT_METHOD_PAYBILL), 0) << payments.GetLastError();
    EXPECT_EQ(payments.Text(BILLPAYMENT_PROP_PAYMENTID) + " " + payments.Text(BILLPAYMENT_PROP_PAYMENTSTATUS),
              "BP000003 WILLPROCESSON");
    payments.SetAll({{BILLPAYMENT_PROP_PAYMENTAMOUNT, "45.00"}});
    ASSERT_EQ(payments.Run(BILLPAYMENT_METHOD_MODIFYPAYMENT, "BP000003"), 0) << payments.GetLastError();
    address(payments, "555-0002");
    payments.SetAll({{BILLPAYMENT_PROP_PAYEELISTID, "PL00001"}, {BILLPAYMENT_PROP_PAYMENTAMOUNT, "12.00"}});
    ASSERT_EQ(payments.Run(BILLPAYMENT_METHOD_PAYBILL), 0) << payments.GetLastError();
    EXPECT_EQ(payments.Text(BILLPAYMENT_PROP_PAYMENTCHECKNUMBER), "5004");  // a payee of the user's: by check
    ASSERT_EQ(payments.Run(BILLPAYMENT_METHOD_CANCELPAYMENT, "BP000004"), 0) << payments.GetLastError();
    EXPECT_EQ(payments.Run(BILLPAYMENT_METHOD_CANCELPAYMENT, "BP000004"), 2001);  // already cancelled: 2017
    const int inquired = payments.Run(BILLPAYMENT_METHOD_GETPAYMENTSTATUS, "BP000003");
    EXPECT_EQ(std::to_string(inquired) + " " + payments.Text(BILLPAYMENT_PROP_PAYMENTSTATUS), "0 WILLPROCESSON");
    ASSERT_EQ(payees.Run(BILLPAYMENT_METHOD_DELETEPAYEE, "PL00001"), 0) << payees.GetLastError();

    std::string token;
    ASSERT_EQ(payees.Run(BILLPAYMENT_METHOD_SYNCHRONIZEPAYEES, "0", &token), 0) << payees.GetLastError();
    EXPECT_EQ(payees.events.Take(), (Strings{"5|ADDED|PL00001|Gas Co", "5|ADDED|PL00002|Loopback Electric",
                                             "5|MODIFIED|PL00001|Gas Co", "5|DELETED|PL00001|"}));
    ASSERT_EQ(payments.Run(BILLPAYMENT_METHOD_SYNCHRONIZEPAYMENTS, "0", &token), 0);
    EXPECT_EQ(payments.events.Take(),
              (Strings{"6|ADDED|BP000003|PL00002|40.00|WILLPROCESSON",
                       "6|MODIFIED|BP000003|PL00002|45.00|WILLPROCESSON",
                       "6|ADDED|BP000004|PL00001|12.00|WILLPROCESSON", "6|CANCELLED|BP000004|||CANCELLED"}));
    EXPECT_EQ(token, "8");
  }
}

}  // namespace
}  // namespace orvelan
