#include "markup/markup_parser.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "base/error_codes.h"
#include "base/text_util.h"
#include "markup/char_classes.h"
#include "markup/markup_errors.h"

namespace orvelan {
namespace {

using markup::IsNameChar;
using markup::IsNameStart;
using markup::IsWhite;
using markup::kCharClass;
using markup::kNameChar;
using markup::kSpace;
using markup::kTextStop;

// Word-at-a-time helpers for the short names and text runs of a statement;
// loads never reach outside [s, s + n).
inline uint64_t Load8(const void* s) {
  uint64_t v;
  std::memcpy(&v, s, 8);
  return v;
}
inline uint32_t Load4(const void* s) {
  uint32_t v;
  std::memcpy(&v, s, 4);
  return v;
}
constexpr uint64_t kLowBytes = 0x0101010101010101ull;
constexpr uint64_t kHighBits = 0x8080808080808080ull;
// The high bit of each zero byte of x; bits above the lowest one may be false.
inline uint64_t ZeroBytes(uint64_t x) { return (x - kLowBytes) & ~x & kHighBits; }

// Names are a few bytes long: words beat a call to memcmp.
inline bool SameBytes(const char* a, const char* b, size_t n) {
  if (n >= 8) {
    for (size_t i = 0; i + 8 < n; i += 8) {
      if (Load8(a + i) != Load8(b + i)) return false;
    }
    return Load8(a + n - 8) == Load8(b + n - 8);
  }
  if (n >= 4) return Load4(a) == Load4(b) && Load4(a + n - 4) == Load4(b + n - 4);
  for (size_t i = 0; i < n; ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}
inline bool HasColon(std::string_view name) {
  const char* s = name.data();
  const size_t n = name.size();
  if (n >= 8) {
    for (size_t i = 0; i + 8 < n; i += 8) {
      if (ZeroBytes(Load8(s + i) ^ (kLowBytes * ':')) != 0) return true;
    }
    return ZeroBytes(Load8(s + n - 8) ^ (kLowBytes * ':')) != 0;
  }
  if (n >= 4) {
    const uint64_t x = Load4(s) | static_cast<uint64_t>(Load4(s + n - 4)) << 32;
    return ZeroBytes(x ^ (kLowBytes * ':')) != 0;
  }
  for (size_t i = 0; i < n; ++i) {
    if (s[i] == ':') return true;
  }
  return false;
}
// The first byte in [p, end) that stops character data ("<", "&", line end).
inline const uint8_t* SkipText(const uint8_t* p, const uint8_t* end) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  for (; end - p >= 8; p += 8) {
    const uint64_t x = Load8(p);
    const uint64_t stops =
        ZeroBytes(x ^ (kLowBytes * '<')) | ZeroBytes(x ^ (kLowBytes * '&')) | ZeroBytes(x ^ (kLowBytes * '\n'));
    // The lowest flag of each mask is exact, so the lowest of all is the first stop.
    if (stops != 0) return p + (__builtin_ctzll(stops) >> 3);
  }
#endif
  while (p < end && !(kCharClass[*p] & kTextStop)) ++p;
  return p;
}
inline bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && SameBytes(a.data(), b.data(), a.size());
}

int32_t TrimmedLength(const ByteString& s) {
  int32_t n = s.Length();
  while (n > 0 && IsWhite(static_cast<uint8_t>(s.Data()[n - 1]))) --n;
  return n;
}

// Four bytes per step: this runs for every start tag.
uint32_t HashName(std::string_view name) {
  uint32_t h = static_cast<uint32_t>(name.size()) * 0x9E3779B1u;
  size_t i = 0;
  for (; i + 4 <= name.size(); i += 4) {
    uint32_t chunk;
    std::memcpy(&chunk, name.data() + i, 4);
    h = (h ^ chunk) * 0x85EBCA6Bu;
    h ^= h >> 15;
  }
  for (; i < name.size(); ++i) h = (h ^ static_cast<uint8_t>(name[i])) * 16777619u;
  return h ^ (h >> 13);
}

// The byte of "#65" or "#x41"; 0 when the reference is no character reference
// or lies outside 1 to 255.
int CharacterReference(std::string_view name) {
  if (name.size() < 2 || name[0] != '#') return 0;
  const bool hex = name[1] == 'x';
  size_t i = hex ? 2 : 1;
  if (i == name.size()) return 0;
  int value = 0;
  for (; i < name.size(); ++i) {
    const uint8_t c = static_cast<uint8_t>(name[i]);
    int digit;
    if (IsDigit(c)) {
      digit = c - '0';
    } else if (hex && IsHexDigit(c)) {
      digit = (c | 0x20) - 'a' + 10;
    } else {
      return 0;
    }
    value = value * (hex ? 16 : 10) + digit;
    if (value > 255) return 0;
  }
  return value;
}

}  // namespace

// Per byte, the states (bit = state number) in which that byte is only
// appended to a buffer and nothing else happens: a run of such bytes is
// taken whole. Character data and the white space after a tag, which
// deliver text at line ends, are read by their own loops.
struct MarkupParser::RunBytes {
  static constexpr std::array<uint32_t, 256> Make() {
    std::array<uint32_t, 256> t{};
    const auto all_but = [&t](State state, std::string_view stops, bool stop_at_white) {
      for (int c = 0; c < 256; ++c) {
        if (stops.find(static_cast<char>(c)) != std::string_view::npos) continue;
        if (stop_at_white && (kCharClass[c] & kSpace) != 0) continue;
        t[c] |= 1u << state;
      }
    };
    for (int c = 0; c < 256; ++c) {
      if ((kCharClass[c] & kNameChar) == 0 && c != '#') continue;
      if (c != '#') t[c] |= 1u << kStartName | 1u << kEndName;
      t[c] |= 1u << kRefText | 1u << kRefUnquoted | 1u << kRefSingle | 1u << kRefDouble;
    }
    all_but(kAttrName, ">=/", true);
    all_but(kUnquoted, "&>", true);
    all_but(kSingleQuoted, "'&", false);
    all_but(kDoubleQuoted, "\"&", false);
    all_but(kComment, "-", false);
    all_but(kInstruction, ">", false);
    all_but(kDeclaration, ">[\"'", false);
    all_but(kSection, ">", false);
    all_but(kSectionKeyword, "[", true);
    all_but(kDeclSingle, "'", false);
    all_but(kDeclDouble, "\"", false);
    all_but(kDeclBracket, "]", false);
    all_but(kHtmlComment, ">", false);
    return t;
  }
  static const std::array<uint32_t, 256> kTable;
};
const std::array<uint32_t, 256> MarkupParser::RunBytes::kTable = MarkupParser::RunBytes::Make();

