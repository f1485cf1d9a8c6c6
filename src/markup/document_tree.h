#pragma once
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/byte_string.h"
#include "base/error_codes.h"

// The parsed document: one arena of records linked by 32-bit offsets, written
// once by the parser in document order and read-only afterwards.
//
//   offset 0: the empty namespace declaration (16 bytes)
//   per element: its P records, its E record, its A records, its children,
//                then its T record when it has text
//
// Every record starts with an 8-byte header (kind byte, three zero bytes, the
// record size as a native uint32) and is padded with zeros to 4 bytes. The
// record offsets are observable through the "*N" path form, so the layout
// below is fixed:
//   P: +8 end of scope, +12 prefix NUL, URI NUL
//   E: +8 end offset, +12 child count (int32; -1 for <A/>), +16 parent,
//      +20 own prefix's P record, +24 declarations in scope, +28 declarations
//      start, +32 attribute count, +36 T record, +40 tag start, +44 end,
//      +48 content start, +52 end tag start, +56 local name NUL
//   A: +8 prefix's P record, +12 local name NUL, value NUL
//   T: +8 text NUL
// Positions (+40 to +52) are byte offsets into the parser's kept text.
//
// A cursor (an element offset, 0 for none) is moved by the Select operations,
// which change it only on success. Not thread-safe.
namespace orvelan {

class DocumentTree {
 public:
  static constexpr char kNamespaceRecord = 'P';
  static constexpr char kElementRecord = 'E';
  static constexpr char kAttributeRecord = 'A';
  static constexpr char kTextRecord = 'T';
  static constexpr int32_t kMaxDepth = 256;

  DocumentTree();
  DocumentTree(const DocumentTree&) = delete;
  DocumentTree& operator=(const DocumentTree&) = delete;
  ~DocumentTree();

  // --- Building; called by the parser only. Each returns 0 or 200. ---
  int ResetTree();
  // Room for `bytes` more bytes without moving the arena; a hint only.
  int Reserve(uint32_t bytes);
  void MarkTag() { tag_mark_ = size_; }
  int AddNamespace(std::string_view prefix, std::string_view uri, int32_t entry);
  // REQUIRES: 1 <= depth <= kMaxDepth; entry 0 means no namespace.
  int OpenElement(std::string_view local_name, int32_t depth, int32_t entry, uint32_t namespaces_in_scope,
                  bool is_empty, uint32_t attribute_count, uint32_t tag_start, uint32_t content_start);
  int AddAttribute(std::string_view local_name, std::string_view value, int32_t entry);
  int SetText(int32_t depth, const char* text, int32_t length);
  void CloseElement(int32_t depth, uint32_t end, uint32_t end_tag_start);
  void CloseNamespace(int32_t entry);

  // --- Navigation. ---
  // 0: the cursor moves to the top element; else n must start an E record (207).
  int SelectOffset(uint32_t n);
  // Child i, counted from 1, of the cursor (the top element without one); 207 outside [1, count].
  int SelectChildAt(int32_t i);
  // See the .cc for the matching rules; 208 when no child matches. An empty
  // attribute name means no filter; a null value means any value.
  int SelectChild(std::string_view name, int32_t index, std::string_view attribute, const char* value);
  // 208 at a top element (or without a cursor).
  int SelectParent();
  // Child count + k of the cursor for k <= 0; 207 for k > 0.
  int LastIndex(int32_t k, int32_t& index) const;
  int32_t TopCount() const { return top_count_; }

  uint32_t Cursor() const { return cursor_; }
  void SetCursor(uint32_t offset) { cursor_ = offset; }
  uint32_t Top() const { return top_; }
  bool IsEmpty() const { return top_ == 0; }
  uint32_t Size() const { return size_; }
  const char* Arena() const { return data_; }

