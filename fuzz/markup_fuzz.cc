// Responses and data files come from servers and hosts we do not control:
// no input may crash the parser, hang it, or make a path query read outside
// the tree. Layout of an input: one option byte, the document up to the
// first NUL, then path strings separated by line feeds.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "ofx/ofx_tag_table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  if (size == 0) return 0;
  const uint8_t options = data[0];
  const std::string rest(reinterpret_cast<const char*>(data + 1), size - 1);
  const size_t nul = rest.find('\0');
  const std::string document = rest.substr(0, nul);
  const std::string paths = nul == std::string::npos ? std::string() : rest.substr(nul + 1);

  // The container list survives Reset, so one document per list keeps
  // registration out of every run.
  static OFXTagTable* documents[4] = {};
  OFXTagTable*& slot = documents[(options >> 2) & 3];
  if (slot == nullptr) {
    slot = new OFXTagTable;
    slot->InitDefaults();
    if ((options & 4) != 0) slot->RegisterAggregates();
    if ((options & 8) != 0) slot->SetExtraTags("A,B,x:C");
  }
  OFXTagTable& doc = *slot;
  doc.Reset();
  doc.SetKeepOriginalText((options & 1) == 0);
  doc.SetHTMLComments((options & 2) != 0);
  doc.Parser().SetFlag(MarkupParser::kIgnoreBadElementPrefixes, (options & 16) != 0);
  doc.Parser().SetFlag(MarkupParser::kAllowTextOutsideRoot, (options & 32) == 0);
  doc.Parse(document.c_str());
  doc.Parser().Finish();

  // Parsed over the caller's text, the kept text must read the same at
  // every position the tree holds.
  static OFXTagTable* retained_documents[4] = {};
  OFXTagTable*& retained_slot = retained_documents[(options >> 2) & 3];
  if (retained_slot == nullptr) {
    retained_slot = new OFXTagTable;
    retained_slot->InitDefaults();
    if ((options & 4) != 0) retained_slot->RegisterAggregates();
    if ((options & 8) != 0) retained_slot->SetExtraTags("A,B,x:C");
  }
  OFXTagTable& retained = *retained_slot;
  retained.Reset();
  retained.SetKeepOriginalText((options & 1) == 0);
  retained.SetHTMLComments((options & 2) != 0);
  retained.Parser().SetFlag(MarkupParser::kIgnoreBadElementPrefixes, (options & 16) != 0);
  retained.Parser().SetFlag(MarkupParser::kAllowTextOutsideRoot, (options & 32) == 0);
  retained.ParseRetained(document);
  if (retained.Parser().KeptLength() != doc.Parser().KeptLength() ||
      retained.Parser().KeptText().View() != doc.Parser().KeptText().View() ||
      retained.Tree().Size() != doc.Tree().Size()) {
    __builtin_trap();
  }
  ByteString want;
  ByteString got;
  // Every short cut near the start, and from each of those to the end and
  // past it: all pairs cost more than the parse itself.
  const uint32_t length = static_cast<uint32_t>(doc.Parser().KeptLength());
  for (uint32_t begin = 0; begin <= length && begin < 64; ++begin) {
    for (const uint32_t end : {begin, begin + 1, begin + 5, begin + 17, length, length + 1}) {
      if (end > length + 1) continue;
      doc.Parser().CutKeptText(begin, end, want);
      retained.Parser().CutKeptText(begin, end, got);
      if (want.View() != got.View()) __builtin_trap();
    }
  }

  const auto read_all = [&doc] {
    doc.ElementName();
    doc.ElementText();
    doc.ElementSubtree();
    doc.ElementContents();
    doc.ElementNamespace();
    doc.ElementPrefix();
    doc.ParentName();
    for (int32_t i = -1; i <= doc.ChildCount() && i < 8; ++i) {
      doc.CheckChildIndex(i);
      doc.ChildName(i);
      doc.ChildText(i);
      doc.ChildNamespace(i);
    }
    for (int32_t i = 0; i <= doc.NamespaceCount() && i < 8; ++i) {
      doc.NamespacePrefix(i);
      doc.NamespaceURI(i);
    }
  };
  for (const char* path : {"/", "STMTTRN[2]", "[last()]", "..", "*16", "*72"}) {
    doc.SelectPath(path);
    read_all();
  }
  std::string_view list = paths;
  for (int steps = 0; !list.empty() && steps < 16; ++steps) {
    const size_t lf = list.find('\n');
    const std::string path(list.substr(0, lf));
    doc.HasPath(path);
    doc.SelectPath(path);
    read_all();
    list = lf == std::string_view::npos ? std::string_view() : list.substr(lf + 1);
  }
  return 0;
}