MarkupParser::MarkupParser() = default;

int MarkupParser::Reset() {
  state_ = kText;
  prev_ = prev2_ = 0;
  for (ByteString* s : {&text_, &entity_name_, &token_, &entity_value_, &leaf_candidate_, &attribute_name_,
                        &error_text_, &pending_name_, &leaf_name_, &kept_tail_}) {
    s->Clear();
  }
  kept_.Truncate(0);
  span_depth_ = 0;
  retained_ = nullptr;
  insertions_.Clear();
  inserted_ = 0;
  kept_limit_ = -1;
  leaf_candidate_at_ = leaf_name_at_ = 0;
  char_count_ = 0;
  tag_start_ = 0;
  failed_ = 0;
  attributes_.Clear();
  open_.Clear();
  namespaces_.Clear();
  return tree_.ResetTree();
}

int MarkupParser::SetEncoding(const char* name) {
  if (CompareNoCase(name, "UTF-8") == 0) {
    encoding_ = Encoding::kUtf8;
  } else if (CompareNoCase(name, "UTF-16LE") == 0) {
    encoding_ = Encoding::kUtf16LE;
  } else if (CompareNoCase(name, "UTF-16BE") == 0) {
    encoding_ = Encoding::kUtf16BE;
  } else {
    encoding_ = Encoding::kAscii;
  }
  return kOk;
}

const char* MarkupParser::EncodingName() const {
  switch (encoding_) {
    case Encoding::kUtf8: return "UTF-8";
    case Encoding::kUtf16LE: return "UTF-16LE";
    case Encoding::kUtf16BE: return "UTF-16BE";
    case Encoding::kAscii: break;
  }
  return "ASCII";
}

int MarkupParser::AddSGMLTag(std::string_view name) {
  // Every response registers the whole aggregate list again, so a plain name
  // (the common case) is looked up in the index, which holds every piece of
  // the list, instead of being searched for through the list.
  const bool plain = !name.empty() && name.find_first_of(std::string_view(" \0", 2)) == std::string_view::npos;
  if (plain) {
    if (IsContainer(name)) return kOk;
  } else {
    ByteString probe;
    if (int rc = probe.AppendChar(' '); rc != kOk) return rc;
    if (int rc = probe.Append(name); rc != kOk) return rc;
    if (int rc = probe.AppendChar(' '); rc != kOk) return rc;
    if (containers_.Find(probe.Data()) >= 0) return kOk;
  }
  if (containers_.IsEmpty()) {
    if (int rc = containers_.AppendChar(' '); rc != kOk) return rc;
  }
  const uint32_t start = static_cast<uint32_t>(containers_.Length());
  if (int rc = containers_.Append(name); rc != kOk) return rc;
  if (int rc = containers_.AppendChar(' '); rc != kOk) return rc;
  // The list is searched for " NAME ", so each space-separated piece of a
  // registered text counts as a container name of its own.
  uint32_t piece = start;
  for (uint32_t i = start; i < start + name.size() + 1; ++i) {
    if (containers_.Data()[i] != ' ') continue;
    if (i > piece) IndexContainer(piece, i - piece);
    piece = i + 1;
  }
  candidate_is_container_ = IsContainer(leaf_candidate_.View());
  return kOk;
}

void MarkupParser::IndexContainer(uint32_t offset, uint32_t length) {
  const std::string_view name(containers_.Data() + offset, length);
  if (IsContainer(name)) return;
  if ((container_count_ + 1) * 2 > container_slots_.size()) {
    std::vector<uint32_t> old;
    old.swap(container_slots_);
    container_slots_.assign(old.empty() ? 1024 : old.size() * 2, 0);
    container_count_ = 0;
    for (uint32_t entry : old) {
      if (entry == 0) continue;
      const char* at = containers_.Data() + entry - 1;
      IndexContainer(entry - 1, static_cast<uint32_t>(std::strchr(at, ' ') - at));
    }
  }
  const size_t mask = container_slots_.size() - 1;
  size_t slot = HashName(name) & mask;
  while (container_slots_[slot] != 0) slot = (slot + 1) & mask;
  container_slots_[slot] = offset + 1;
  ++container_count_;
}

void MarkupParser::TruncateContainerList(int32_t length) {
  if (length < 0 || length >= containers_.Length()) return;
  containers_.SetLength(length <= 1 ? 0 : length);
  std::fill(container_slots_.begin(), container_slots_.end(), 0u);
  container_count_ = 0;
  uint32_t piece = 0;
  for (uint32_t i = 0; i < static_cast<uint32_t>(containers_.Length()); ++i) {
    if (containers_.Data()[i] != ' ') continue;
    if (i > piece) IndexContainer(piece, i - piece);
    piece = i + 1;
  }
  candidate_is_container_ = IsContainer(leaf_candidate_.View());
}

bool MarkupParser::IsContainer(std::string_view name) const {
  if (container_slots_.empty()) return false;
  const size_t mask = container_slots_.size() - 1;
  const char* list = containers_.Data();
  for (size_t slot = HashName(name) & mask; container_slots_[slot] != 0; slot = (slot + 1) & mask) {
    const char* at = list + container_slots_[slot] - 1;
    if (SameBytes(at, name.data(), name.size()) && at[name.size()] == ' ') return true;
  }
  return false;
}

int MarkupParser::Fail(int code) {
  error_text_.Assign(MarkupErrorText(code));
  return code;
}

int MarkupParser::Fail(int code, const char* prefix, std::string_view name) {
  error_text_.Assign(prefix);
  error_text_.Append(name);
  return code;
}

int MarkupParser::Feed(const char* text) {
  return Feed(text, text == nullptr ? 0 : std::strlen(text));
}

