#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "markup/markup_document.h"

// The service behind OFXAggregate: one OFX aggregate given by the host, parsed
// into a document whose cursor the host moves with ElementPath. Nothing is
// sent. The aggregate and the cursor live until the next write of Aggregate.
namespace orvelan {

class OFXAggregateService : public MarkupDocument {
 public:
  OFXAggregateService() = default;

  // The document's defaults, then BuildDOM on and no listener.
  int InitDefaults() override;

  const char* Aggregate() const { return aggregate_.Data(); }
  // Resets the document (BuildDOM, Validate, KeepOriginalText on), stores the
  // text and parses it. After a failed parse the document is empty; the
  // parser's code and message are the result.
  int SetAggregate(const char* text);

  const char* ElementPath() const { return CurrentPath(); }
  int SetElementPath(const char* path) { return SelectPath(path == nullptr ? "" : path); }

  // No socket: the component's event-loop switches have nothing to act on.
  void SetExternalEventLoop(bool) {}

 private:
  ByteString aggregate_;
};

}  // namespace orvelan
