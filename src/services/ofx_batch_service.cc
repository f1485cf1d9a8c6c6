#include "services/ofx_batch_service.h"

#include "ofx/message_set_table.h"

namespace orvelan {
namespace {

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

// "[n]": the n-th child, counted from 1.
ByteString ChildStep(int32_t n) {
  ByteString step("[");
  step.AppendInt(n);
  step.AppendChar(']');
  return step;
}

}  // namespace

int OFXBatchService::InitDefaults() {
  const int ok = OFXClient::InitDefaults();
  request_document_.InitDefaults();
  proxy_auto_detect_ = false;
  return ok;
}

int OFXBatchService::CheckItemIndex(int32_t index) {
  if (index >= 0 && index < items_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidBatchIndex);
}

int OFXBatchService::SetItemRequest(int32_t index, const char* text) {
  if (text == nullptr || *text == '\0') return kOk;
  OFXBatchItem* item = items_.Item(index);
  if (item == nullptr) return kErrOutOfMemory;
  if (int rc = item->text[OFXBatchItem::kRequest].Assign(text); rc != kOk) return rc;
  item->text[OFXBatchItem::kKind].Clear();
  item->text[OFXBatchItem::kTRNUID].Clear();

  OFXTagTable& doc = request_document_;
  doc.Reset();
  doc.SetBuildDOM(true);
  doc.SetValidate(true);
  doc.SetKeepOriginalText(true);
  if (int rc = doc.RegisterAggregates(); rc != kOk) return rc;
  // The parser's message stays in the scratch document: the host gets the
  // code with its default text.
  if (int rc = doc.ParseRetained(item->text[OFXBatchItem::kRequest].View()); rc != kOk) return rc;
  if (int rc = doc.SelectPath("/"); rc != kOk) return rc;
  const ByteString root(doc.ElementName());
  for (int32_t kind = 0; kind < MessageSetTable::kCount; ++kind) {
    if (!StartsWith(root.View(), MessageSetTable::RequestKind(kind))) continue;
    int rc = item->text[OFXBatchItem::kKind].Assign(MessageSetTable::RequestKind(kind));
    item->text[OFXBatchItem::kTRNUID].Clear();
    if (doc.SelectPathIfPresent("TRNUID")) {
      rc |= item->text[OFXBatchItem::kTRNUID].Assign(doc.ElementText());
      doc.SelectPath("..");
    }
    if (rc != kOk) return kErrOutOfMemory;
  }
  return kOk;
}

int OFXBatchService::SetItemResponse(int32_t index, const char* text) {
  OFXBatchItem* item = items_.Item(index);
  return item == nullptr ? kErrOutOfMemory : item->text[OFXBatchItem::kResponse].Assign(text);
}

int OFXBatchService::BuildMessageSets(ByteString& out, bool) {
  // STMT, INTRA and INTER share the BANK wrapper but each gets its own, in
  // table order.
  for (int32_t kind = 0; kind < MessageSetTable::kCount; ++kind) {
    const char* name = MessageSetTable::RequestKind(kind);
    bool present = false;
    for (int32_t i = 0; i < items_.Count() && !present; ++i) {
      const OFXBatchItem* item = items_.Item(i);
      if (item == nullptr) return ReportError(kErrOutOfMemory, nullptr);
      present = item->text[OFXBatchItem::kKind].Equals(name);
    }
    if (!present) continue;
    int rc = MessageSetTable::AppendOpen(out, kind);
    for (int32_t i = 0; i < items_.Count(); ++i) {
      const OFXBatchItem* item = items_.Item(i);
      if (item == nullptr) return ReportError(kErrOutOfMemory, nullptr);
      // Even an item of no kind, which is not sent, must carry a TRNUID.
      if (item->text[OFXBatchItem::kTRNUID].IsEmpty()) return ReportError(kErrMissingField, kTextMissingBatchTRNUID);
      if (item->text[OFXBatchItem::kKind].Equals(name)) rc |= out.Append(item->text[OFXBatchItem::kRequest]);
    }
    rc |= MessageSetTable::AppendClose(out, kind);
    if (rc != kOk) return ReportError(kErrOutOfMemory, nullptr);
  }
  return kOk;
}

int OFXBatchService::ParseResponse() {
  MarkupDocument& doc = Document();
  ByteString security_list;
  if (doc.SelectPathIfPresent("SECLISTMSGSRSV1")) {
    if (int rc = security_list.Assign(doc.ElementSubtree()); rc != kOk) return ReportError(rc, nullptr);
    if (int rc = SelectOrReport(*this, ".."); rc != kOk) return rc;
  }
  const int32_t sets = doc.ChildCount();
  for (int32_t i = 1; i <= sets; ++i) {
    if (int rc = SelectOrReport(*this, ChildStep(i).View()); rc != kOk) return rc;
    const ByteString set_name(doc.ElementName());
    // BANK answers three rows of the table; filing a response twice is harmless.
    for (int32_t kind = 0; kind < MessageSetTable::kCount; ++kind) {
      if (!StartsWith(set_name.View(), MessageSetTable::MessageSet(kind))) continue;
      const char* request_kind = MessageSetTable::RequestKind(kind);
      const int32_t transactions = doc.ChildCount();
      for (int32_t j = 1; j <= transactions; ++j) {
        if (int rc = SelectOrReport(*this, ChildStep(j).View()); rc != kOk) return rc;
        const std::string_view name = doc.ElementName();
        if (StartsWith(name, request_kind) || StartsWith(name, "INTRA") || StartsWith(name, "INTER")) {
          if (int rc = TakeTransaction(security_list); rc != kOk) return rc;
        }
        if (int rc = SelectOrReport(*this, ".."); rc != kOk) return rc;
      }
    }
    if (int rc = SelectOrReport(*this, ".."); rc != kOk) return rc;
  }
  return kOk;
}

int OFXBatchService::TakeTransaction(const ByteString& security_list) {
  MarkupDocument& doc = Document();
  const bool investment = StartsWith(doc.ElementName(), "INVSTMT");
  ByteString trnuid, response;
  if (int rc = SelectOrReport(*this, "TRNUID"); rc != kOk) return rc;
  int rc = trnuid.Assign(doc.ElementText());
  if (int moved = SelectOrReport(*this, ".."); moved != kOk) return moved;
  if (investment) rc |= response.Append("<INVSECLIST>");
  rc |= response.Append(doc.ElementSubtree());
  if (investment) rc |= response.Append(security_list) | response.Append("</INVSECLIST>");
  if (rc != kOk) return ReportError(kErrOutOfMemory, nullptr);

  OFXBatchItem* item = nullptr;
  for (int32_t i = 0; i < items_.Count() && item == nullptr; ++i) {
    OFXBatchItem* candidate = items_.Item(i);
    if (candidate == nullptr) return ReportError(kErrOutOfMemory, nullptr);
    if (candidate->text[OFXBatchItem::kTRNUID].Equals(trnuid.Data(), trnuid.Length())) item = candidate;
  }
  if (item == nullptr) item = AppendRecord(items_);
  if (item == nullptr) return ReportError(kErrOutOfMemory, nullptr);
  item->text[OFXBatchItem::kResponse].Swap(response);
  item->text[OFXBatchItem::kTRNUID].Swap(trnuid);
  if (investment && item->text[OFXBatchItem::kSecurityList].Assign(security_list) != kOk) {
    return ReportError(kErrOutOfMemory, nullptr);
  }
  return kOk;
}

}  // namespace orvelan