inline int MarkupParser::TakeRun(const uint8_t* run, size_t length) {
  if (keep_text_ && retained_ == nullptr) {
    if (int rc = kept_.Append(reinterpret_cast<const char*>(run), static_cast<int32_t>(length)); rc != kOk) {
      return Fail(rc);
    }
  }
  char_count_ += static_cast<uint32_t>(length);
  prev2_ = length >= 2 ? run[length - 2] : prev_;
  prev_ = run[length - 1];
  return kOk;
}

int MarkupParser::FeedRetained(const char* data, size_t length) {
  if (failed_ != kOk) return failed_;
  if (keep_text_ && retained_ == nullptr && char_count_ == 0 && kept_.IsEmpty() && length < 0x7FFFFFF0u) {
    retained_ = data;
    return Settle(FeedBytes(data, length));
  }
  return Feed(data, length);
}

int MarkupParser::Feed(const char* data, size_t length) {
  if (failed_ != kOk) return failed_;
  // Later input may not outlive the call, so the kept text takes its own copy.
  if (retained_ != nullptr) {
    if (int rc = CopyKeptText(); rc != kOk) return Settle(rc);
  }
  return Settle(FeedBytes(data, length));
}

int MarkupParser::FeedBytes(const char* data, size_t length) {
  const int rc = FeedRun(data, length);
  // The input may go away once the feed returns.
  const int materialized = MaterializeSpan();
  return rc != kOk ? rc : materialized;
}

int MarkupParser::FeedRun(const char* data, size_t length) {
  if (encoding_ == Encoding::kUtf16LE || encoding_ == Encoding::kUtf16BE) return Fail(kErrUtf16);
  const uint8_t* p = reinterpret_cast<const uint8_t*>(data);
  const uint8_t* const end = p + length;
  // One large input grows the arena once; small pieces (a byte at a time, in
  // the tests) rely on the arena's own growth.
  if (length >= 65536 && length < 0x20000000u) {
    if (build_dom_) tree_.Reserve(static_cast<uint32_t>(length * 4));

    if (keep_text_ && retained_ == nullptr) kept_.Reserve(kept_.Length() + static_cast<int32_t>(length + length / 4));
  }
  while (p < end) {
    // Runs that need nothing but an append, and whole simple tags; a listener
    // sees every byte, so it takes the byte-at-a-time path.
    if (listener_ == nullptr) {
      const uint8_t* run = p;
      if (state_ == kText) {
        p = SkipText(p, end);
      } else if (state_ == kAfterTag) {
        while (p < end && IsWhite(*p)) ++p;
        if (p == run && p < end && *p != '<' && text_.IsEmpty()) {
          // Character data right after a tag, with no white space to drop:
          // its run is read at once.
          state_ = kText;
          p = SkipText(p, end);
        }
      } else if (state_ != kEndName || prev_ != '/') {
        const uint32_t bit = 1u << state_;
        while (p < end && (RunBytes::kTable[*p] & bit) != 0) ++p;
      }
      // A line end in character data joins its run; the line is then
      // delivered as the byte-at-a-time path would after it.
      const bool line_end = state_ == kText && p < end && *p == '\n';
      if (line_end) ++p;
      if (p != run && state_ == kText && text_.IsEmpty() && build_dom_ && open_.Count() > 0 &&
          (line_end ? line_delivery_ : p < end && *p == '<')) {
        // The run ends at "<" or a line end, where its text up to the trailing
        // white space is delivered (tail-trimmed or by line); the white space
        // stays buffered as it would.
        const size_t n = static_cast<size_t>(p - run);
        size_t trimmed = n;
        while (trimmed > 0 && IsWhite(run[trimmed - 1])) --trimmed;
        if (int rc = TakeRun(run, n); rc != kOk) return rc;
        // Before "<" the white space would only be dropped.
        if (trimmed < n && !(p < end && *p == '<')) {
          if (int rc = text_.Append(reinterpret_cast<const char*>(run + trimmed), static_cast<int32_t>(n - trimmed));
              rc != kOk) {
            return Fail(rc);
          }
        }
        if (trimmed > 0) {
          if (int rc = DeliverInput(reinterpret_cast<const char*>(run), static_cast<int32_t>(trimmed)); rc != kOk) {
            return rc;
          }
        }
        continue;
      }
      if (p != run && state_ == kAfterTag && p < end) {
        // The next byte, in this feed, drops the white space unseen.
        if (int rc = TakeRun(run, static_cast<size_t>(p - run)); rc != kOk) return rc;
        continue;
      }
      if (p != run) {
        ByteString& target = state_ == kText || state_ == kAfterTag || state_ == kSection ? text_
                             : state_ >= kRefText && state_ <= kRefDouble                ? entity_name_
                                                                                         : token_;
        if (int rc = target.Append(reinterpret_cast<const char*>(run), static_cast<int32_t>(p - run)); rc != kOk) {
          return Fail(rc);
        }
        if (int rc = TakeRun(run, static_cast<size_t>(p - run)); rc != kOk) return rc;
        if (line_end && line_delivery_) {
          if (int rc = Deliver(Delivery::kLine); rc != kOk) return rc;
        }
        continue;
      }
      if (state_ == kAfterTag && *p != '<') {
        // Character data begins: the white space before it goes, and the
        // byte starts a run of its own.
        if (int rc = Deliver(Delivery::kWhitespaceOnly); rc != kOk) return rc;
        state_ = kText;
        continue;
      }
      if (*p == '<' && (state_ == kText || state_ == kAfterTag)) {
        int rc = kOk;
        if (TakeTag(p, end, rc)) {
          if (rc != kOk) return rc;
          continue;
        }
      }
    }
    if (int rc = Input(*p++); rc != kOk) return rc;
  }
  return kOk;
}

