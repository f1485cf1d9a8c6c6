#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "markup/markup_document.h"

// Where a statement record's texts live: its element in the parsed response.
// A record reads its fields from there when they are asked for, so a
// statement of 100k transactions costs no copy of their texts; the records of
// large lists keep only the element's offset and make a source when they read.
// The owner empties its records before the document is reset (ClearResponse
// runs first on every path that parses), so a source never outlives its
// element.
namespace orvelan {

class RecordSource {
 public:
  RecordSource() = default;
  // Element 0 stands for a record that was never read.
  RecordSource(MarkupDocument& document, uint32_t element) : document_(&document), element_(element) {}
  void Attach(MarkupDocument* document, uint32_t element) {
    document_ = document;
    element_ = element;
  }
  bool IsAttached() const { return document_ != nullptr && element_ != 0; }

  // The text of the first element at `path` ("NAME" or "NAME/NAME/..."),
  // searched from the record's element as a relative path step would be; ""
  // when absent. The document's cursor is left where it was.
  const char* Text(std::string_view path) const;
  bool Has(std::string_view path) const { return Find(path) != 0; }
  // The markup of the record's element as read; "" when detached.
  const char* Markup(ByteString& out) const;

 private:
  uint32_t Find(std::string_view path) const;

  MarkupDocument* document_ = nullptr;
  uint32_t element_ = 0;
};

}  // namespace orvelan
