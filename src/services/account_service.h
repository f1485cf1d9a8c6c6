#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "ofx/ofx_client.h"
#include "ofx/request_template.h"
#include "services/service_steps.h"

// The list of accounts the signed-on user holds at the institution (the
// signup message set's account information). The host sends LastUpdate as
// the date of the list it already has; a successful answer replaces it with
// the server's, so asking again fetches only what changed. No settings of its
// own.
namespace orvelan {

// One ACCTINFO: a bank, card, investment or bill-payment account, read as
// texts; nothing is converted when read.
struct AccountInfo : TextRecord<AccountInfo, 15> {
  enum Field : int8_t {
    kType,  // ACCTTYPE, "CREDITCARD" or INVACCTTYPE
    kAggregate,
    kBankId,
    kBranchId,
    kChecking,
    kDescription,
    kId,
    kTransferDestination,
    kTransferSource,
    kKey,
    kPhone,
    kServiceType,  // "BANKING", "CREDITCARD", "INVESTMENT" or "PAYMENT"
    kStatus,
    kSupportsTxDownload,
    kUSProductType,
  };

  // Reads the record at the cursor's ACCTINFO and leaves the cursor there. An
  // account of a kind the list does not know keeps only its markup,
  // description and phone.
  int Parse(OFXClient& client);
};

class AccountService : public OFXClient {
 public:
  static constexpr char kDefaultLastUpdate[] = "20000101120000.000[+0:GMT]";

  int InitDefaults() override;
  int Reset() override;
  int ClearResponse() override;
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  // Reads ACCTINFOTRNRS, or only checks the status of a file holding an
  // ENROLLTRNRS.
  int ParseResponse() override;

  int GetInfo() { return Exchange(); }

  // The host's date in DateFormat; 676 for a text the format cannot read.
  const char* LastUpdate() { return FormatDate(shown_last_update_, last_update_.View()); }
  int SetLastUpdate(const char* value) { return SetUserDate(*this, last_update_, value); }
  const char* LastUpdateOFX() const { return last_update_.Data(); }

  // 0 when `index` names an account, else 432 "Invalid AccIndex (out of bounds).".
  int CheckAccIndex(int32_t index);
  int32_t AccCount() const { return accounts_.Count(); }
  // REQUIRES: the index passed its check.
  template <AccountInfo::Field kField>
  const char* AccText(int32_t index) {
    return accounts_.Item(index)->Text(kField);
  }
  template <AccountInfo::Field kField>
  bool AccFlag(int32_t index) {
    return accounts_.Item(index)->Flag(kField);
  }
  ItemList<AccountInfo>& Accounts() { return accounts_; }

 private:
  void RestoreDefaults();

  RequestTemplate request_;
  ByteString last_update_;
  ByteString shown_last_update_;
  ItemList<AccountInfo> accounts_;
};

}  // namespace orvelan