// "<NAME>" or "</NAME>" whole in [p, end), at "<" in character data or after
// a tag: the same steps in the same order as byte by byte, without the
// per-byte dispatch. False, with p unchanged, for any other markup.
bool MarkupParser::TakeTag(const uint8_t*& p, const uint8_t* end, int& rc) {
  const bool is_end = p + 1 < end && p[1] == '/';
  const uint8_t* const name = p + (is_end ? 2 : 1);
  if (name >= end || !IsNameStart(*name)) return false;
  const uint8_t* close = name + 1;
  while (close < end && IsNameChar(*close)) ++close;
  if (close == end || *close != '>') return false;

  const uint32_t tag_start = char_count_;
  // The name is read where it is in the input, which stays put during the feed.
  const size_t length = static_cast<size_t>(close - name);
  const std::string_view tag_name(reinterpret_cast<const char*>(name), length);
  if (keep_text_ && retained_ == nullptr) {
    if ((rc = TakeRun(p, 1)) != kOk) return true;
    if (state_ == kAfterTag) {
      if ((rc = Deliver(Delivery::kWhitespaceOnly)) != kOk) return true;
      state_ = kText;
    }
    if ((rc = Deliver(Delivery::kTailTrimmed)) != kOk) return true;
    token_.SetLength(0);
    if (is_end && (rc = TakeRun(p + 1, 1)) != kOk) return true;
    tag_start_ = tag_start;
    if ((rc = TakeRun(name, length)) != kOk) return true;
    p = close + 1;
    // ">" is kept and counted before it is handled, and becomes the previous
    // character only afterwards.
    if (kept_.AppendChar('>') != kOk) {
      rc = Fail(kErrOutOfMemory);
      return true;
    }
    ++char_count_;
  } else {
    // Nothing to copy: the same steps, with the tag counted in one go (no
    // listener, so white space after a tag is only dropped).
    if (state_ == kAfterTag) {
      text_.SetLength(0);
      state_ = kText;
    }
    if ((rc = Deliver(Delivery::kTailTrimmed)) != kOk) {
      ++char_count_;
      prev2_ = prev_;
      prev_ = '<';
      return true;
    }
    token_.SetLength(0);
    char_count_ += static_cast<uint32_t>(close + 1 - p);
    prev2_ = length >= 2 ? name[length - 2] : name[-1];
    prev_ = name[length - 1];
    tag_start_ = tag_start;
    p = close + 1;
  }
  if (is_end) {
    state_ = kAfterTag;
    rc = EndTag(tag_name, false, false);
  } else {
    state_ = kStartName;
    rc = StartTagNameComplete(tag_name);
    if (rc == kOk) {
      state_ = kAfterTag;
      rc = TagComplete();
    }
  }
  prev2_ = prev_;
  prev_ = '>';
  return true;
}

int MarkupParser::Input(uint8_t ch) {
  if (listener_ != nullptr) {
    if (int rc = listener_->OnInputChar(static_cast<char>(ch)); rc != kOk) return rc;
  }
  if (keep_text_ && retained_ == nullptr) {
    if (int rc = kept_.AppendChar(static_cast<char>(ch)); rc != kOk) return Fail(rc);
  }
  ++char_count_;
  const int rc = Handle(ch);
  prev2_ = prev_;
  prev_ = ch;
  return rc;
}

int MarkupParser::DeliverBuffer(Delivery how) {
  int rc = kOk;
  switch (how) {
    case Delivery::kFull:
      rc = DeliverText(text_.Data(), text_.Length());
      text_.SetLength(0);
      break;
    case Delivery::kTailTrimmed: {
      const int32_t n = TrimmedLength(text_);
      if (n > 0) rc = DeliverText(text_.Data(), n);
      if (rc == kOk && listener_ != nullptr && n < text_.Length()) rc = listener_->OnWhitespace(text_.Data() + n);
      text_.SetLength(0);
      break;
    }
    case Delivery::kLine: {
      const int32_t n = TrimmedLength(text_);
      if (n == 0) break;
      rc = DeliverText(text_.Data(), n);
      text_.RemovePrefix(n);
      break;
    }
    case Delivery::kWhitespaceOnly:
      if (listener_ != nullptr) rc = listener_->OnWhitespace(text_.Data());
      text_.SetLength(0);
      break;
  }
  return rc;
}

int MarkupParser::DeliverText(const char* text, int32_t length) {
  if (listener_ != nullptr) {
    if (int rc = listener_->OnText(text, length); rc != kOk) return rc;
  }
  if (open_.Count() == 0) return HasFlag(kAllowTextOutsideRoot) ? kOk : Fail(kErrTextOutsideRoot);
  if (build_dom_) {
    if (int rc = MaterializeSpan(); rc != kOk) return rc;
    if (int rc = open_.ValueBuffer(open_.Count() - 1).Append(text, length); rc != kOk) return Fail(rc);
  }
  return kOk;
}

int MarkupParser::DeliverInput(const char* text, int32_t length) {
  const int32_t depth = open_.Count();
  if (span_depth_ != 0 || !open_.ValueAt(depth - 1).IsEmpty()) return DeliverText(text, length);
  span_data_ = text;
  span_length_ = length;
  span_depth_ = depth;
  return kOk;
}

int MarkupParser::MaterializeSpan() {
  if (span_depth_ == 0) return kOk;
  const int32_t depth = span_depth_;
  span_depth_ = 0;
  if (int rc = open_.ValueBuffer(depth - 1).Append(span_data_, span_length_); rc != kOk) return Fail(rc);
  return kOk;
}

