#include "markup/document_tree.h"

#include <cstdlib>
#include <cstring>

#include "base/error_codes.h"
#include "markup/block_memory.h"
#include "markup/markup_errors.h"

namespace orvelan {
namespace {

uint32_t RoundUp4(uint32_t n) { return (n + 3u) & ~3u; }

}  // namespace

DocumentTree::DocumentTree() { ResetTree(); }

DocumentTree::~DocumentTree() { FreeBlock(data_, capacity_); }

int DocumentTree::Reserve(uint32_t bytes) {
  if (static_cast<uint64_t>(size_) + bytes <= capacity_) return kOk;
  const uint64_t wanted = static_cast<uint64_t>(size_) + bytes;
  if (wanted > 0xFFFFFFF0u) return kErrOutOfMemory;
  char* block = static_cast<char*>(ResizeBlock(data_, capacity_, static_cast<size_t>(wanted)));
  if (block == nullptr) return kErrOutOfMemory;
  data_ = block;
  capacity_ = static_cast<uint32_t>(wanted);
  return kOk;
}

int DocumentTree::AppendGrowing(char kind, uint32_t payload, uint32_t& record) {
  const uint64_t size = RoundUp4(kHeaderSize + payload);
  const uint64_t wanted = size_ + size;
  if (wanted > 0xFFFFFFF0u) return kErrOutOfMemory;
  if (wanted > capacity_) {
    // Half again: appends stay amortised linear, and growing a large block
    // moves pages rather than bytes.
    uint64_t grown = wanted + wanted / 2;
    if (grown < 4096) grown = 4096;
    if (grown > 0xFFFFFFF0u) grown = 0xFFFFFFF0u;
    char* block = static_cast<char*>(ResizeBlock(data_, capacity_, static_cast<size_t>(grown)));
    if (block == nullptr) return kErrOutOfMemory;
    data_ = block;
    capacity_ = static_cast<uint32_t>(grown);
  }
  record = size_;
  // Callers write every field; the last word holds the final NUL and the padding.
  const char head[4] = {kind, 0, 0, 0};
  std::memcpy(data_ + record, head, sizeof head);
  SetField(record, 4, static_cast<uint32_t>(size));
  std::memset(data_ + record + size - 4, 0, 4);
  size_ = static_cast<uint32_t>(wanted);
  return kOk;
}

int DocumentTree::ResetTree() {
  size_ = 0;
  cursor_ = 0;
  top_ = 0;
  tag_mark_ = 0;
  top_count_ = 0;
  for (WalkMemo& m : memo_) m.parent = 0;
  child_list_.parent = 0;
  uint32_t record;
  if (int rc = Append(kNamespaceRecord, 8, record); rc != kOk) return rc;  // end of scope, two empty names
  SetField(record, 8, 0);
  return kOk;
}

int DocumentTree::AddNamespace(std::string_view prefix, std::string_view uri, int32_t entry) {
  uint32_t record;
  const uint32_t payload = static_cast<uint32_t>(4 + prefix.size() + 1 + uri.size() + 1);
  if (int rc = Append(kNamespaceRecord, payload, record); rc != kOk) return rc;
  SetField(record, 8, 0);
  std::memcpy(data_ + record + 12, prefix.data(), prefix.size());
  data_[record + 12 + prefix.size()] = '\0';
  std::memcpy(data_ + record + 13 + prefix.size(), uri.data(), uri.size());
  if (entry > 0 && entry <= kMaxDepth) namespace_offsets_[entry - 1] = record;
  return kOk;
}


int DocumentTree::AddAttribute(std::string_view local_name, std::string_view value, int32_t entry) {
  uint32_t record;
  const uint32_t payload = static_cast<uint32_t>(4 + local_name.size() + 1 + value.size() + 1);
  if (int rc = Append(kAttributeRecord, payload, record); rc != kOk) return rc;
  SetField(record, 8, entry > 0 ? namespace_offsets_[entry - 1] : 0);
  std::memcpy(data_ + record + 12, local_name.data(), local_name.size());
  data_[record + 12 + local_name.size()] = '\0';
  std::memcpy(data_ + record + 13 + local_name.size(), value.data(), value.size());
  return kOk;
}

void DocumentTree::CloseNamespace(int32_t entry) {
  if (entry > 0 && entry <= kMaxDepth) SetField(namespace_offsets_[entry - 1], 8, size_);
}

const char* DocumentTree::Uri(uint32_t e) const { return DeclarationUri(Field(e, 20)); }

const char* DocumentTree::DeclarationUri(uint32_t p) const {
  const char* prefix = data_ + p + 12;
  return prefix + std::strlen(prefix) + 1;
}

const char* DocumentTree::Text(uint32_t e) const {
  const uint32_t t = Field(e, 36);
  return t == 0 ? "" : data_ + t + 8;
}

const char* DocumentTree::QualifiedName(uint32_t e) {
  const char* prefix = Prefix(e);
  if (*prefix == '\0') return LocalName(e);
  name_scratch_.Assign(prefix);
  name_scratch_.AppendChar(':');
  name_scratch_.Append(LocalName(e));
  return name_scratch_.Data();
}

const char* DocumentTree::UriName(uint32_t e) {
  const char* uri = Uri(e);
  if (*uri == '\0') return LocalName(e);
  uri_name_scratch_.Assign(uri);
  uri_name_scratch_.Append(LocalName(e));
  return uri_name_scratch_.Data();
}

uint32_t DocumentTree::SkipDeclarations(uint32_t r) const {
  while (r < size_ && Kind(r) == kNamespaceRecord) r += RecordSize(r);
  return r;
}

uint32_t DocumentTree::FirstChild(uint32_t e) const {
  if (ChildCount(e) <= 0) return 0;
  uint32_t r = e;
  for (uint32_t i = 0, n = 1 + Field(e, 32); i < n && r < size_; ++i) r += RecordSize(r);
  r = SkipDeclarations(r);
  return (r < size_ && Kind(r) == kElementRecord) ? r : 0;
}

uint32_t DocumentTree::NextSibling(uint32_t e) const {
  const uint32_t end = Field(e, 8);
  if (end == 0) return 0;  // still open: nothing after it has been written
  const uint32_t r = SkipDeclarations(end);
  return (r < size_ && Kind(r) == kElementRecord) ? r : 0;
}

DocumentTree::WalkMemo& DocumentTree::MemoFor(uint32_t parent, std::string_view name) {
  // Only spreads the steps over the slots (a slot is checked in full before
  // use), so the length and the two ends of the name are enough.
  uint32_t h = parent * 2654435761u;
  if (!name.empty()) {
    h ^= static_cast<uint32_t>(name.size()) * 0x9E3779B1u;
    h ^= (static_cast<uint8_t>(name.front()) << 8 | static_cast<uint8_t>(name.back())) * 16777619u;
  }
  return memo_[(h >> 7) % kMemoSlots];
}

uint32_t DocumentTree::ChildAt(uint32_t e, int32_t i) {
  if (i < 1 || i > ChildCount(e)) return 0;
  WalkMemo& memo = MemoFor(e, {});
  uint32_t child;
  int32_t position;
  if (memo.parent == e && memo.name.IsEmpty() && memo.visited <= i) {
    child = memo.child;
    position = memo.visited;
  } else {
    child = FirstChild(e);
    position = 1;
  }
  while (child != 0 && position < i) {
    child = NextSibling(child);
    ++position;
  }
  if (child != 0 && i > 1) {
    memo.parent = e;
    memo.child = child;
    memo.visited = i;
    memo.matched = i;
    memo.name.SetLength(0);
  }
  return child;
}

uint32_t DocumentTree::NamespaceInScope(uint32_t e, int32_t i) const {
  if (i < 0) return 0;
  uint32_t chain[kMaxDepth + 1];
  int32_t depth = 0;
  for (uint32_t a = e; a != 0 && depth <= kMaxDepth; a = Parent(a)) chain[depth++] = a;
  while (depth > 0) {
    const uint32_t a = chain[--depth];
    for (uint32_t r = Field(a, 28); r < a; r += RecordSize(r)) {
      if (Kind(r) == kNamespaceRecord && i-- == 0) return r;
    }
  }
  return 0;
}

bool DocumentTree::IsElementStart(uint32_t n) const {
  uint32_t r = 0;
  while (r < n && r < size_) r += RecordSize(r);
  return r == n && r < size_ && Kind(r) == kElementRecord;
}

int DocumentTree::SelectOffset(uint32_t n) {
  if (n == 0) {
    if (top_ == 0) return kErrInvalidPath;
    cursor_ = top_;
    return kOk;
  }
  if (n >= size_ || !IsElementStart(n)) return kErrInvalidPath;
  cursor_ = n;
  return kOk;
}

int DocumentTree::SelectChildAt(int32_t i) {
  const uint32_t e = cursor_ != 0 ? cursor_ : top_;
  if (e == 0) return kErrInvalidPath;
  const uint32_t child = ChildAt(e, i);
  if (child == 0) return kErrInvalidPath;
  cursor_ = child;
  return kOk;
}

int DocumentTree::LastIndex(int32_t k, int32_t& index) const {
  if (k > 0) return kErrInvalidPath;
  const uint32_t e = cursor_ != 0 ? cursor_ : top_;
  const int32_t count = e == 0 ? 0 : ChildCount(e);
  index = (count < 0 ? 0 : count) + k;
  return kOk;
}

int DocumentTree::SelectParent() {
  if (cursor_ == 0) return kErrNoSuchChild;
  const uint32_t parent = Parent(cursor_);
  if (parent == 0) return kErrNoSuchChild;
  cursor_ = parent;
  return kOk;
}

// Counts one match for a prefixed child whose qualified name is the step, and
// one for a child whose local name is; true when the count reaches `index`.
bool DocumentTree::NameMatches(uint32_t child, std::string_view name, int32_t& count, int32_t index) {
  if (*Prefix(child) != '\0' && name == QualifiedName(child) && ++count == index) return true;
  return name == LocalName(child) && ++count == index;
}

const DocumentTree::ChildList& DocumentTree::ListChildren(uint32_t e) {
  ChildList& list = child_list_;
  const int32_t count = ChildCount(e);
  if (list.parent == e && list.count == count) return list;
  list.parent = e;
  list.count = count;
  list.size = 0;
  list.listed = count <= static_cast<int32_t>(ChildList::kMax);
  if (!list.listed) return list;
  uint32_t child = FirstChild(e);
  for (int32_t visited = 0; child != 0 && visited < count; child = NextSibling(child), ++visited) {
    if (Field(child, 20) != 0) {
      list.listed = false;
      return list;
    }
    list.child[list.size] = child;
    list.length[list.size] = static_cast<uint32_t>(std::strlen(LocalName(child)));
    ++list.size;
  }
  return list;
}

int DocumentTree::SelectChild(std::string_view name, int32_t index, std::string_view attribute, const char* value) {
  const uint32_t e = cursor_ != 0 ? cursor_ : top_;
  if (e == 0) return kErrNoSuchChild;
  const int32_t limit = ChildCount(e);
  const bool filtered = !attribute.empty();
  if (!filtered && index == 1) {
    // Without namespaces only the local name can match: the first child so named.
    if (const ChildList& list = ListChildren(e); list.listed) {
      for (uint32_t i = 0; i < list.size; ++i) {
        if (list.length[i] == name.size() && std::memcmp(LocalName(list.child[i]), name.data(), name.size()) == 0) {
          cursor_ = list.child[i];
          return kOk;
        }
      }
      return kErrNoSuchChild;
    }
  }

  WalkMemo& memo = MemoFor(e, name);
  uint32_t child = FirstChild(e);
  int32_t visited = 0;
  int32_t count = 0;
  if (!filtered && memo.parent == e && memo.name.View() == name && memo.matched <= index) {
    if (memo.matched == index) {
      cursor_ = memo.child;
      return kOk;
    }
    child = NextSibling(memo.child);
    visited = memo.visited;
    count = memo.matched;
  }
  // A later step to a far or later sibling of the same name resumes here.
  const auto found = [&](uint32_t at) {
    if (index > 1 || visited > 8) {
      memo.parent = e;
      memo.child = at;
      memo.visited = visited;
      memo.matched = count;
      memo.name.Assign(name);
    }
    cursor_ = at;
    return kOk;
  };
  for (; child != 0 && visited < limit; child = NextSibling(child)) {
    ++visited;
    // Most elements carry no namespace (their P record is the empty one at
    // offset 0): only the local name can match, and it is compared in place.
    if (!filtered && Field(child, 20) == 0) {
      const char* local = LocalName(child);
      size_t i = 0;
      while (i < name.size() && local[i] != '\0' && local[i] == name[i]) ++i;
      if (i != name.size() || local[i] != '\0' || ++count != index) continue;
      return found(child);
    }
    if (*Uri(child) != '\0' && name == UriName(child)) {
      cursor_ = child;
      return kOk;
    }
    if (!filtered) {
      if (NameMatches(child, name, count, index)) return found(child);
      continue;
    }
    if (name != LocalName(child) && name != QualifiedName(child)) continue;
    uint32_t a = child + RecordSize(child);
    for (uint32_t n = Field(child, 32); n > 0; --n, a += RecordSize(a)) {
      const char* local = data_ + a + 12;
      if (attribute != local) continue;
      if (value == nullptr || std::strcmp(local + std::strlen(local) + 1, value) == 0) {
        cursor_ = child;
        return kOk;
      }
    }
  }
  return kErrNoSuchChild;
}

}  // namespace orvelan
