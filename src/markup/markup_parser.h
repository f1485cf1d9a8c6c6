#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/byte_string.h"
#include "markup/document_tree.h"
#include "markup/insertion_log.h"
#include "markup/markup_listener.h"
#include "markup/name_value_table.h"
#include "markup/text_buffer.h"

// Reads OFX 2.x (XML) and OFX 1.x (SGML, where value elements have no end tag)
// into a DocumentTree, one byte at a time, resumable at any byte.
//
//   MarkupParser parser;
//   parser.SetBuildDOM(true);
//   parser.AddSGMLTag("STMTTRN");          // an aggregate: always has an end tag
//   if (int rc = parser.Feed(text); rc != 0) report(rc, parser.ErrorText());
//
// The container list decides OFX 1.x structure: an element whose name is not
// registered is a leaf and is closed by the next start tag or by a different
// end tag. With an empty list the parser is a plain XML parser. Input bytes
// are not decoded: UTF-8 passes through. With KeepOriginalText the input is
// kept, with the leaves' implicit end tags written out, so that an element's
// markup can be cut from it. A failure stops Feed at the failing byte; the
// next parse starts with Reset. Not thread-safe.
namespace orvelan {

class MarkupParser {
 public:
  enum class Encoding : uint8_t { kAscii, kUtf8, kUtf16LE, kUtf16BE };

  MarkupParser();
  MarkupParser(const MarkupParser&) = delete;
  MarkupParser& operator=(const MarkupParser&) = delete;

  // Empties buffers, tables, tree, kept text and counters; the container list
  // and the options stay.
  int Reset();
  // Feeds a NUL-terminated text; 0 or the code of the first failure. A
  // failure is final: later Feed and Finish calls return its code and leave
  // its text until Reset.
  int Feed(const char* text);
  // The same for `length` bytes, which may hold NULs.
  int Feed(const char* data, size_t length);
  // Feed for a whole text that the caller keeps, unchanged, until Reset or
  // until the parser goes away: the kept text refers to those bytes instead
  // of copying them. Only the first feed after Reset refers; otherwise, and
  // on any later Feed, the kept text is copied out as with Feed.
  int FeedRetained(const char* data, size_t length);
  // End-of-input check: 206 with an element still open, 211 for several roots
  // when they are not allowed, 205 in the middle of markup.
  int Finish();
  // Registers an aggregate name; a name already listed is skipped.
  int AddSGMLTag(std::string_view name);
  // " NAME1 NAME2 ... " in registration order.
  const ByteString& ContainerList() const { return containers_; }
  // Whether `name` is registered (exact, case-sensitive).
  bool IsContainer(std::string_view name) const;
  // Forgets the names registered since the list was `length` bytes long
  // (ContainerList().Length() then), for names registered for one parse.
  void TruncateContainerList(int32_t length);
  void SetListener(MarkupListener* listener) { listener_ = listener; }
  // "UTF-8", "UTF-16LE" and "UTF-16BE" (any case); anything else is ASCII.
  int SetEncoding(const char* name);
  const char* EncodingName() const;
  const char* ErrorText() const { return error_text_.Data(); }

  bool BuildDOM() const { return build_dom_; }
  void SetBuildDOM(bool on) {
    build_dom_ = on;
    if (on) validate_ = true;
  }
  bool Validate() const { return validate_; }
  void SetValidate(bool on) {
    validate_ = on;
    if (!on) build_dom_ = false;
  }
  bool KeepOriginalText() const { return keep_text_; }
  void SetKeepOriginalText(bool on) { keep_text_ = on; }
  bool HTMLComments() const { return html_comments_; }
  void SetHTMLComments(bool on) { html_comments_ = on; }
  bool LineDelivery() const { return line_delivery_; }
  void SetLineDelivery(bool on) { line_delivery_ = on; }

  // The four yes/no options of the document's settings share one flag word.
  enum Flag : uint32_t {
    kAllowMoreThanOneRoot = 1,
    kAllowTextOutsideRoot = 2,
    kIgnoreBadElementPrefixes = 4,
    kIgnoreBadAttributePrefixes = 8,
  };
  bool HasFlag(Flag f) const { return (flags_ & f) != 0; }
  void SetFlag(Flag f, bool on) { flags_ = on ? (flags_ | f) : (flags_ & ~static_cast<uint32_t>(f)); }

  DocumentTree& Tree() { return tree_; }
  const DocumentTree& Tree() const { return tree_; }
  // The input as read, with synthesized end tags: its length, [begin, end)
  // of it into `out` (end clamped to the length; empty when reversed), and
  // a copy of the whole (for tests and diagnostics).
  int32_t KeptLength() const;
  int CutKeptText(uint32_t begin, uint32_t end, ByteString& out) const;
  ByteString KeptText() const;
  // Heap bytes the kept text holds: its copy of the input, or the list of
  // synthesized end tags over retained input.
  size_t KeptTextMemory() const;
  // Namespace declarations currently in scope (used while a start tag is reported).
  const NameValueTable& Namespaces() const { return namespaces_; }