int MarkupParser::Handle(uint8_t ch) {
  for (;;) {  // `continue` hands ch to the new state
    switch (state_) {
      case kText:
        if (ch == '\n') {
          if (int rc = text_.AppendChar('\n'); rc != kOk) return Fail(rc);
          return line_delivery_ ? Deliver(Delivery::kLine) : kOk;
        }
        if (ch == '&') {
          entity_name_.SetLength(0);
          state_ = kRefText;
        } else if (ch == '<') {
          if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return rc;
          token_.SetLength(0);
          state_ = kAfterLess;
        } else if (int rc = text_.AppendChar(static_cast<char>(ch)); rc != kOk) {
          return Fail(rc);
        }
        return kOk;

      case kStartName:
        if (IsNameChar(ch)) return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        if (ch == '!' || ch == '?') {
          token_.SetLength(0);
          state_ = ch == '!' ? kBang : kInstruction;
          return kOk;
        }
        if (ch == '/' && prev_ == '<') {
          state_ = kEndName;
          return kOk;
        }
        if (int rc = StartTagNameComplete(token_.View()); rc != kOk) return rc;
        if (ch == '>') {
          state_ = kAfterTag;
          return TagComplete();
        }
        state_ = kInTag;
        return kOk;

      case kAfterLess:
        tag_start_ = char_count_ - 2;
        if (IsNameStart(ch) || ch == '/' || ch == '?' || ch == '!') {
          state_ = kStartName;
          continue;
        }
        if (int rc = text_.AppendChar('<'); rc != kOk) return Fail(rc);
        state_ = kText;
        continue;

      case kInTag:
        if (IsWhite(ch) || ch == '/') return kOk;
        if (ch == '>') {
          state_ = kAfterTag;
          return TagComplete();
        }
        state_ = kAttrName;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kAttrName:
        if (!IsWhite(ch) && ch != '>' && ch != '=' && ch != '/') {
          return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        }
        attribute_name_.Swap(token_);
        token_.SetLength(0);
        if (IsWhite(ch)) {
          state_ = kAfterAttrName;
        } else if (ch == '=') {
          state_ = kAfterEquals;
        } else if (ch == '/') {
          state_ = kAfterAttrName;
          return AttributeComplete();
        } else {
          if (int rc = AttributeComplete(); rc != kOk) return rc;
          state_ = kAfterTag;
          return TagComplete();
        }
        return kOk;

      case kAfterAttrName:
        if (IsWhite(ch)) return kOk;
        if (ch == '=') {
          state_ = kAfterEquals;
          return kOk;
        }
        if (int rc = AttributeComplete(); rc != kOk) return rc;
        if (ch == '>') {
          state_ = kAfterTag;
          return TagComplete();
        }
        state_ = kAttrName;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kAfterEquals:
        if (IsWhite(ch)) return kOk;
        if (ch == '>') return Fail(kErrInvalidMarkup);
        if (ch == '\'') {
          state_ = kSingleQuoted;
        } else if (ch == '"') {
          state_ = kDoubleQuoted;
        } else if (ch == '&') {
          entity_name_.SetLength(0);
          state_ = kRefUnquoted;
        } else {
          state_ = kUnquoted;
          return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        }
        return kOk;

      case kUnquoted:
        if (ch == '&') {
          entity_name_.SetLength(0);
          state_ = kRefUnquoted;
          return kOk;
        }
        if (IsWhite(ch) || ch == '>') {
          if (ch == '>' && prev_ == '/') token_.DropLast();
          if (int rc = AttributeComplete(); rc != kOk) return rc;
          if (ch == '>') {
            state_ = kAfterTag;
            return TagComplete();
          }
          state_ = kInTag;
          return kOk;
        }
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kAfterTag:
        if (IsWhite(ch)) return text_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        if (int rc = Deliver(Delivery::kWhitespaceOnly); rc != kOk) return rc;
        state_ = kText;
        continue;

      case kSingleQuoted:
      case kDoubleQuoted:
        if (ch == (state_ == kSingleQuoted ? '\'' : '"')) {
          state_ = kInTag;
          return AttributeComplete();
        }
        if (ch == '&') {
          entity_name_.SetLength(0);
          state_ = state_ == kSingleQuoted ? kRefSingle : kRefDouble;
          return kOk;
        }
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kEndName:
        if (prev_ == '/' && !IsNameStart(ch)) {
          if (int rc = text_.Append("</", 2); rc != kOk) return Fail(rc);
          state_ = kText;
          continue;
        }
        if (IsNameChar(ch)) return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        state_ = kAfterEndName;
        continue;

      case kAfterEndName:
        if (IsWhite(ch)) return kOk;
        state_ = ch == '>' ? kAfterTag : kAfterEndSpace;
        return EndTag(token_.View(), false, false);

      case kRefText:
      case kRefUnquoted:
      case kRefSingle:
      case kRefDouble: {
        if (IsNameChar(ch) || ch == '#') {
          return entity_name_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
        }
        const State back = state_ == kRefText       ? kText
                           : state_ == kRefUnquoted ? kUnquoted
                           : state_ == kRefSingle   ? kSingleQuoted
                                                    : kDoubleQuoted;
        if (int rc = ResolveReference(ch, back == kText ? text_ : token_); rc != kOk) return rc;
        state_ = back;
        if (ch == ';') return kOk;
        continue;
      }

      case kAfterEndSpace:
        return Fail(kErrInvalidMarkup);

      case kCommentOpen:
        if (ch == '-') {
          token_.SetLength(0);
          state_ = kComment;
          return kOk;
        }
        state_ = kDeclaration;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kComment:
        if (ch == '-') {
          if (html_comments_) {
            state_ = kHtmlComment;
            return token_.AppendChar('-') == kOk ? kOk : Fail(kErrOutOfMemory);
          }
          state_ = kCommentDash;
          return kOk;
        }
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kCommentDash:
        if (ch == '-') {
          if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return rc;
          if (listener_ != nullptr) {
            if (int rc = listener_->OnComment(token_.Data()); rc != kOk) return rc;
          }
          token_.SetLength(0);
          state_ = kCommentEnd;
          return kOk;
        }
        if (token_.AppendChar('-') != kOk || token_.AppendChar(static_cast<char>(ch)) != kOk) {
          return Fail(kErrOutOfMemory);
        }
        state_ = kComment;
        return kOk;

      case kCommentEnd:
        if (ch != '>') return Fail(kErrInvalidMarkup);
        state_ = kAfterTag;
        return kOk;

      case kInstruction:
        if (ch == '>' && prev_ == '?') {
          token_.DropLast();
          if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return rc;
          if (listener_ != nullptr) {
            if (int rc = listener_->OnInstruction(token_.Data()); rc != kOk) return rc;
          }
          token_.SetLength(0);
          state_ = kAfterTag;
          return kOk;
        }
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kBang:
        if (ch == '[' && !html_comments_) {
          state_ = kSectionKeyword;
          return kOk;
        }
        if (ch == '>') {
          state_ = kAfterTag;
          return kOk;
        }
        state_ = ch == '-' ? kCommentOpen : kDeclaration;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kDeclaration:
        if (ch == '>') {
          if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return rc;
          if (listener_ != nullptr) {
            if (int rc = listener_->OnDeclaration(token_.Data()); rc != kOk) return rc;
          }
          token_.SetLength(0);
          state_ = kAfterTag;
          return kOk;
        }
        if (ch == '[') state_ = kDeclBracket;
        if (ch == '"') state_ = kDeclDouble;
        if (ch == '\'') state_ = kDeclSingle;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kSection:
        if (ch == '>' && prev_ == ']' && prev2_ == ']') {
          text_.SetLength(text_.Length() >= 2 ? text_.Length() - 2 : 0);
          state_ = kText;
          return FinishSection();
        }
        return text_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kSectionKeyword:
        if (ch == '[') {
          state_ = kSection;
          return kOk;
        }
        if (IsWhite(ch)) return kOk;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kDeclSingle:
      case kDeclDouble:
      case kDeclBracket:
        if (ch == (state_ == kDeclSingle ? '\'' : state_ == kDeclDouble ? '"' : ']')) state_ = kDeclaration;
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);

      case kHtmlComment:
        if (ch == '>' && prev_ == '-' && prev2_ == '-') {
          if (token_.EndsWith("--")) token_.SetLength(token_.Length() - 2);
          if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return rc;
          if (listener_ != nullptr) {
            if (int rc = listener_->OnComment(token_.Data()); rc != kOk) return rc;
          }
          token_.SetLength(0);
          state_ = kAfterTag;
          return kOk;
        }
        return token_.AppendChar(static_cast<char>(ch)) == kOk ? kOk : Fail(kErrOutOfMemory);
    }
    return kOk;
  }
}

