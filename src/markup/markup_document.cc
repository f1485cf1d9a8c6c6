#include "markup/markup_document.h"

#include <cstring>

#include "base/error_codes.h"
#include "base/text_util.h"
#include "core/setting_table.h"
#include "markup/markup_errors.h"

namespace orvelan {
namespace {

bool IsNameStartChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':';
}
bool IsNameChar(char c) { return IsNameStartChar(c) || IsDigit(static_cast<unsigned char>(c)) || c == '.' || c == '-'; }

size_t NameLength(std::string_view s) {
  if (s.empty() || !IsNameStartChar(s[0])) return 0;
  size_t n = 1;
  while (n < s.size() && IsNameChar(s[n])) ++n;
  return n;
}

// Decimal digits only, at least one; large values saturate.
bool ParseIndex(std::string_view s, int32_t& value) {
  if (s.empty()) return false;
  int64_t v = 0;
  for (char c : s) {
    if (!IsDigit(static_cast<unsigned char>(c))) return false;
    if (v < 0x7FFFFFFF) v = v * 10 + (c - '0');
  }
  value = v > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int32_t>(v);
  return true;
}

}  // namespace

MarkupDocument::MarkupDocument() { parser_.SetListener(this); }

int MarkupDocument::Reset() {
  canonical_.Clear();
  subtree_.Clear();
  contents_.Clear();
  return parser_.Reset();
}

int MarkupDocument::AddSGMLTag(const char* name) {
  return parser_.AddSGMLTag(name == nullptr ? std::string_view() : std::string_view(name));
}

