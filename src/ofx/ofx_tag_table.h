#pragma once

#include "markup/markup_document.h"

// The document in which the OFX engine parses responses and data files: a
// MarkupDocument that knows the OFX aggregates (elements that contain others
// and always carry an end tag), so that OFX 1.x leaves, which have no end tag,
// are closed where the next tag begins. Parser events go nowhere; the tree is
// the only result.
namespace orvelan {

class OFXTagTable : public MarkupDocument {
 public:
  OFXTagTable() = default;

  // The document's defaults, then BuildDOM on and no listener.
  int InitDefaults() override;
  // Registers every aggregate name in dictionary order. Names already listed
  // (a second call, or names added through "ExtraTags") are skipped. 0, or the
  // first failing registration's code, also reported as the error text.
  int RegisterAggregates();
};

}  // namespace orvelan