int MarkupParser::StartTagNameComplete(std::string_view name) {
  if (int rc = Deliver(Delivery::kFull); rc != kOk) return rc;
  const bool is_leaf = !containers_.IsEmpty() && !leaf_candidate_.IsEmpty() && !candidate_is_container_;
  // A name that fits a ByteString's own storage is copied without fail, so
  // the leaf can close under the candidate's name before the new name
  // replaces it; a long name is copied first, as its copy may fail.
  const bool close_first = is_leaf && name.size() <= static_cast<size_t>(ByteString::kInlineCapacity);
  if (is_leaf) leaf_name_at_ = leaf_candidate_at_;
  if (close_first) {
    if (int rc = CloseLeafAtTag(leaf_candidate_.View()); rc != kOk) return rc;
  } else if (is_leaf) {
    leaf_name_.Swap(leaf_candidate_);
  }
  if (int rc = leaf_candidate_.Assign(name); rc != kOk) return Fail(rc);
  candidate_is_container_ = IsContainer(name);
  if (is_leaf && !close_first) {
    if (int rc = CloseLeafAtTag(leaf_name_.View()); rc != kOk) return rc;
  }
  // The name follows "<"; tag_start_ - inserted_ is where "<" is in the input.
  leaf_candidate_at_ = tag_start_ + 1 - inserted_;
  // After the leaf's records, so that the tag mark is where this element's
  // own declarations begin.
  if (build_dom_) tree_.MarkTag();
  token_.SetLength(0);
  attribute_name_.SetLength(0);
  return kOk;
}

// Closes the leaf `leaf` where the current tag begins. The kept
// text "...<NEW" plus the byte that ended the name becomes "...</OLD><NEW"
// plus that byte ("...</NAME>" becomes "...</OLD></NAME>" for an end tag),
// and positions continue from there.
int MarkupParser::CloseLeafAtTag(std::string_view leaf) {
  if (retained_ != nullptr && !RetainedNameMatches(leaf, leaf_name_at_)) {
    if (int rc = CopyKeptText(); rc != kOk) return rc;
  }
  if (retained_ != nullptr) {
    // As below, the kept text ends at the tag while the leaf closes.
    kept_limit_ = tag_start_;
    if (int rc = EndTag(leaf, true, false); rc != kOk) return rc;
    kept_limit_ = -1;
    const uint32_t length = static_cast<uint32_t>(leaf.size()) + 3;
    tag_start_ += length;
    char_count_ += length;
    return kOk;
  }
  const bool rewrite = keep_text_ && tag_start_ <= static_cast<uint32_t>(kept_.Length());
  if (rewrite) {
    if (int rc = kept_tail_.Assign(kept_.Data() + tag_start_, kept_.Length() - static_cast<int32_t>(tag_start_));
        rc != kOk) {
      return Fail(rc);
    }
    kept_.Truncate(static_cast<int32_t>(tag_start_));
  }
  if (int rc = EndTag(leaf, true, false); rc != kOk) return rc;
  if (rewrite) {
    tag_start_ = static_cast<uint32_t>(kept_.Length());
    if (int rc = kept_.Append(kept_tail_.View()); rc != kOk) return Fail(rc);
    char_count_ = static_cast<uint32_t>(kept_.Length());
  }
  return kOk;
}

int MarkupParser::AttributeComplete() {
  // "<A b/>" completes b at "/" and again at ">"; the second has no name.
  if (attribute_name_.IsEmpty()) return kOk;
  int rc = kOk;
  if (attribute_name_.Length() > 4 && attribute_name_.StartsWith("xmlns")) {
    std::string_view prefix = attribute_name_.View().substr(5);
    if (!prefix.empty() && prefix[0] == ':') prefix.remove_prefix(1);
    if ((rc = namespaces_.Add(prefix, token_.View())) != kOk) return Fail(rc);
    const int32_t entry = namespaces_.Count();
    namespace_depths_[entry - 1] = static_cast<uint32_t>(open_.Count() + 1);
    if (listener_ != nullptr) {
      if ((rc = listener_->OnStartNamespace(namespaces_.NameAt(entry - 1).Data(), token_.Data())) != kOk) return rc;
    }
    if (build_dom_) {
      if ((rc = tree_.AddNamespace(prefix, token_.View(), entry)) != kOk) return Fail(rc);
    }
  } else if ((rc = attributes_.Add(attribute_name_.View(), token_.View())) != kOk) {
    return Fail(rc);
  }
  attribute_name_.SetLength(0);
  token_.SetLength(0);
  return kOk;
}

int MarkupParser::TagComplete() { return StartElement(prev_ == '/'); }

int MarkupParser::ResolvePrefix(std::string_view qualified, bool is_attribute, int32_t& entry,
                                std::string_view& local) {
  entry = 0;
  local = qualified;
  size_t colon = 0;  // names are short: a loop beats a call to memchr
  while (colon < qualified.size() && qualified[colon] != ':') ++colon;
  if (colon == qualified.size()) {
    if (!is_attribute && namespaces_.Count() > 0) entry = namespaces_.Find({}, true) + 1;
    return kOk;
  }
  const std::string_view prefix = qualified.substr(0, colon);
  // The xml prefix is bound by definition; attributes carry no declaration record for it.
  if (is_attribute && prefix == "xml") {
    local = qualified.substr(colon + 1);
    return kOk;
  }
  const int32_t found = namespaces_.Find(prefix, true);
  if (found >= 0) {
    entry = found + 1;
    local = qualified.substr(colon + 1);
    return kOk;
  }
  const int code = is_attribute ? kErrBadAttributePrefix : kErrBadElementPrefix;
  const int rc = Fail(code,
                      is_attribute ? "Unknown attribute prefix (can't find namespace): "
                                   : "Unknown element prefix (can't find namespace): ",
                      prefix);
  if (!HasFlag(is_attribute ? kIgnoreBadAttributePrefixes : kIgnoreBadElementPrefixes)) return rc;
  if (listener_ != nullptr) listener_->FireError(code, error_text_.Data());
  return kOk;
}

