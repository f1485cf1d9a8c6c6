#include "services/closing_info.h"

#include <new>

#include "base/error_codes.h"

namespace orvelan {
namespace {

int Missing(OFXClient& client, const char* name) {
  ByteString unused;
  return client.ReadField(client.Document(), name, unused, true);
}

}  // namespace

ClosingInfo* ClosingInfo::Clone() const {
  auto* copy = new (std::nothrow) ClosingInfo();
  if (copy == nullptr) return nullptr;
  *copy = *this;
  copy->parsed = false;
  return copy;
}

const char* ClosingInfo::Text(MarkupDocument& document, Field field) const {
  if (field < 0 || field >= filled) return "";
  const RecordSource source(document, element);
  // The first path that gives a non-empty text wins, as the parse's
  // "else" reads do.
  auto first = [&source](const char* a, const char* b) {
    const char* text = source.Text(a);
    return *text != '\0' ? text : source.Text(b);
  };
  switch (field) {
    case kFITID: return source.Text("FITID");
    case kDateOpen: return source.Text("DTOPEN");
    case kDateClose: return source.Text("DTCLOSE");
    case kBalanceOpen: return source.Text("BALOPEN");
    case kBalanceClose: return source.Text("BALCLOSE");
    case kDateStart: return source.Text("DTPOSTSTART");
    case kDateEnd: return source.Text("DTPOSTEND");
    case kImageRef: return source.Text("IMAGEDATA/IMAGEREF");
    case kImageRefType: return source.Text("IMAGEDATA/IMAGEREFTYPE");
    case kTotalFees: return first("FINCHG", "TOTALFEES");
    case kTotalCredits: return first("PAYANDCREDIT", "DEPANDCREDIT");
    case kTotalDebits: return first("PURANDADV", "CHKANDDEB");
    case kDateDue: return source.Text("DTPMTDUE");
    // A loan's payment replaces the card's minimum payment.
    case kPaymentDue: return source.Has("LOANPMT") ? source.Text("LOANPMT/PMTAMT") : source.Text("MINPMTDUE");
    case kCreditLimit: return source.Text("CREDITLIMIT");
    case kTotalInterest: return source.Has("LOANINT") ? source.Text("LOANINT/LOANINTYTD") : source.Text("TOTALINT");
    case kFieldCount: break;
  }
  return "";
}

int ClosingInfo::Parse(OFXClient& client) {
  MarkupDocument& document = client.Document();
  parsed = true;
  element = document.Tree().Cursor();
  const RecordSource source(document, element);
  filled = 0;
  if (!source.Has("FITID")) return Missing(client, "FITID");
  // Every other field is optional; the loan checks below come after all of
  // them are read, so a failure there leaves them readable.
  filled = kFieldCount;
  if (source.Has("LOANIRATE") && !source.Has("LOANIRATE/LOANINTRATE")) return Missing(client, "LOANIRATE/LOANINTRATE");
  if (source.Has("LOANPMT")) {
    if (!source.Has("LOANPMT/PMTAMT")) return Missing(client, "LOANPMT/PMTAMT");
    if (!source.Has("DTPMTDUE")) return Missing(client, "DTPMTDUE");
  }
  return kOk;
}

}  // namespace orvelan
