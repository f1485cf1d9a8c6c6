#include "services/ofx_aggregate_service.h"

namespace orvelan {

int OFXAggregateService::InitDefaults() {
  const int rc = MarkupDocument::InitDefaults();
  SetBuildDOM(true);
  // Every listener operation would answer 0; without one the parser takes
  // runs of bytes at once.
  Parser().SetListener(nullptr);
  return rc;
}

int OFXAggregateService::SetAggregate(const char* text) {
  Reset();
  SetBuildDOM(true);
  SetValidate(true);
  SetKeepOriginalText(true);
  if (int rc = aggregate_.Assign(text); rc != 0) return rc;
  // aggregate_ changes only here, after Reset, so the parse can refer to it.
  const int rc = ParseRetained(aggregate_.View());
  if (rc != 0) Tree().ResetTree();
  return rc;
}

}  // namespace orvelan