  // --- Reading an element record; REQUIRES: `e` starts an E record. ---
  int32_t ChildCount(uint32_t e) const { return static_cast<int32_t>(Field(e, 12)); }
  uint32_t Parent(uint32_t e) const { return Field(e, 16); }
  uint32_t NamespacesInScope(uint32_t e) const { return Field(e, 24); }
  uint32_t TagStart(uint32_t e) const { return Field(e, 40); }
  uint32_t End(uint32_t e) const { return Field(e, 44); }
  uint32_t ContentStart(uint32_t e) const { return Field(e, 48); }
  uint32_t EndTagStart(uint32_t e) const { return Field(e, 52); }
  const char* LocalName(uint32_t e) const { return data_ + e + 56; }
  const char* Prefix(uint32_t e) const { return data_ + Field(e, 20) + 12; }
  const char* Uri(uint32_t e) const;
  // "" when the element has no text.
  const char* Text(uint32_t e) const;
  // Prefix ":" local name, or the local name; valid until the next call.
  const char* QualifiedName(uint32_t e);
  // URI immediately followed by the local name, or the local name.
  const char* UriName(uint32_t e);
  // Child i counted from 1 without moving the cursor; 0 outside [1, count].
  uint32_t ChildAt(uint32_t e, int32_t i);
  // The declaration records in scope at `e`, outermost first; 0 outside [0, count).
  uint32_t NamespaceInScope(uint32_t e, int32_t i) const;
  const char* DeclarationPrefix(uint32_t p) const { return data_ + p + 12; }
  const char* DeclarationUri(uint32_t p) const;
  // True when some record starts at `n` and it is an E record.
  bool IsElementStart(uint32_t n) const;

 private:
  static constexpr uint32_t kHeaderSize = 8;
  static constexpr uint32_t kElementFixedSize = 56;

  uint32_t Field(uint32_t record, uint32_t at) const {
    uint32_t value;
    std::memcpy(&value, data_ + record + at, sizeof value);
    return value;
  }
  void SetField(uint32_t record, uint32_t at, uint32_t value) {
    std::memcpy(data_ + record + at, &value, sizeof value);
  }
  uint32_t RecordSize(uint32_t record) const { return Field(record, 4); }
  char Kind(uint32_t record) const { return data_[record]; }
  // Appends a record of `payload` bytes after the header, only its last word
  // zeroed (the caller writes the rest); returns its offset via `record`.
  // Inline while the arena has room: one element is two or three records.
  int Append(char kind, uint32_t payload, uint32_t& record) {
    const uint64_t size = (kHeaderSize + payload + 3u) & ~3u;
    if (size_ + size > capacity_) return AppendGrowing(kind, payload, record);
    record = size_;
    const char head[4] = {kind, 0, 0, 0};
    std::memcpy(data_ + record, head, sizeof head);
    SetField(record, 4, static_cast<uint32_t>(size));
    std::memset(data_ + record + size - 4, 0, 4);
    size_ += static_cast<uint32_t>(size);
    return kOk;
  }
  int AppendGrowing(char kind, uint32_t payload, uint32_t& record);
  // Names and most values are short: two overlapping word copies beat a call
  // to memcpy. The ranges do not overlap.
  static void CopyBytes(char* to, const char* from, size_t n) {
    if (n >= 8 && n <= 16) {
      uint64_t head, tail;
      std::memcpy(&head, from, 8);
      std::memcpy(&tail, from + n - 8, 8);
      std::memcpy(to, &head, 8);
      std::memcpy(to + n - 8, &tail, 8);
    } else if (n >= 4 && n < 8) {
      uint32_t head, tail;
      std::memcpy(&head, from, 4);
      std::memcpy(&tail, from + n - 4, 4);
      std::memcpy(to, &head, 4);
      std::memcpy(to + n - 4, &tail, 4);
    } else if (n < 4) {
      for (size_t i = 0; i < n; ++i) to[i] = from[i];
    } else {
      std::memcpy(to, from, n);
    }
  }
  uint32_t FirstChild(uint32_t e) const;
  uint32_t NextSibling(uint32_t e) const;
  uint32_t SkipDeclarations(uint32_t r) const;
  bool NameMatches(uint32_t child, std::string_view name, int32_t& count, int32_t index);