int MarkupParser::StartElement(bool is_empty) {
  const std::string_view name = leaf_candidate_.View();
  if (int rc = open_.Add(name); rc != kOk) return Fail(rc);
  int32_t entry = 0;
  std::string_view local;
  // Most documents declare no namespace and use no prefix.
  if (namespaces_.Count() == 0 && !HasColon(name)) {
    local = name;
  } else if (int rc = ResolvePrefix(name, false, entry, local); rc != kOk) {
    return rc;
  }
  if (listener_ != nullptr) {
    const char* uri = entry > 0 ? namespaces_.ValueAt(entry - 1).Data() : "";
    const ByteString local_copy(local);
    if (int rc = listener_->OnStartTag(uri, local_copy.Data(), leaf_candidate_.Data(), is_empty); rc != kOk) {
      return rc;
    }
  }
  if (build_dom_) {
    const int32_t depth = open_.Count();
    if (int rc = tree_.OpenElement(local, depth, entry, static_cast<uint32_t>(namespaces_.Count()), is_empty,
                                   static_cast<uint32_t>(attributes_.Count()), tag_start_, char_count_);
        rc != kOk) {
      return Fail(rc);
    }
    for (int32_t i = 0; i < attributes_.Count(); ++i) {
      int32_t attribute_entry = 0;
      std::string_view attribute_local;
      if (int rc = ResolvePrefix(attributes_.NameAt(i).View(), true, attribute_entry, attribute_local); rc != kOk) {
        return rc;
      }
      if (int rc = tree_.AddAttribute(attribute_local, attributes_.ValueAt(i).View(), attribute_entry); rc != kOk) {
        return Fail(rc);
      }
    }
  }
  if (attributes_.Count() > 0) attributes_.Clear();
  if (!is_empty) {
    if (containers_.IsEmpty()) leaf_candidate_.SetLength(0);
    return kOk;
  }
  if (int rc = pending_name_.Assign(leaf_candidate_); rc != kOk) return Fail(rc);
  if (containers_.IsEmpty()) leaf_candidate_.SetLength(0);
  return EndTag(pending_name_.View(), false, true);
}

int MarkupParser::EndTag(std::string_view name, bool is_implicit, bool is_empty) {
  if (int rc = Deliver(Delivery::kFull); rc != kOk) return rc;
  if (!is_implicit) {
    if (!containers_.IsEmpty() && !leaf_candidate_.IsEmpty() && !candidate_is_container_ &&
        !SameName(leaf_candidate_.View(), name)) {
      // Closing changes no name; only a long name's copy could fail.
      std::string_view leaf = leaf_candidate_.View();
      if (leaf.size() > static_cast<size_t>(ByteString::kInlineCapacity)) {
        if (int rc = leaf_name_.Assign(leaf_candidate_); rc != kOk) return Fail(rc);
        leaf = leaf_name_.View();
      }
      leaf_name_at_ = leaf_candidate_at_;
      if (int rc = CloseLeafAtTag(leaf); rc != kOk) return rc;
    }
    leaf_candidate_.SetLength(0);
  }
  if (is_implicit && keep_text_ && retained_ != nullptr) {
    const uint32_t length = static_cast<uint32_t>(name.size()) + 3;
    if (!insertions_.Append({tag_start_, tag_start_ - inserted_, leaf_name_at_, length - 3})) {
      return Fail(kErrOutOfMemory);
    }
    inserted_ += length;
    kept_limit_ = tag_start_ + length;
  } else if (is_implicit && keep_text_) {
    if (kept_.Append("</", 2) != kOk || kept_.Append(name) != kOk || kept_.AppendChar('>') != kOk) {
      return Fail(kErrOutOfMemory);
    }
  }
  // Only a listener uses the namespace; a prefix must resolve all the same.
  if (listener_ != nullptr || HasColon(name)) {
    int32_t entry = 0;
    std::string_view local;
    if (int rc = ResolvePrefix(name, false, entry, local); rc != kOk) return rc;
    if (listener_ != nullptr) {
      const ByteString qualified(name);
      const ByteString local_copy(local);
      const char* uri = entry > 0 ? namespaces_.ValueAt(entry - 1).Data() : "";
      if (int rc = listener_->OnEndTag(uri, local_copy.Data(), qualified.Data(), is_empty); rc != kOk) return rc;
    }
  }
  const int32_t depth = open_.Count();
  if (build_dom_ && depth > 0) {
    ByteString& pending = open_.ValueBuffer(depth - 1);
    if (span_depth_ == depth) {
      span_depth_ = 0;
      if (int rc = tree_.SetText(depth, span_data_, span_length_); rc != kOk) return Fail(rc);
    } else if (!pending.IsEmpty()) {
      if (int rc = tree_.SetText(depth, pending.Data(), pending.Length()); rc != kOk) return Fail(rc);
      pending.SetLength(0);
    }
    // A leaf closed implicitly ends where its synthesized end tag begins.
    tree_.CloseElement(depth, is_implicit ? tag_start_ : char_count_, tag_start_);
  }
  if (depth == 0 || !SameName(open_.LastName().View(), name)) {
    return Fail(kErrUnbalancedTag, "Unbalanced element tag: ", name);
  }
  while (namespaces_.Count() > 0 && namespace_depths_[namespaces_.Count() - 1] == static_cast<uint32_t>(depth)) {
    const int32_t entry_number = namespaces_.Count();
    if (listener_ != nullptr) {
      if (int rc = listener_->OnEndNamespace(namespaces_.NameAt(entry_number - 1).Data()); rc != kOk) return rc;
    }
    if (build_dom_) tree_.CloseNamespace(entry_number);
    namespaces_.RemoveLast();
  }
  open_.ValueBuffer(depth - 1).SetLength(0);
  open_.RemoveLast();
  if (!is_implicit) token_.SetLength(0);
  return kOk;
}

