#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "ofx/ofx_tag_table.h"
#include "services/money_service_base.h"

// Bill payments (BILLPAYMSGSRQV1): a payment to a payee is scheduled,
// modified, cancelled or asked for its status by the server's payment id;
// the payee list is added to, modified and deleted from by the payee's list
// id; both lists synchronize from a token, raising SyncPayments and
// SyncPayees once per record.
namespace orvelan {

// One payment: the one requested (the response overwrites it) or one record
// of a synchronization. Account types index the first four names of
// MoneyServiceBase.
struct PaymentInfo : TextRecord<PaymentInfo, 19> {
  enum Field : int32_t {
    kFromBankId,
    kFromAccountId,
    kToBankId,
    kToAccountId,
    kAmount,
    kCurrency,
    kMemo,
    kBillRefInfo,
    kCheckNumber,
    kDateProcessed,  // OFX form
    kDateDue,        // the host's form
    kPaymentId,
    kPayeeId,
    kPayeeAccount,
    kPayeeListId,
    kPayeeAggregate,
    kProcessingStatus,  // PMTPRCCODE, or "CANCELLED"
    kStatus,            // "ADDED", "MODIFIED" or "CANCELLED"
    kAggregate,
  };

  PaymentInfo* Clone() const { return new (std::nothrow) PaymentInfo(*this); }
  void Clear() {
    ClearTexts();
    from_account_type = 0;
    to_account_type = 1;
  }

  int32_t from_account_type = 0;
  int32_t to_account_type = 1;
};

struct PayeeInfo : TextRecord<PayeeInfo, 16> {
  enum Field : int32_t {
    kAggregate,
    kName,
    kAddr1,
    kAddr2,
    kAddr3,
    kCity,
    kState,
    kPostalCode,
    kCountry,
    kPhone,
    kAccount,
    kPayeeId,
    kIdScope,
    kDaysToPay,
    kListId,
    kStatus,  // "ADDED", "MODIFIED" or "DELETED"
  };

  PayeeInfo() noexcept { text[kCountry].Assign("US"); }
  PayeeInfo* Clone() const { return new (std::nothrow) PayeeInfo(*this); }
  void Clear() {
    ClearTexts();
    text[kCountry].Assign("US");
  }
};

class BillPaymentService : public MoneyServiceBase {
 public:
  enum Request : int32_t {
    kNone,
    kAddPayment,
    kModifyPayment,
    kCancelPayment,
    kSyncPayments,
    kPaymentStatus,
    kAddPayee,
    kModifyPayee,
    kDeletePayee,
    kSyncPayees,
  };
  static constexpr int kSyncPayeesEvent = 5;
  static constexpr int kSyncPaymentsEvent = 6;

  BillPaymentService() : MoneyServiceBase(1u << kSyncPayments | 1u << kSyncPayees) {}

  int InitDefaults() override;
  // Clears the payment and the payee (country "US"), then the shared reset.
  int Reset() override;
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  int ParseResponse() override;

  // ---- Methods ----

  int PayBill() { return Send(kAddPayment); }
  int ModifyPayment(const char* id);
  int CancelPayment(const char* id);
  int GetPaymentStatus(const char* id);
  int AddPayee() { return Send(kAddPayee); }
  int ModifyPayee(const char* list_id);
  int DeletePayee(const char* list_id);
  int SynchronizePayments(const char* token, const char*& answer) { return Synchronize(kSyncPayments, token, answer); }
  int SynchronizePayees(const char* token, const char*& answer) { return Synchronize(kSyncPayees, token, answer); }

  // ---- The payment and the payee ----

  template <PaymentInfo::Field kField>
  const char* PaymentText() const {
    return payment_.Text(kField);
  }
  template <PaymentInfo::Field kField>
  int SetPaymentText(const char* value) {
    return payment_.text[kField].Assign(value);
  }
  const char* PaymentDateProcessed() {
    return FormatDate(shown_processed_, payment_.text[PaymentInfo::kDateProcessed].View());
  }
  int32_t FromAccountType() const { return payment_.from_account_type; }
  int32_t ToAccountType() const { return payment_.to_account_type; }
  // 0..3; others fail with 202 and keep the value.
  int SetFromAccountType(int32_t type);
  int SetToAccountType(int32_t type);

  template <PayeeInfo::Field kField>
  const char* PayeeText() const {
    return payee_.Text(kField);
  }
  template <PayeeInfo::Field kField>
  int SetPayeeText(const char* value) {
    return payee_.text[kField].Assign(value);
  }
  // Stores the text; a non-empty one is also read (a PAYEETRNRS, PAYEERS,
  // PAYEEMODRS or PAYEE aggregate) into the payee fields. The text stays
  // when it cannot be read; the parse's code is returned.
  int SetPayeeAggregate(const char* value);

  // ---- Synchronized records ----

  // 0, or 432 "Invalid SyncPaymentIndex (out of bounds).".
  int CheckPaymentIndex(int32_t index);
  // 0, or 432 "Invalid SyncPayeeIndex (out of bounds).".
  int CheckPayeeIndex(int32_t index);
  int32_t SyncPaymentCount() const { return payments_.Count(); }
  int32_t SyncPayeeCount() const { return payees_.Count(); }
  template <PaymentInfo::Field kField>
  const char* SyncPaymentText(int32_t index) {
    return payments_.Item(index)->Text(kField);
  }
  const char* SyncPaymentDateProcessed(int32_t index) {
    return FormatDate(shown_sync_processed_, payments_.Item(index)->text[PaymentInfo::kDateProcessed].View());
  }
  template <PayeeInfo::Field kField>
  const char* SyncPayeeText(int32_t index) {
    return payees_.Item(index)->Text(kField);
  }

 protected:
  void SelectTemplate() override;
  int CheckInputs() override;
  void ClearSyncRecords() override {
    payments_.Clear();
    payees_.Clear();
  }

 private:
  int SendWithId(int32_t type, ByteString& field, const char* id);
  int ReadPayment(PaymentInfo& payment);
  int ReadBankAccount(PaymentInfo& payment, bool destination);
  // Cursor on a PAYEETRNRS: kNotARecord when it holds no payee response.
  int ReadPayee(PayeeInfo& payee);
  // Cursor on PAYEERS, PAYEEMODRS, PMTRS or PMTMODRS.
  int ReadPayeeFields(PayeeInfo& payee, bool in_payment);
  // Cursor on a PAYEE.
  int ReadPayeeAddress(PayeeInfo& payee);

  PaymentInfo payment_;
  PayeeInfo payee_;
  ItemList<PaymentInfo> payments_;
  ItemList<PayeeInfo> payees_;
  OFXTagTable payee_document_;  // reads a payee aggregate the host sets
  ByteString shown_processed_, shown_sync_processed_;
};

}  // namespace orvelan