  char* data_ = nullptr;  // owned; from ResizeBlock, capacity_ bytes
  uint32_t size_ = 0;
  uint32_t capacity_ = 0;
  uint32_t cursor_ = 0;
  uint32_t top_ = 0;
  uint32_t tag_mark_ = 0;
  int32_t top_count_ = 0;
  uint32_t open_offsets_[kMaxDepth] = {};
  uint32_t namespace_offsets_[kMaxDepth] = {};
  ShortByteString20 name_scratch_;
  ShortByteString20 uri_name_scratch_;

  // A statement service asks for child 1, 2, 3 ... of one parent in turn; a
  // few remembered positions make each step O(1) instead of a walk from the
  // first child. Keyed by parent and step name ("" for positional steps).
  struct WalkMemo {
    uint32_t parent = 0;
    uint32_t child = 0;     // the child selected last
    int32_t visited = 0;    // children visited up to and including it
    int32_t matched = 0;    // matches counted up to and including it
    ShortByteString20 name;
  };
  // A record's fields are read one name at a time; the children of the
  // parent asked last, when few and all without a namespace, are listed once
  // so that each first-match step looks at names only. Keyed by parent and
  // child count (an open element gains children).
  struct ChildList {
    static constexpr uint32_t kMax = 32;
    uint32_t parent = 0;
    int32_t count = -1;
    bool listed = false;  // false: too many children, or a namespaced one
    uint32_t size = 0;
    uint32_t child[kMax];
    uint32_t length[kMax];
  };
  ChildList child_list_;
  const ChildList& ListChildren(uint32_t e);
  static constexpr uint32_t kMemoSlots = 16;
  WalkMemo memo_[kMemoSlots];
  WalkMemo& MemoFor(uint32_t parent, std::string_view name);
};

// The building steps run for every element: inline, in the parser's loop.
inline int DocumentTree::OpenElement(std::string_view local_name, int32_t depth, int32_t entry,
                                     uint32_t namespaces_in_scope, bool is_empty, uint32_t attribute_count,
                                     uint32_t tag_start, uint32_t content_start) {
  uint32_t e;
  const uint32_t payload = static_cast<uint32_t>(kElementFixedSize - kHeaderSize + local_name.size() + 1);
  if (int rc = Append(kElementRecord, payload, e); rc != kOk) return rc;
  // +8 to +52; the end offset, text record, end and end tag start come later.
  const uint32_t fields[12] = {0,
                               is_empty ? static_cast<uint32_t>(-1) : 0,
                               depth > 1 ? open_offsets_[depth - 2] : 0,
                               entry > 0 ? namespace_offsets_[entry - 1] : 0,
                               namespaces_in_scope,
                               tag_mark_,
                               attribute_count,
                               0,
                               tag_start,
                               0,
                               content_start,
                               0};
  std::memcpy(data_ + e + kHeaderSize, fields, sizeof fields);
  CopyBytes(data_ + e + kElementFixedSize, local_name.data(), local_name.size());
  open_offsets_[depth - 1] = e;
  if (depth == 1) {
    ++top_count_;
    if (top_ == 0) top_ = e;
  }
  return kOk;
}

inline int DocumentTree::SetText(int32_t depth, const char* text, int32_t length) {
  uint32_t record;
  if (int rc = Append(kTextRecord, static_cast<uint32_t>(length) + 1, record); rc != kOk) return rc;
  CopyBytes(data_ + record + 8, text, static_cast<size_t>(length));
  SetField(open_offsets_[depth - 1], 36, record);
  return kOk;
}

inline void DocumentTree::CloseElement(int32_t depth, uint32_t end, uint32_t end_tag_start) {
  const uint32_t e = open_offsets_[depth - 1];
  SetField(e, 8, size_);
  SetField(e, 44, end);
  SetField(e, 52, end_tag_start);
  if (const uint32_t parent = Parent(e); parent != 0) SetField(parent, 12, Field(parent, 12) + 1);
}

}  // namespace orvelan
