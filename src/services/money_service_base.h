#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "ofx/ofx_client.h"
#include "ofx/request_template.h"
#include "services/service_steps.h"

// What the services that move money share: a request type chosen by each
// method, a template per request type and OFX dialect, required-field checks
// before anything is sent, the synchronization token with its LOSTSYNC flag,
// and the walk over a synchronization response that reports each record once.
//
//   class BankTransferService : public MoneyServiceBase {
//     BankTransferService() : MoneyServiceBase(1u << kSynchronize) {}
//     int TransferFunds() { return Send(kAdd); }   // SelectTemplate, CheckInputs, Exchange
//   };
//
// Records are plain texts indexed by a field enum (TextRecord), so a
// response is read through tables of element names and the properties are
// one template per kind of field.
namespace orvelan {

class MoneyServiceBase : public OFXClient {
 public:
  // ACCTTYPE codes; a bill payment uses the first four.
  static constexpr int32_t kAccountTypeCount = 5;
  static const char* const kAccountTypeNames[kAccountTypeCount];
  // The index of `text` among the first `count` names (ASCII case ignored);
  // 0 for a text that names none.
  static int32_t AccountTypeIndex(std::string_view text, int32_t count);

  // `sync_types`: bit n set for each request type n that synchronizes; the
  // token survives ClearResponse while one of them is the request type.
  explicit MoneyServiceBase(uint32_t sync_types) : sync_types_(sync_types) {}

  // The engine's defaults, then token "0", no request and no results.
  int InitDefaults() override;
  // Token "0", the results emptied, then the engine's reset. The request type
  // and the inputs stay.
  int Reset() override;
  // Empties LostSync and the synchronized records (so a second
  // synchronization reports exactly the records of its own response), resets
  // the token unless the request type synchronizes, then the engine's clear.
  int ClearResponse() override;

  bool LostSync() const { return lost_sync_; }
  int32_t RequestType() const { return request_type_; }
  const char* Token() const { return token_.Data(); }

 protected:
  // The template of the current request type and OFXVersion; an unknown
  // version or request type 0 keeps the one chosen before.
  virtual void SelectTemplate() = 0;
  // 0, or 2000 and the text of the first missing input of the request type.
  virtual int CheckInputs() = 0;
  // Empties the synchronized lists.
  virtual void ClearSyncRecords() = 0;

  // The methods' common course: request type, template, check, exchange.
  int Send(int32_t type);
  // Send of a synchronizing type from `token`; `answer` is the token the
  // server returned, or "" on failure.
  int Synchronize(int32_t type, const char* token, const char*& answer);

  void SetRequestType(int32_t type) { request_type_ = type; }
  bool IsXml() const { return OFXVersion()[0] == '2'; }
  // Loads `sgml` for OFX 1.x, `xml` for 2.x; nothing for other versions.
  void ChooseTemplate(const char* sgml, const char* xml);
  const RequestTemplate& Template() const { return template_; }
  // An element line of the current dialect (leaf end tag in 2.x only).
  int Element(ByteString& out, std::string_view name, std::string_view value) const {
    return AppendRequestElement(out, IsXml(), name, value);
  }
  // "<REFRESH>Y" for the token REFRESH (any case), else "<TOKEN>" token.
  int TokenLine(ByteString& out) const;
  // 2000 with "Missing required field: " and `detail`.
  int Missing(const char* detail);

  // ---- Response ----

  // Moves the cursor along `path` or reports the document's error (208 for a
  // missing aggregate).
  int Select(std::string_view path);
  // Reads each row's child of the cursor into `record` (absent optional
  // ones are emptied; a missing required one is 202).
  int ReadFields(ByteString* record, FieldReads reads) { return orvelan::ReadFields(*this, Walked(), record, reads); }
  // The first of `names` that is a child of the cursor, or null.
  const char* FirstChild(std::initializer_list<const char*> names);
  // Checks the status of the synchronization response `wrapper` below the
  // cursor, reads TOKEN and LOSTSYNC, and leaves the cursor on it. 1 when the
  // server lost the synchronization: the token is kept, nothing is read.
  int EnterSync(std::string_view wrapper);
  // Appends one record per child `name[n]` of the cursor, read by
  // `read(record)` with the cursor on that child. A read that returns
  // kNotARecord drops its record (a transaction without any response).
  static constexpr int kNotARecord = -2;
  template <class Record, class Read>
  int ReadSyncRecords(std::string_view name, ItemList<Record>& list, Read read);

  ByteString& scratch() { return scratch_; }
  // The document the helpers above walk: the response, unless a service
  // reads a text of the host's with a document of its own meanwhile.
  MarkupDocument& Walked() { return walked_ == nullptr ? Document() : *walked_; }
  void SetWalked(MarkupDocument* document) { walked_ = document; }

 private:
  uint32_t sync_types_;
  int32_t request_type_ = 0;
  bool lost_sync_ = false;
  ByteString token_;
  RequestTemplate template_;
  ByteString scratch_;
  MarkupDocument* walked_ = nullptr;  // not owned; null: Document()
};

template <class Record, class Read>
int MoneyServiceBase::ReadSyncRecords(std::string_view name, ItemList<Record>& list, Read read) {
  MarkupDocument& doc = Walked();
  ByteString step, back;
  for (int32_t n = 1;; ++n) {
    step.Assign(name);
    step.AppendChar('[');
    step.AppendInt(n);
    step.AppendChar(']');
    if (!doc.SelectPathIfPresent(step.View())) return kOk;
    // The reader may stop anywhere inside the record; come back by offset.
    back.Assign("*");
    back.AppendInt(static_cast<int32_t>(doc.Tree().Cursor()));
    const int32_t count = list.Count();
    if (list.SetCount(count + 1) != kOk || list.Last() == nullptr) return ReportError(kErrOutOfMemory, nullptr);
    const int rc = read(*list.Last());
    if (rc == kNotARecord) {
      list.SetCount(count);
    } else if (rc != kOk) {
      return rc;
    }
    if (int moved = Select(back.View()); moved != kOk) return moved;
    if (int moved = Select(".."); moved != kOk) return moved;
  }
}

}  // namespace orvelan
