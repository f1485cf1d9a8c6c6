#include "services/record_source.h"

#include "base/error_codes.h"

namespace orvelan {

uint32_t RecordSource::Find(std::string_view path) const {
  if (!IsAttached()) return 0;
  DocumentTree& tree = document_->Tree();
  const uint32_t saved = tree.Cursor();
  tree.SetCursor(element_);
  uint32_t found = element_;
  while (!path.empty()) {
    const size_t slash = path.find('/');
    const std::string_view step = path.substr(0, slash);
    if (tree.SelectChild(step, 1, {}, nullptr) != kOk) {
      found = 0;
      break;
    }
    found = tree.Cursor();
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  }
  tree.SetCursor(saved);
  return found;
}

const char* RecordSource::Text(std::string_view path) const {
  const uint32_t e = Find(path);
  return e == 0 ? "" : document_->Tree().Text(e);
}

const char* RecordSource::Markup(ByteString& out) const {
  out.Clear();
  if (!IsAttached()) return out.Data();
  DocumentTree& tree = document_->Tree();
  const uint32_t saved = tree.Cursor();
  tree.SetCursor(element_);
  out.Assign(document_->ElementSubtree());
  tree.SetCursor(saved);
  return out.Data();
}

}  // namespace orvelan
