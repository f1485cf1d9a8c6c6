#include "services/service_steps.h"

#include <cstring>

#include "base/error_codes.h"

namespace orvelan {

int ExpandRequest(OFXClient& client, const RequestForm& form, RequestTemplate& request, ByteString& out, bool wrapped,
                  const std::string_view* arguments, int32_t count) {
  const char version = client.OFXVersion()[0];
  if (version == '1' || version == '2') {
    if (request.Load(version == '1' ? form.sgml : form.xml) != kOk) return client.ReportError(kErrOutOfMemory, nullptr);
  }
  int rc = wrapped ? MessageSetTable::AppendOpen(out, form.message_set) : out.Clear();
  rc |= request.Expand(out, arguments, count, false);
  if (wrapped) rc |= MessageSetTable::AppendClose(out, form.message_set);
  return rc == kOk ? kOk : client.ReportError(kErrOutOfMemory, nullptr);
}

int SetUserDate(OFXClient& client, ByteString& field, const char* text) {
  if (text == nullptr || *text == '\0') return field.Clear();
  ByteString parsed;
  if (int rc = client.ParseUserDate(parsed, text); rc != kOk) return rc;
  field.Swap(parsed);
  return kOk;
}

int SelectOrReport(OFXClient& client, std::string_view path) {
  MarkupDocument& doc = client.Document();
  if (int rc = doc.SelectPath(path); rc != kOk) return client.ReportError(rc, doc.GetLastError());
  return kOk;
}

int ReadFields(OFXClient& client, ByteString* texts, FieldReads reads) {
  return ReadFields(client, client.Document(), texts, reads);
}

int ReadFields(OFXClient& client, MarkupDocument& document, ByteString* texts, FieldReads reads) {
  for (int32_t i = 0; i < reads.count; ++i) {
    const FieldRead& row = reads.rows[i];
    if (int rc = client.ReadField(document, row.name, texts[row.field], row.required); rc != kOk) return rc;
  }
  return kOk;
}

}  // namespace orvelan
