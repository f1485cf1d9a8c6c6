// Path queries come from hosts and from the services' own walks over
// untrusted documents. Over a fixed statement, each line of the input is a
// path: HasPath must agree with SelectPath and leave the cursor alone, and
// the canonical path of where a successful query lands must lead back there.
#include <cstddef>
#include <cstdint>
#include <string>

#include "harness.h"
#include "ofx/ofx_tag_table.h"

namespace {

constexpr char kStatement[] =
    "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS></SONRS></SIGNONMSGSRSV1>"
    "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STMTRS><CURDEF>USD<BANKTRANLIST><DTSTART>20240101"
    "<STMTTRN><TRNTYPE>DEBIT<TRNAMT>-1.00<NAME>A &amp; B</STMTTRN>"
    "<STMTTRN><TRNTYPE>CREDIT<TRNAMT>2.00<MEMO>x</STMTTRN>"
    "<STMTTRN><TRNTYPE>CHECK<TRNAMT>3.00</STMTTRN>"
    "</BANKTRANLIST><LEDGERBAL><BALAMT>5<DTASOF>20240102</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  static OFXTagTable* doc = [] {
    auto* d = new OFXTagTable;
    d->InitDefaults();
    d->RegisterAggregates();
    d->ParseRetained(kStatement);
    d->Parser().Finish();
    return d;
  }();
  doc->SelectPath("/");
  std::string_view list(reinterpret_cast<const char*>(data), size);
  for (int steps = 0; !list.empty() && steps < 16; ++steps) {
    const size_t lf = list.find('\n');
    const std::string_view path = list.substr(0, lf);
    list = lf == std::string_view::npos ? std::string_view() : list.substr(lf + 1);

    const std::string before(doc->CurrentPath());
    const bool has = doc->HasPath(path);
    if (before != doc->CurrentPath()) fuzz::Fail();
    if (has != (doc->SelectPath(path) == 0)) fuzz::Fail();
    // A failed walk may leave the cursor part-way with a path that does not
    // name it (a failed absolute first step leaves "/" on the top element),
    // so the next query starts again from the root.
    if (!has) {
      doc->SelectPath("/");
      continue;
    }
    const std::string landed(doc->CurrentPath());
    doc->ElementName();
    doc->ElementText();
    doc->ChildCount();
    doc->SelectPath("/");
    if (doc->SelectPath(landed) != 0 || landed != doc->CurrentPath()) fuzz::Fail();
  }
  return 0;
}