int MarkupDocument::SetExtraTags(const char* names) {
  std::string_view rest = names == nullptr ? std::string_view() : names;
  while (!rest.empty()) {
    const size_t comma = rest.find(',');
    const std::string_view name = rest.substr(0, comma);
    if (name.empty()) break;
    if (int rc = parser_.AddSGMLTag(name); rc != kOk) return rc;
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  return kOk;
}

int MarkupDocument::Parse(const char* text) {
  return Parse(text == nullptr ? std::string_view() : std::string_view(text));
}

int MarkupDocument::Parse(std::string_view bytes) { return ParseText(bytes, false); }

int MarkupDocument::ParseRetained(std::string_view bytes) { return ParseText(bytes, true); }

int MarkupDocument::ParseText(std::string_view bytes, bool retained) {
  // Feed stops at a NUL as it would for a C string.
  const size_t nul = bytes.find('\0');
  if (nul != std::string_view::npos) bytes = bytes.substr(0, nul);
  const int rc = retained ? parser_.FeedRetained(bytes.data(), bytes.size()) : parser_.Feed(bytes.data(), bytes.size());
  if (rc != kOk) ReportError(rc, parser_.ErrorText());
  return rc;
}

int MarkupDocument::SelectPath(std::string_view path) {
  const int rc = Walk(path);
  if (rc != kOk) ReportError(rc, MarkupErrorText(rc));
  return rc;
}

bool MarkupDocument::HasPath(std::string_view path) {
  // Restoring the saved cursor directly (rather than re-walking the saved
  // path) is exact even after "*N" or attribute-filtered steps.
  const uint32_t cursor = Tree().Cursor();
  ByteString saved;
  saved.Swap(canonical_);
  canonical_.Assign(saved);
  const bool found = Walk(path) == kOk;
  Tree().SetCursor(cursor);
  canonical_.Swap(saved);
  return found;
}

bool MarkupDocument::SelectPathIfPresent(std::string_view path) {
  const uint32_t cursor = Tree().Cursor();
  ByteString saved;
  saved.Swap(canonical_);
  canonical_.Assign(saved);
  if (Walk(path) == kOk) return true;
  Tree().SetCursor(cursor);
  canonical_.Swap(saved);
  return false;
}

int MarkupDocument::Walk(std::string_view path) {
  if (path.empty()) return kOk;
  DocumentTree& tree = Tree();
  if (tree.IsEmpty()) return kErrNoTree;
  if (path[0] == '*' && path.size() > 1) {
    int32_t offset;
    if (ParseIndex(path.substr(1), offset)) {
      if (static_cast<uint32_t>(offset) >= tree.Size()) return kOk;
      if (int rc = tree.SelectOffset(static_cast<uint32_t>(offset)); rc != kOk) return rc;
      RebuildPath();
      return kOk;
    }
  }
  if (path[0] != '/') return WalkRelative(path);

  // The path names the top before the first step is checked: a walk that
  // fails there leaves the cursor on the top, and the path must say so.
  canonical_.Assign("/");
  canonical_.Append(tree.QualifiedName(tree.Top()));
  tree.SetCursor(tree.Top());
  std::string_view rest = path.substr(1);
  const std::string_view first = rest.substr(0, rest.find('/'));
  if (!first.empty()) {
    if (NameLength(first) != first.size()) return kErrInvalidPath;
    const uint32_t top = tree.Top();
    if (first != tree.UriName(top) && first != tree.QualifiedName(top) && first != tree.LocalName(top)) {
      return kErrTopMismatch;
    }
    rest.remove_prefix(first.size());
  }
  return WalkRelative(rest);
}

int MarkupDocument::WalkRelative(std::string_view path) {
  DocumentTree& tree = Tree();
  for (;;) {
    while (!path.empty() && path[0] == '/') path.remove_prefix(1);
    if (path.empty()) return kOk;

    if (path.substr(0, 2) == "..") {
      if (path.size() > 2 && path[2] != '/') return kErrInvalidPath;
      if (int rc = tree.SelectParent(); rc != kOk) return rc;
      DropLastStep();
      return path.size() <= 3 ? kOk : Walk(path.substr(3));
    }

    if (path[0] == '[') {
      const size_t close = path.find(']');
      if (close == std::string_view::npos) return kErrInvalidPath;
      const std::string_view inner = path.substr(1, close - 1);
      int32_t index = 0;
      const std::string_view head = inner.substr(0, 6);
      if (head == "last()" || head == "Last()" || head == "LAST()") {
        std::string_view k_text = inner.substr(6);
        int32_t k = 0;
        if (!k_text.empty()) {
          const bool negative = k_text[0] == '-';
          if (k_text[0] == '-' || k_text[0] == '+') k_text.remove_prefix(1);
          if (!ParseIndex(k_text, k)) return kErrInvalidPath;
          if (negative) k = -k;
        }
        if (int rc = tree.LastIndex(k, index); rc != kOk) return rc;
      } else if (!ParseIndex(inner, index)) {
        return kErrInvalidPath;
      }
      if (int rc = tree.SelectChildAt(index); rc != kOk) return rc;
      AppendStep(nullptr, index, true);
      path.remove_prefix(close + 1);
      continue;
    }

    const size_t name_length = NameLength(path);
    if (name_length == 0) return kErrInvalidPath;
    const std::string_view step = path.substr(0, path.find('/'));
    const std::string_view name = step.substr(0, name_length);
    std::string_view filter = step.substr(name_length);
    int32_t index = 1;
    std::string_view attribute;
    const char* value = nullptr;
    if (!filter.empty()) {
      if (filter[0] != '[' || filter.back() != ']' || filter.size() < 3) return kErrInvalidPath;
      filter = filter.substr(1, filter.size() - 2);
      if (filter[0] == '@') {
        filter.remove_prefix(1);
        const size_t equals = filter.find('=');
        attribute = filter.substr(0, equals);
        if (attribute.empty()) return kErrInvalidPath;
        if (equals != std::string_view::npos) {
          std::string_view v = filter.substr(equals + 1);
          if (v.size() >= 2 && (v[0] == '\'' || v[0] == '"') && v.back() == v[0]) v = v.substr(1, v.size() - 2);
          if (attribute_value_.Assign(v.data(), static_cast<int32_t>(v.size())) != kOk) return kErrOutOfMemory;
          value = attribute_value_.Data();
        }
      } else if (!ParseIndex(filter, index)) {
        return kErrInvalidPath;
      }
    }
    if (int rc = tree.SelectChild(name, index, attribute, value); rc != kOk) return rc;
    AppendStep(tree.QualifiedName(tree.Cursor()), index, false);
    path.remove_prefix(step.size());
  }
}

void MarkupDocument::AppendStep(const char* name, int32_t index, bool bracket_only) {
  if (canonical_.Length() != 1) canonical_.AppendChar('/');
  if (!bracket_only) canonical_.Append(name);
  if (bracket_only || index > 1) {
    canonical_.AppendChar('[');
    canonical_.AppendInt(index);
    canonical_.AppendChar(']');
  }
}

void MarkupDocument::DropLastStep() {
  int32_t n = canonical_.Length();
  while (n > 0 && canonical_.Data()[n - 1] != '/') --n;
  if (n > 1) --n;
  canonical_.SetLength(n);
}

// The path of an element reached by offset: names from the top down, each
// with its position among same-named siblings when above 1.
void MarkupDocument::RebuildPath() {
  DocumentTree& tree = Tree();
  uint32_t chain[DocumentTree::kMaxDepth + 1];
  int32_t depth = 0;
  for (uint32_t e = tree.Cursor(); e != 0 && depth <= DocumentTree::kMaxDepth; e = tree.Parent(e)) chain[depth++] = e;
  canonical_.Assign("/");
  canonical_.Append(tree.QualifiedName(chain[depth - 1]));
  for (int32_t level = depth - 2; level >= 0; --level) {
    const uint32_t parent = chain[level + 1];
    const std::string_view name = tree.LocalName(chain[level]);
    int32_t index = 0;
    for (int32_t i = 1; i <= tree.ChildCount(parent); ++i) {
      const uint32_t sibling = tree.ChildAt(parent, i);
      if (sibling == 0) break;
      if (name == tree.LocalName(sibling)) ++index;
      if (sibling == chain[level]) break;
    }
    canonical_.AppendChar('/');
    canonical_.Append(tree.QualifiedName(chain[level]));
    if (index > 1) {
      canonical_.AppendChar('[');
      canonical_.AppendInt(index);
      canonical_.AppendChar(']');
    }
  }
}

const char* MarkupDocument::ElementName() {
  const uint32_t e = parser_.Tree().Cursor();
  return e == 0 ? "" : Tree().QualifiedName(e);
}

const char* MarkupDocument::ElementText() const {
  const uint32_t e = parser_.Tree().Cursor();
  return e == 0 ? "" : parser_.Tree().Text(e);
}

const char* MarkupDocument::CutKeptText(uint32_t begin, uint32_t end, ByteString& out) {
  parser_.CutKeptText(begin, end, out);
  return out.Data();
}

const char* MarkupDocument::ElementSubtree() {
  if (!parser_.KeepOriginalText()) {
    ReportError(kErrNoSubtree, MarkupErrorText(kErrNoSubtree));
    subtree_.Clear();
    return subtree_.Data();
  }
  const uint32_t e = Tree().Cursor();
  if (e == 0) {
    subtree_.Clear();
    return subtree_.Data();
  }
  return CutKeptText(Tree().TagStart(e), Tree().End(e), subtree_);
}

const char* MarkupDocument::ElementContents() {
  const uint32_t e = Tree().Cursor();
  if (e == 0) {
    contents_.Clear();
    return contents_.Data();
  }
  return CutKeptText(Tree().ContentStart(e), Tree().EndTagStart(e), contents_);
}

int32_t MarkupDocument::ChildCount() const {
  const uint32_t e = parser_.Tree().Cursor();
  if (e == 0) return 0;
  const int32_t n = parser_.Tree().ChildCount(e);
  return n < 0 ? 0 : n;
}

const char* MarkupDocument::ElementNamespace() const {
  const uint32_t e = parser_.Tree().Cursor();
  return e == 0 ? "" : parser_.Tree().Uri(e);
}

const char* MarkupDocument::ElementPrefix() const {
  const uint32_t e = parser_.Tree().Cursor();
  return e == 0 ? "" : parser_.Tree().Prefix(e);
}

const char* MarkupDocument::ParentName() const {
  const uint32_t e = parser_.Tree().Cursor();
  const uint32_t parent = e == 0 ? 0 : parser_.Tree().Parent(e);
  return parent == 0 ? "" : parser_.Tree().LocalName(parent);
}

int MarkupDocument::CheckChildIndex(int32_t index) {
  const int32_t count = ChildCount();
  if (count == 0) return ReportError(kErrIndexOutOfRange, MarkupErrorText(kErrNoElements));
  if (index < 0 || index >= count) return ReportError(kErrIndexOutOfRange, MarkupErrorText(kErrInvalidElementIndex));
  return kOk;
}

uint32_t MarkupDocument::ChildElement(int32_t index) {
  const uint32_t e = Tree().Cursor();
  if (e == 0 || index < 0 || index >= ChildCount()) return 0;
  return Tree().ChildAt(e, index + 1);
}

const char* MarkupDocument::ChildName(int32_t index) {
  const uint32_t child = ChildElement(index);
  return child == 0 ? "" : Tree().QualifiedName(child);
}

const char* MarkupDocument::ChildNamespace(int32_t index) {
  const uint32_t child = ChildElement(index);
  return child == 0 ? "" : Tree().Uri(child);
}

const char* MarkupDocument::ChildPrefix(int32_t index) {
  const uint32_t child = ChildElement(index);
  return child == 0 ? "" : Tree().Prefix(child);
}

const char* MarkupDocument::ChildText(int32_t index) {
  const uint32_t child = ChildElement(index);
  return child == 0 ? "" : Tree().Text(child);
}

int32_t MarkupDocument::NamespaceCount() const {
  const uint32_t e = parser_.Tree().Cursor();
  return e == 0 ? 0 : static_cast<int32_t>(parser_.Tree().NamespacesInScope(e));
}

int MarkupDocument::CheckNamespaceIndex(int32_t index) {
  const int32_t count = NamespaceCount();
  if (count == 0) return ReportError(kErrIndexOutOfRange, MarkupErrorText(kErrNoNamespaces));
  if ((index & 0xFFFF) >= count) return ReportError(kErrIndexOutOfRange, MarkupErrorText(kErrInvalidNamespaceIndex));
  return kOk;
}

const char* MarkupDocument::NamespacePrefix(int32_t index) const {
  const uint32_t e = parser_.Tree().Cursor();
  if (e == 0 || (index & 0xFFFF) >= NamespaceCount()) return "";
  const uint32_t p = parser_.Tree().NamespaceInScope(e, index & 0xFFFF);
  return p == 0 ? "" : parser_.Tree().DeclarationPrefix(p);
}

const char* MarkupDocument::NamespaceURI(int32_t index) const {
  const uint32_t e = parser_.Tree().Cursor();
  if (e == 0 || (index & 0xFFFF) >= NamespaceCount()) return "";
  const uint32_t p = parser_.Tree().NamespaceInScope(e, index & 0xFFFF);
  return p == 0 ? "" : parser_.Tree().DeclarationUri(p);
}

namespace {

// The parser's options answer "True" or "False" without touching the error text.
template <MarkupParser::Flag kFlag>
int QueryFlag(MarkupDocument& d, const char*& out) {
  out = d.Parser().HasFlag(kFlag) ? "True" : "False";
  return kOk;
}
template <MarkupParser::Flag kFlag>
int SetFlag(MarkupDocument& d, const ConfigArgument& argument) {
  d.Parser().SetFlag(kFlag, argument.ValueAsBool());
  return kOk;
}
int QueryKeptText(MarkupDocument& d, const char*& out) {
  return d.ReturnConfigValue(out, d.Parser().KeepOriginalText() ? 1 : 0);
}
int SetKeptText(MarkupDocument& d, const ConfigArgument& argument) {
  d.SetKeepOriginalText(argument.ValueAsBool());
  return kOk;
}

}  // namespace

int MarkupDocument::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<MarkupDocument>;
  using A = const ConfigArgument&;
  static constexpr R kSettings[] = {
      {"IgnoreBadAttributePrefixes", QueryFlag<MarkupParser::kIgnoreBadAttributePrefixes>,
       SetFlag<MarkupParser::kIgnoreBadAttributePrefixes>},
      {"IgnoreBadElementPrefixes", QueryFlag<MarkupParser::kIgnoreBadElementPrefixes>,
       SetFlag<MarkupParser::kIgnoreBadElementPrefixes>},
      {"AllowMoreThanOneRoot", QueryFlag<MarkupParser::kAllowMoreThanOneRoot>,
       SetFlag<MarkupParser::kAllowMoreThanOneRoot>},
      {"AllowTextOutsideRoot", QueryFlag<MarkupParser::kAllowTextOutsideRoot>,
       SetFlag<MarkupParser::kAllowTextOutsideRoot>},
      {"KeepOriginalText", QueryKeptText, SetKeptText},
      {"CacheContent", QueryKeptText, SetKeptText},
      {"XSubTree", [](MarkupDocument& d, const char*& out) { return d.ReturnConfigValue(out, d.ElementSubtree()); }},
      {"XContents", [](MarkupDocument& d, const char*& out) { return d.ReturnConfigValue(out, d.ElementContents()); }},
      {"AddSGMLTag", [](MarkupDocument& d, const char*& out) { return d.ReturnConfigValue(out, d.ExtraTags()); },
       [](MarkupDocument& d, A argument) { return d.AddSGMLTag(argument.Value()); }},
      {"HTMLComments",
       [](MarkupDocument& d, const char*& out) { return d.ReturnConfigValue(out, d.parser_.HTMLComments() ? 1 : 0); },
       [](MarkupDocument& d, A argument) {
         d.SetHTMLComments(argument.ValueAsBool());
         return kOk;
       }},
      {"UseEncoding",
       [](MarkupDocument& d, const char*& out) { return d.ReturnConfigValue(out, d.parser_.EncodingName()); },
       [](MarkupDocument& d, A argument) { return d.parser_.SetEncoding(argument.Value()); }},
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return ComponentCore::HandleConfig(argument, out);
}

}  // namespace orvelan
