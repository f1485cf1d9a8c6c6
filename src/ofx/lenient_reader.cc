#include "ofx/lenient_reader.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "base/error_codes.h"
#include "markup/char_classes.h"

namespace orvelan {
namespace {

constexpr size_t kNone = std::string_view::npos;

bool White(std::string_view text, size_t at) { return markup::IsWhite(static_cast<uint8_t>(text[at])); }
bool NameStart(std::string_view text, size_t at) {
  return at < text.size() && markup::IsNameStart(static_cast<uint8_t>(text[at]));
}
size_t NameEnd(std::string_view text, size_t at) {
  while (at < text.size() && markup::IsNameChar(static_cast<uint8_t>(text[at]))) ++at;
  return at;
}

// Past the comment, marked section, declaration or instruction that begins
// at `at` ("<!" or "<?"); the text's end when it is not closed.
size_t SkipSpecial(std::string_view text, size_t at) {
  std::string_view close = ">";
  if (text.substr(at, 4) == "<!--") {
    close = "-->";
  } else if (text.substr(at, 3) == "<![") {
    close = "]]>";
  } else if (text.substr(at, 2) == "<?") {
    close = "?>";
  }
  const size_t end = text.find(close, at + 2);
  return end == kNone ? text.size() : end + close.size();
}

struct Tag {
  std::string_view name;
  size_t at = 0;  // the "<"
  bool is_end = false;
  bool is_empty = false;     // "<NAME/>"
  bool opens_child = false;  // the next markup, past white space and comments, is a start tag
};

// The next start or end tag at or after `pos`, skipping comments, marked
// sections, declarations and instructions; false at the end.
bool NextTag(std::string_view text, size_t& pos, Tag& tag) {
  const size_t n = text.size();
  while (pos < n) {
    const void* found = std::memchr(text.data() + pos, '<', n - pos);
    if (found == nullptr) break;
    const size_t at = static_cast<size_t>(static_cast<const char*>(found) - text.data());
    pos = at + 1;
    if (pos < n && (text[pos] == '!' || text[pos] == '?')) {
      pos = SkipSpecial(text, at);
      continue;
    }
    const bool is_end = pos < n && text[pos] == '/';
    const size_t name = is_end ? pos + 1 : pos;
    if (!NameStart(text, name)) continue;
    const size_t name_end = NameEnd(text, name);
    const size_t close = text.find('>', name_end);
    if (close == kNone) break;
    tag = Tag{text.substr(name, name_end - name), at, is_end, !is_end && text[close - 1] == '/', false};
    pos = close + 1;
    if (!is_end && !tag.is_empty) {
      size_t next = pos;
      for (;;) {
        while (next < n && White(text, next)) ++next;
        if (text.substr(next, 4) != "<!--") break;
        next = SkipSpecial(text, next);
      }
      tag.opens_child = next < n && text[next] == '<' && NameStart(text, next + 1);
    }
    return true;
  }
  pos = n;
  return false;
}

// "NAME:" in capitals: a line of an OFX 1.x header.
bool IsHeaderLine(std::string_view line) {
  size_t i = 0;
  while (i < line.size() && line[i] >= 'A' && line[i] <= 'Z') ++i;
  return i > 0 && i < line.size() && line[i] == ':';
}

}  // namespace

void LenientReader::Add(int code, size_t offset, std::string text) {
  text += " (byte " + std::to_string(offset) + ").";
  repairs_.push_back({code, static_cast<uint32_t>(offset), std::move(text)});
}

int LenientReader::Prepare(std::string_view input, MarkupParser& parser, std::string_view& text) {
  repairs_.clear();
  list_length_ = parser.ContainerList().Length();
  const size_t start = SkipPrologue(input);
  const std::string_view body = input.substr(start);
  int rc = LearnAggregates(body, static_cast<uint32_t>(start), parser);
  if (rc == kOk) rc = CloseOpenAggregates(body, static_cast<uint32_t>(start), parser, text);
  if (rc != kOk) Forget(parser);
  return rc;
}

void LenientReader::Forget(MarkupParser& parser) {
  if (list_length_ >= 0) parser.TruncateContainerList(list_length_);
  list_length_ = -1;
}

size_t LenientReader::SkipPrologue(std::string_view input) {
  const size_t n = input.size();
  const size_t first = repairs_.size();
  size_t pos = 0;
  while (pos < n && White(input, pos)) ++pos;
  if (pos > 0) Add(kRepairTextBeforeHeader, 0, "White space before the header skipped");
  size_t body = kNone, xml_declaration = kNone, junk_at = kNone, junk_bytes = 0;
  bool header_lines = false, header_tags = false;
  while (pos < n && body == kNone) {
    if (White(input, pos)) {
      ++pos;
      continue;
    }
    const bool is_markup = input[pos] == '<' && pos + 1 < n;
    if (is_markup && (input[pos + 1] == '!' || input[pos + 1] == '?')) {
      const size_t end = SkipSpecial(input, pos);
      const std::string_view piece = input.substr(pos, end - pos);
      if (piece.substr(0, 5) == "<?xml") {
        xml_declaration = pos;
      } else if (piece.substr(0, 4) == "<!--" && piece.find("OFXHEADER") != kNone) {
        Add(kRepairHeaderInComment, pos, "Header inside a comment skipped");
      }
      pos = end;
      continue;
    }
    size_t end;
    bool is_junk;
    if (is_markup && (input[pos + 1] == '/' || NameStart(input, pos + 1))) {
      const std::string_view name = input.substr(pos + 1, NameEnd(input, pos + 1) - pos - 1);
      const size_t after = pos + 1 + name.size();
      if (name == "OFX" && (after == n || input[after] == '>' || White(input, after))) {
        body = pos;
        break;
      }
      if (name == "OFXHEADER" && !header_tags) {
        header_tags = true;
        Add(kRepairHeaderAsTags, pos, "Header written as tags skipped");
      }
      end = input.find('>', pos);
      end = end == kNone ? n : end + 1;
      is_junk = !header_tags;
    } else {
      end = pos + 1;
      while (end < n && input[end] != '\n' && input[end] != '\r' && input[end] != '<') ++end;
      const bool is_header_line = !header_tags && IsHeaderLine(input.substr(pos, end - pos));
      header_lines = header_lines || is_header_line;
      is_junk = !header_tags && !is_header_line;
    }
    if (is_junk) {
      if (junk_at == kNone) junk_at = pos;
      junk_bytes += end - pos;
    }
    pos = end;
  }
  if (body == kNone) {
    // Without <OFX> (a transaction response saved alone) there is no
    // prologue to tell from the document: it is read whole, as it is.
    repairs_.resize(first);
    return 0;
  }
  if (xml_declaration != kNone && header_lines) {
    Add(kRepairXmlDeclaration, xml_declaration, "XML declaration before an SGML header ignored");
  }
  if (junk_at != kNone) {
    // Quoted up to 40 bytes of its first line, so the host sees what went.
    const size_t line_end = input.find_first_of("\r\n", junk_at);
    const std::string_view line = input.substr(junk_at, std::min<size_t>(40, line_end - junk_at));
    Add(kRepairTextBeforeHeader, junk_at,
        std::to_string(junk_bytes) + " bytes of text before <OFX> skipped: \"" + std::string(line) + "\"");
  }
  std::stable_sort(repairs_.begin() + static_cast<std::ptrdiff_t>(first), repairs_.end(),
                   [](const Repair& a, const Repair& b) { return a.offset < b.offset; });
  return body;
}

int LenientReader::LearnAggregates(std::string_view body, uint32_t base, MarkupParser& parser) {
  struct Seen {
    size_t child_at = 0;
    bool has_child = false;
    bool has_end = false;
  };
  std::unordered_map<std::string_view, Seen> seen;
  std::vector<std::string_view> order;  // by the first start tag with a child
  size_t pos = 0;
  Tag tag;
  while (NextTag(body, pos, tag)) {
    if (parser.IsContainer(tag.name)) continue;
    Seen& s = seen[tag.name];
    if (tag.is_end) {
      s.has_end = true;
    } else if (tag.opens_child && !s.has_child) {
      s.has_child = true;
      s.child_at = tag.at;
      order.push_back(tag.name);
    }
  }
  for (const std::string_view name : order) {
    const Seen& s = seen[name];
    if (!s.has_end) continue;
    if (int rc = parser.AddSGMLTag(name); rc != kOk) return rc;
    Add(kRepairLearnedAggregate, base + s.child_at, "Aggregate " + std::string(name) + " learned from the document");
  }
  return kOk;
}

int LenientReader::CloseOpenAggregates(std::string_view body, uint32_t base, const MarkupParser& parser,
                                       std::string_view& text) {
  std::vector<std::string_view> open;
  std::vector<std::pair<size_t, std::string_view>> missing;  // where an end tag goes, and its name
  size_t pos = 0;
  Tag tag;
  while (NextTag(body, pos, tag)) {
    if (!parser.IsContainer(tag.name)) continue;
    if (!tag.is_end) {
      if (!tag.is_empty) open.push_back(tag.name);
      continue;
    }
    size_t depth = open.size();
    while (depth > 0 && open[depth - 1] != tag.name) --depth;
    if (depth == 0) continue;  // closes nothing open: the parser fails on it
    for (size_t i = open.size(); i > depth; --i) {
      missing.emplace_back(tag.at, open[i - 1]);
      Add(kRepairClosedAggregate, base + tag.at,
          "End tag </" + std::string(open[i - 1]) + "> missing, written in before </" + std::string(tag.name) + ">");
    }
    open.resize(depth - 1);
  }
  if (missing.empty()) {
    text = body;
    return kOk;
  }
  repaired_.Clear();
  size_t from = 0;
  int rc = kOk;
  for (const auto& [at, name] : missing) {
    rc |= repaired_.Append(body.substr(from, at - from)) | repaired_.Append("</", 2) | repaired_.Append(name) |
          repaired_.AppendChar('>');
    from = at;
  }
  rc |= repaired_.Append(body.substr(from));
  if (rc != kOk) return kErrOutOfMemory;
  text = repaired_.View();
  return kOk;
}

}  // namespace orvelan