 private:
  enum State : uint8_t {
    kText = 0, kStartName, kAfterLess, kInTag, kAttrName, kAfterAttrName, kAfterEquals, kUnquoted,
    kAfterTag, kSingleQuoted, kDoubleQuoted, kEndName, kAfterEndName, kRefText, kRefUnquoted,
    kRefSingle, kRefDouble, kAfterEndSpace, kCommentOpen, kComment, kCommentDash, kCommentEnd,
    kInstruction, kBang, kDeclaration, kSection, kSectionKeyword, kDeclSingle, kDeclDouble,
    kDeclBracket, kHtmlComment,
  };
  enum class Delivery : uint8_t { kFull, kTailTrimmed, kLine, kWhitespaceOnly };
  struct RunBytes;

  int Input(uint8_t ch);
  int Handle(uint8_t ch);
  int Fail(int code);
  // Remembers a non-zero result as the parse's final one.
  int Settle(int rc) {
    if (rc != 0) failed_ = rc;
    return rc;
  }
  int Fail(int code, const char* prefix, std::string_view name);
  // Most calls find nothing to deliver.
  int Deliver(Delivery how) { return text_.IsEmpty() ? 0 : DeliverBuffer(how); }
  int DeliverBuffer(Delivery how);
  int DeliverText(const char* text, int32_t length);
  // Delivers input bytes that stay put until the current feed returns.
  int DeliverInput(const char* text, int32_t length);
  int MaterializeSpan();
  int StartTagNameComplete(std::string_view name);
  int AttributeComplete();
  int TagComplete();
  int StartElement(bool is_empty);
  int EndTag(std::string_view name, bool is_implicit, bool is_empty);
  int ResolvePrefix(std::string_view qualified, bool is_attribute, int32_t& entry, std::string_view& local);
  int ResolveReference(uint8_t ch, ByteString& target);
  int FinishSection();
  void IndexContainer(uint32_t offset, uint32_t length);
  int TakeRun(const uint8_t* run, size_t length);
  bool TakeTag(const uint8_t*& p, const uint8_t* end, int& rc);
  int CloseLeafAtTag(std::string_view leaf);
  int FeedBytes(const char* data, size_t length);
  int FeedRun(const char* data, size_t length);
  int CopyKeptText();
  bool RetainedNameMatches(std::string_view name, uint32_t at) const;
  template <typename Sink>
  void ForEachKeptPiece(uint32_t begin, uint32_t end, Sink&& sink) const;

  MarkupListener* listener_ = nullptr;
  DocumentTree tree_;
  State state_ = kText;
  uint8_t prev_ = 0;
  uint8_t prev2_ = 0;
  ByteString text_;
  ByteString entity_name_;
  ByteString token_;
  ByteString entity_value_;
  ByteString leaf_candidate_;
  bool candidate_is_container_ = false;  // leaf_candidate_ is in the container list
  ByteString attribute_name_;
  // The pending text of the element open at span_depth_ (0: none), still in
  // the input: most text is one run, and goes from there into the tree.
  const char* span_data_ = nullptr;
  int32_t span_length_ = 0;
  int32_t span_depth_ = 0;
  ByteString error_text_;
  TextBuffer kept_;
  ByteString pending_name_;  // the name of an empty-element tag, for its end
  ByteString leaf_name_;     // a leaf being closed implicitly, when its name is long
  ByteString kept_tail_;     // kept text moved behind a synthesized end tag
  // Kept text over retained input: the input plus, in order, the end tags
  // written out. A leaf's name is read back from its start tag.
  const char* retained_ = nullptr;
  InsertionLog insertions_;
  uint32_t inserted_ = 0;   // bytes written out so far
  int64_t kept_limit_ = -1;  // the kept text's end while a leaf is being closed
  uint32_t leaf_candidate_at_ = 0;  // input position of leaf_candidate_'s name
  uint32_t leaf_name_at_ = 0;       // the same for leaf_name_
  uint32_t char_count_ = 0;
  uint32_t tag_start_ = 0;
  int failed_ = 0;  // the first failure's code since Reset
  NameValueTable attributes_;
  NameValueTable open_;
  NameValueTable namespaces_;
  uint32_t namespace_depths_[NameValueTable::kCapacity] = {};
  ByteString containers_;
  // Open-addressing index over containers_: offset + 1 of each name, 0 empty.
  std::vector<uint32_t> container_slots_;
  uint32_t container_count_ = 0;

  bool validate_ = true;
  bool build_dom_ = false;
  bool keep_text_ = true;
  bool line_delivery_ = true;
  bool html_comments_ = false;
  uint32_t flags_ = kAllowMoreThanOneRoot | kAllowTextOutsideRoot;
  Encoding encoding_ = Encoding::kAscii;
};

}  // namespace orvelan
