#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "services/money_service_base.h"

// Transfers between two accounts: intrabank (INTRARQ in BANKMSGSRQV1) while
// the destination bank is empty or the origin's, interbank (INTERRQ in
// INTERXFERMSGSRQV1) otherwise. A transfer is added, modified or cancelled
// by the server's id (SRVRTID); a synchronization lists every change since a
// token and raises SyncTransfers once per record.
namespace orvelan {

// One transfer: the one being requested (the response overwrites it) or one
// record of a synchronization. Account types index the names of
// MoneyServiceBase; 4 selects the credit-card aggregates.
struct TransferInfo : TextRecord<TransferInfo, 18> {
  enum Field : int32_t {
    // Origin and destination in the same order, so one offset picks either.
    kFromBankId,
    kFromBranchId,
    kFromAccountId,
    kFromAccountKey,
    kToBankId,
    kToBranchId,
    kToAccountId,
    kToAccountKey,
    kAmount,
    kDateDue,     // the host's form
    kDatePosted,  // OFX forms from here
    kDateProjected,
    kDateProcessed,
    kAggregate,
    kCurrency,
    kTransferId,
    kProcessingStatus,  // XFERPRCCODE, or "CANCELLED"
    kStatus,            // "ADDED", "MODIFIED" or "CANCELLED"
  };
  static constexpr int32_t kDestination = kToBankId - kFromBankId;

  TransferInfo* Clone() const { return new (std::nothrow) TransferInfo(*this); }

  int32_t from_account_type = 0;
  int32_t to_account_type = 1;
};

class BankTransferService : public MoneyServiceBase {
 public:
  enum Request : int32_t { kNone, kAdd, kModify, kCancel, kSynchronize };
  static constexpr int kSyncTransfersEvent = 5;

  BankTransferService() : MoneyServiceBase(1u << kSynchronize) {}

  int InitDefaults() override;
  // Adds "BatchTransferType".
  int HandleConfig(ConfigArgument& argument, const char*& out) override;
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  int ParseResponse() override;

  // ---- Methods ----

  int TransferFunds() { return Send(kAdd); }
  // TransferId becomes `id` first.
  int ModifyTransfer(const char* id) { return SendFor(kModify, id); }
  int CancelTransfer(const char* id) { return SendFor(kCancel, id); }
  int SynchronizeTransfers(const char* token, const char*& answer) { return Synchronize(kSynchronize, token, answer); }

  // ---- The transfer ----

  template <TransferInfo::Field kField>
  const char* TransferText() const {
    return transfer_.Text(kField);
  }
  template <TransferInfo::Field kField>
  int SetTransferText(const char* value) {
    return transfer_.text[kField].Assign(value);
  }
  template <TransferInfo::Field kField>
  const char* TransferDate() {
    return FormatDate(shown_[kField], transfer_.text[kField].View());
  }
  int32_t FromAccountType() const { return transfer_.from_account_type; }
  int32_t ToAccountType() const { return transfer_.to_account_type; }
  // 0..4; others fail with 202 and keep the value.
  int SetFromAccountType(int32_t type);
  int SetToAccountType(int32_t type);
  TransferInfo& Transfer() { return transfer_; }

  // ---- Synchronized transfers ----

  // 0, or 432 "Invalid SyncTransferIndex (out of bounds).".
  int CheckSyncIndex(int32_t index);
  int32_t SyncTransferCount() const { return synced_.Count(); }
  template <TransferInfo::Field kField>
  const char* SyncText(int32_t index) {
    return synced_.Item(index)->Text(kField);
  }
  template <TransferInfo::Field kField>
  const char* SyncDate(int32_t index) {
    return FormatDate(shown_sync_[kField], synced_.Item(index)->text[kField].View());
  }

 protected:
  void SelectTemplate() override;
  int CheckInputs() override;
  void ClearSyncRecords() override { synced_.Clear(); }

 private:
  // Intrabank unless the destination names another bank. One test for the
  // template and the message set, so the two always agree.
  bool IsIntrabank() const;
  int SendFor(int32_t type, const char* id);
  // ~1~ or ~2~: the origin or destination account aggregate.
  int AccountBlock(ByteString& out, bool destination);
  // Reads the transfer whose transaction response is under the cursor.
  int ReadTransfer(TransferInfo& transfer);
  int ReadAccount(TransferInfo& transfer, bool destination);

  int32_t batch_transfer_type_ = 0;
  TransferInfo transfer_;
  ItemList<TransferInfo> synced_;
  ByteString due_date_;  // OFX form of the transfer's DateDue
  ByteString shown_[TransferInfo::kFieldCount];
  ByteString shown_sync_[TransferInfo::kFieldCount];
};

}  // namespace orvelan