int MarkupParser::ResolveReference(uint8_t ch, ByteString& target) {
  if (int rc = Deliver(Delivery::kFull); rc != kOk) return rc;
  entity_value_.SetLength(0);
  if (build_dom_) {
    const std::string_view name = entity_name_.View();
    if (name == "lt") {
      entity_value_.AppendChar('<');
    } else if (name == "gt") {
      entity_value_.AppendChar('>');
    } else if (name == "amp") {
      entity_value_.AppendChar('&');
    } else if (name == "apos") {
      entity_value_.AppendChar('\'');
    } else if (name == "quot") {
      entity_value_.AppendChar('"');
    } else if (const int byte = CharacterReference(name); byte != 0) {
      entity_value_.AppendChar(static_cast<char>(byte));
    }
  }
  if (entity_value_.IsEmpty()) {
    if (entity_value_.AppendChar('&') != kOk || entity_value_.Append(entity_name_) != kOk ||
        (ch == ';' && entity_value_.AppendChar(';') != kOk)) {
      return Fail(kErrOutOfMemory);
    }
  }
  if (listener_ != nullptr) {
    if (int rc = listener_->OnEntity(entity_name_.Data(), entity_value_); rc != kOk) return rc;
  }
  return target.Append(entity_value_) == kOk ? kOk : Fail(kErrOutOfMemory);
}

int MarkupParser::FinishSection() {
  if (listener_ != nullptr) {
    if (int rc = listener_->OnSection(token_.Data(), text_.Data()); rc != kOk) return rc;
  }
  if (token_.Equals("CDATA") && build_dom_ && open_.Count() > 0) {
    if (int rc = MaterializeSpan(); rc != kOk) return rc;
    if (int rc = open_.ValueBuffer(open_.Count() - 1).Append(text_); rc != kOk) return Fail(rc);
  }
  text_.SetLength(0);
  token_.SetLength(0);
  return kOk;
}

int MarkupParser::Finish() {
  if (failed_ != kOk) return failed_;
  if (int rc = Deliver(Delivery::kTailTrimmed); rc != kOk) return Settle(rc);
  if (open_.Count() > 0) return Settle(Fail(kErrUnbalancedDocument));
  if (tree_.TopCount() > 1 && !HasFlag(kAllowMoreThanOneRoot)) return Settle(Fail(kErrMoreThanOneRoot));
  if (state_ != kText && state_ != kAfterTag) return Settle(Fail(kErrInvalidEndState));
  return kOk;
}


bool MarkupParser::RetainedNameMatches(std::string_view name, uint32_t at) const {
  const uint64_t consumed = char_count_ - inserted_;
  if (name.empty() || at + static_cast<uint64_t>(name.size()) >= consumed) return false;
  if (!SameBytes(retained_ + at, name.data(), name.size())) return false;
  // The name is read back up to the first byte that cannot continue it.
  return !IsNameChar(static_cast<uint8_t>(retained_[at + name.size()]));
}

int32_t MarkupParser::KeptLength() const {
  if (retained_ == nullptr) return kept_.Length();
  return static_cast<int32_t>(kept_limit_ >= 0 ? kept_limit_ : char_count_);
}

template <typename Sink>
void MarkupParser::ForEachKeptPiece(uint32_t begin, uint32_t end, Sink&& sink) const {
  InsertionLog::Cursor next = insertions_.Seek(begin, retained_);
  uint32_t pos = begin;
  while (pos < end) {
    if (next.Valid() && pos >= next->at) {
      const InsertionLog::Entry& in = *next;
      const uint32_t length = in.Length();
      const uint32_t from = pos - in.at;
      const uint32_t to = end - in.at < length ? end - in.at : length;
      // "</", the name, ">": each clipped to [from, to).
      const auto emit = [&](uint32_t lo, uint32_t hi, const char* bytes) {
        const uint32_t a = from > lo ? from : lo;
        const uint32_t b = to < hi ? to : hi;
        if (a < b) sink(bytes + (a - lo), b - a);
      };
      emit(0, 2, "</");
      emit(2, 2 + in.name_length, retained_ + in.name_at);
      emit(2 + in.name_length, length, ">");
      pos = in.at + to;
      next.Next();
      continue;
    }
    const uint32_t shift = next.Valid() ? next->at - next->input_at : inserted_;
    const uint32_t stop = next.Valid() && next->at < end ? next->at : end;
    sink(retained_ + (pos - shift), stop - pos);
    pos = stop;
  }
}

int MarkupParser::CutKeptText(uint32_t begin, uint32_t end, ByteString& out) const {
  const uint32_t length = static_cast<uint32_t>(KeptLength());
  if (end > length) end = length;
  if (end <= begin) return out.Clear();
  if (retained_ == nullptr) return out.Assign(kept_.Data() + begin, static_cast<int32_t>(end - begin));
  if (int rc = out.SetLength(static_cast<int32_t>(end - begin)); rc != kOk) {
    out.Clear();
    return rc;
  }
  char* to = out.MutableData();
  ForEachKeptPiece(begin, end, [&](const char* bytes, uint32_t n) {
    std::memcpy(to, bytes, n);
    to += n;
  });
  return kOk;
}

ByteString MarkupParser::KeptText() const {
  ByteString copy;
  CutKeptText(0, static_cast<uint32_t>(KeptLength()), copy);
  return copy;
}

size_t MarkupParser::KeptTextMemory() const {
  if (retained_ == nullptr) return static_cast<size_t>(kept_.Capacity());
  return insertions_.Memory();
}

int MarkupParser::CopyKeptText() {
  const uint32_t length = static_cast<uint32_t>(KeptLength());
  kept_.Truncate(0);
  if (int rc = kept_.Reserve(static_cast<int32_t>(length)); rc != kOk) return Fail(rc);
  ForEachKeptPiece(0, length, [&](const char* bytes, uint32_t n) { kept_.Append(bytes, static_cast<int32_t>(n)); });
  retained_ = nullptr;
  insertions_.Clear();
  kept_limit_ = -1;
  return kOk;
}

}  // namespace orvelan
