#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "ofx/ofx_client.h"
#include "ofx/ofx_tag_table.h"
#include "services/service_steps.h"

// Several transaction requests in one exchange under one sign-on. The host
// hands over complete request aggregates, typically the OFXRequest of other
// components; the batch wraps them by message set, posts them, and gives each
// item back its own transaction response, matched by TRNUID, which the host
// may then hand to that component's OFXResponse:
//
//   batch.SetItemCount(2);
//   batch.SetItemRequest(0, bank.OFXRequest());   // a STMTTRNRQ
//   batch.SetItemRequest(1, card.OFXRequest());   // a CCSTMTTRNRQ
//   if (batch.PostBatch() == 0) bank.SetOFXResponse(batch.ItemResponse(0));
//
// The item list lives until its count is set to 0 or the service goes; Reset
// leaves it. Each PostBatch writes responses into the items it matches and
// appends an item for every response that matches none.
namespace orvelan {

inline constexpr char kTextMissingBatchTRNUID[] =
    "Missing required field: OFXRequest must contain a valid transaction id (TRNUID).";
inline constexpr char kTextInvalidBatchIndex[] = "Invalid OFXBatchItemIndex (out of bounds).";

struct OFXBatchItem : TextRecord<OFXBatchItem, 5> {
  enum Field : int8_t {
    kRequest,  // as the host set it
    kKind,     // the request kind recognised in it, "" when none
    kTRNUID,
    kResponse,      // investment statements: wrapped in INVSECLIST with the securities
    kSecurityList,  // SECLISTMSGSRSV1 of the response, investment statements only
  };
};

class OFXBatchService : public OFXClient {
 public:
  OFXBatchService() = default;

  int InitDefaults() override;
  // The wrapped requests of every recognised item, by message set.
  // `wrapped` is not consulted. 2000 when an item has no TRNUID.
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  // Hands each transaction response to the item of its TRNUID.
  int ParseResponse() override;

  int PostBatch() { return Exchange(); }

  // ---- Items ----

  int32_t ItemCount() const { return items_.Count(); }
  // Grows the list with empty items or cuts it.
  int SetItemCount(int32_t count) { return items_.SetCount(count); }
  // 0 when `index` names an item, else 432 with kTextInvalidBatchIndex.
  int CheckItemIndex(int32_t index);
  // REQUIRES (these four): the index passed its check.
  template <OFXBatchItem::Field kField>
  const char* ItemText(int32_t index) {
    const OFXBatchItem* item = items_.Item(index);
    return item == nullptr ? "" : item->Text(kField);
  }
  // Stores and parses the request; its root's name gives the kind and its
  // TRNUID child the TRNUID. "" does nothing; a parse failure returns the
  // parser's code and leaves the text for the component's default.
  int SetItemRequest(int32_t index, const char* text);
  int SetItemResponse(int32_t index, const char* text);

  // ---- The HTTP proxy, as properties ----

  // Stored: the library does not look for a system proxy.
  bool ProxyAutoDetect() const { return proxy_auto_detect_; }
  int SetProxyAutoDetect(bool on) {
    proxy_auto_detect_ = on;
    return kOk;
  }

 private:
  // Files the transaction response at the cursor under its TRNUID.
  int TakeTransaction(const ByteString& security_list);

  ItemList<OFXBatchItem> items_;
  OFXTagTable request_document_;  // parses one item's request at a time
  bool proxy_auto_detect_ = false;
};

}  // namespace orvelan
