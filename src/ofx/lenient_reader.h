#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_string.h"
#include "markup/markup_parser.h"

// Readies an OFX document that breaks the strict rules, as many banks write
// them, for the strict parser, which stays untouched:
//   - an aggregate the parser's list lacks (vendor, 401(k), newer OFX) is
//     learned from the document: a name that has an end tag and whose start
//     tag is followed by another start tag is registered for this parse;
//   - an end tag that closes an outer aggregate while inner ones are open
//     gets the inner end tags written in before it;
//   - whatever precedes <OFX> is left out of the parse, and what breaks the
//     rules there (a header written as tags or inside a comment, an XML
//     declaration before an SGML header, white space or text before the
//     header) is listed.
// Every repair is listed with its code (kRepair... in base/error_codes.h), a
// text and its byte offset in the input.
//
//   LenientReader reader;
//   std::string_view text;
//   if (int rc = reader.Prepare(input, parser, text); rc != 0) ...;
//   for (const LenientReader::Repair& r : reader.Repairs()) report(r.code, r.text);
//   parser.FeedRetained(text.data(), text.size());
//   reader.Forget(parser);
//
// The text to parse is `input` itself or a repaired copy the reader owns; it
// stays valid until the next Prepare or the reader's end. Not thread-safe.
namespace orvelan {

class LenientReader {
 public:
  struct Repair {
    int code;
    uint32_t offset;  // in the input
    std::string text;
  };

  LenientReader() = default;
  LenientReader(const LenientReader&) = delete;
  LenientReader& operator=(const LenientReader&) = delete;

  // Lists the repairs `input` needs, registers the aggregates it learns with
  // `parser`, and sets `text` to what the parser should read. 0, or 200 with
  // nothing left registered.
  int Prepare(std::string_view input, MarkupParser& parser, std::string_view& text);
  // Unregisters what the last Prepare registered; the list is as before.
  void Forget(MarkupParser& parser);
  const std::vector<Repair>& Repairs() const { return repairs_; }

 private:
  // Where <OFX> begins (0 when it cannot be found), listing what the
  // prologue before it needed.
  size_t SkipPrologue(std::string_view input);
  int LearnAggregates(std::string_view body, uint32_t base, MarkupParser& parser);
  int CloseOpenAggregates(std::string_view body, uint32_t base, const MarkupParser& parser, std::string_view& text);
  void Add(int code, size_t offset, std::string text);

  std::vector<Repair> repairs_;
  ByteString repaired_;
  int32_t list_length_ = -1;  // the container list's length before Prepare
};

}  // namespace orvelan
