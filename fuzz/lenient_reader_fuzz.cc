// Files users download from anywhere go through the lenient reader before the
// strict parser: no input may crash or hang it, its repairs must point into
// the input, and what it registered for one parse must be gone afterwards.
#include <cstddef>
#include <cstdint>
#include <string>

#include "harness.h"
#include "ofx/lenient_reader.h"
#include "ofx/ofx_tag_table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  fuzz::Input in;
  if (!fuzz::Split(data, size, in, false)) return 0;
  static OFXTagTable* doc = [] {
    auto* d = new OFXTagTable;
    d->InitDefaults();
    d->RegisterAggregates();
    return d;
  }();
  static LenientReader reader;
  doc->Reset();
  doc->SetKeepOriginalText((in.options & 1) != 0);
  const std::string before(doc->Parser().ContainerList().View());

  std::string_view text;
  if (reader.Prepare(in.body, doc->Parser(), text) == 0) {
    for (const LenientReader::Repair& r : reader.Repairs()) {
      if (r.offset > in.body.size()) fuzz::Fail();
    }
    doc->ParseRetained(text);
    doc->SelectPath("/");
    doc->ChildCount();
    reader.Forget(doc->Parser());
  }
  if (doc->Parser().ContainerList().View() != before) fuzz::Fail();
  return 0;
}
