#pragma once
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "base/record_list.h"
#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"
#include "ofx/request_template.h"

// The steps every service is made of: its one transaction request from a
// template per dialect, the host's dates, and the response walk (moving the
// cursor or reporting why not, a transaction wrapper's status, a list of
// records read one element at a time, records of plain texts read by a table
// of rows).
//
//   if (int rc = CheckWrapperStatus("ACCTINFOTRNRS"); rc != kOk) return rc;
//   return ReadRecords(*this, "ACCTINFO", accounts_, [this](AccountInfo& a) { return a.Parse(*this); });
namespace orvelan {

// The request texts of a service that sends one transaction aggregate.
struct RequestForm {
  MessageSetTable::Kind message_set;
  const char* sgml;  // for an OFXVersion that begins with "1"
  const char* xml;   // "2"
};

// Loads the template of the current version into `request` (any other version
// keeps the one loaded before) and expands it with `arguments`: appended to
// `out` inside the message-set wrapper, or, without `wrapped`, as all of `out`.
int ExpandRequest(OFXClient& client, const RequestForm& form, RequestTemplate& request, ByteString& out, bool wrapped,
                  const std::string_view* arguments, int32_t count);

// The host's date in DateFormat into `field` as an OFX date; "" empties it. On
// 676 "Cannot parse date." the field keeps its value.
int SetUserDate(OFXClient& client, ByteString& field, const char* text);

// Moves the cursor along `path`; a failure reports the document's error.
int SelectOrReport(OFXClient& client, std::string_view path);

// True for "Y" in either case: how OFX writes its yes/no elements.
inline bool IsYes(const ByteString& text) { return text.EqualsNoCase("Y"); }

// Appends one record per "name[n + skip]" below the cursor (n = 1, 2, ...)
// until one is missing; an empty name takes every child. `parse(record)` reads a record
// with the cursor on its element and must leave it there.
template <class Record>
Record* AppendRecord(ItemList<Record>& list) {
  return list.SetCount(list.Count() + 1) == kOk ? list.Last() : nullptr;
}
template <class Record>
Record* AppendRecord(RecordList<Record>& list) {
  return list.Append();
}

template <class List, class Parse>
int ReadRecords(OFXClient& client, std::string_view name, List& list, Parse parse, int32_t skip = 0) {
  ByteString step;
  for (int32_t n = 1;; ++n) {
    step.Assign(name);
    step.AppendChar('[');
    step.AppendInt(n + skip);
    step.AppendChar(']');
    if (!client.Document().SelectPathIfPresent(step.View())) return kOk;
    auto* record = AppendRecord(list);
    if (record == nullptr) return client.ReportError(kErrOutOfMemory, nullptr);
    if (int rc = parse(*record); rc != kOk) return rc;
    if (int rc = SelectOrReport(client, ".."); rc != kOk) return rc;
  }
}

// One child element read into a text field of a record.
struct FieldRead {
  int8_t field;
  const char* name;
  bool required;  // a missing one fails with ReadField's 202
};

struct FieldReads {
  template <size_t N>
  constexpr FieldReads(const FieldRead (&table)[N]) : rows(table), count(static_cast<int32_t>(N)) {}  // NOLINT
  const FieldRead* rows;
  int32_t count;
};

// Reads each row's child of the cursor's element into texts[row.field], in
// table order, so the first missing required one names the failure.
int ReadFields(OFXClient& client, ByteString* texts, FieldReads reads);
// The same below the cursor of `document`, which need not be the client's.
int ReadFields(OFXClient& client, MarkupDocument& document, ByteString* texts, FieldReads reads);

// A record that is nothing but texts, indexed by the record's own Field enum.
template <class Derived, int32_t kCount>
struct TextRecord {
  static constexpr int32_t kFieldCount = kCount;
  ByteString text[kCount];

  const char* Text(int32_t field) const { return text[field].Data(); }
  bool Flag(int32_t field) const { return IsYes(text[field]); }
  void ClearTexts() {
    for (ByteString& t : text) t.Clear();
  }

  // A heap copy for ItemList; null when memory runs out.
  Derived* Clone() const {
    auto* copy = new (std::nothrow) Derived;
    if (copy == nullptr) return nullptr;
    for (int32_t i = 0; i < kCount; ++i) {
      if (copy->text[i].Assign(text[i]) != kOk) {
        delete copy;
        return nullptr;
      }
    }
    return copy;
  }
};

}  // namespace orvelan
