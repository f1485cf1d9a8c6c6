#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "core/component_core.h"
#include "markup/markup_parser.h"

// A parsed document with a cursor that short path strings move, and the
// accessors every OFX service reads elements with.
//
//   doc.Reset();
//   doc.SetBuildDOM(true);
//   if (doc.Parse(response) != 0) ...;            // message in GetLastError()
//   doc.SelectPath("/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/BANKTRANLIST");
//   doc.SelectPath("STMTTRN[2]");                  // cursor on the second one
//   if (doc.HasPath("MEMO")) ...                   // cursor stays
//   doc.SelectPath("../STMTTRN[3]");
//
// Paths: "/NAME/..." absolute, "NAME", "NAME[3]", "NAME[@attr]",
// "NAME[@attr='v']", "[2]", "[last()]", "[last()-1]", ".." and "*N" (the
// element record at arena offset N). A failing step leaves the cursor on the
// last element reached. Texts returned stay valid until the next call that
// changes the document or the same accessor. Not thread-safe.
namespace orvelan {

class MarkupDocument : public ComponentCore, public MarkupListener {
 public:
  MarkupDocument();

  // Handles the document's settings (see the .cc for the list) before the core's.
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  // Resets the parser, the tree, the kept text and the path; the container
  // list and the options stay.
  int Reset();
  void SetBuildDOM(bool on) { parser_.SetBuildDOM(on); }
  void SetValidate(bool on) { parser_.SetValidate(on); }
  void SetKeepOriginalText(bool on) { parser_.SetKeepOriginalText(on); }
  void SetHTMLComments(bool on) { parser_.SetHTMLComments(on); }
  int AddSGMLTag(const char* name);
  // Registers each comma-separated name; an empty name ends the list.
  int SetExtraTags(const char* names);
  const char* ExtraTags() const { return parser_.ContainerList().Data(); }

  // Feeds the whole text; on failure the parser's message becomes the error text.
  int Parse(const char* text);
  int Parse(std::string_view bytes);
  // Parse for a text the caller keeps, unchanged, until the next Reset: the
  // kept text refers to it rather than holding a second copy.
  int ParseRetained(std::string_view bytes);
  int SelectPath(std::string_view path);
  // Whether SelectPath would succeed; cursor, path and error text are left as they were.
  bool HasPath(std::string_view path);
  // SelectPath when HasPath holds, walking once; otherwise false, leaving
  // everything as HasPath does.
  bool SelectPathIfPresent(std::string_view path);
  const char* CurrentPath() const { return canonical_.Data(); }

  // Accessors at the cursor; "" (or 0) without one.
  const char* ElementName();
  const char* ElementText() const;
  // The element's markup as read; 214 in the error text without KeepOriginalText.
  const char* ElementSubtree();
  const char* ElementContents();
  int32_t ChildCount() const;
  const char* ElementNamespace() const;
  const char* ElementPrefix() const;
  const char* ParentName() const;

  // Child `index` (from 0) without moving the cursor; "" for a bad index.
  const char* ChildName(int32_t index);
  const char* ChildNamespace(int32_t index);
  const char* ChildPrefix(int32_t index);
  const char* ChildText(int32_t index);
  // 0, or 432 with "No elements available." or "Invalid element index." as the error text.
  int CheckChildIndex(int32_t index);

  int32_t NamespaceCount() const;
  // Index from 0, taken as an unsigned 16-bit value; "" for a bad index.
  const char* NamespacePrefix(int32_t index) const;
  const char* NamespaceURI(int32_t index) const;
  // 0, or 432 with "No namespaces available." or "Invalid namespace index.".
  int CheckNamespaceIndex(int32_t index);

  MarkupParser& Parser() { return parser_; }
  DocumentTree& Tree() { return parser_.Tree(); }

 private:
  int ParseText(std::string_view bytes, bool retained);
  int Walk(std::string_view path);
  int WalkRelative(std::string_view path);
  void DropLastStep();
  void AppendStep(const char* name, int32_t index, bool bracket_only);
  void RebuildPath();
  uint32_t ChildElement(int32_t index);
  // Cuts [begin, end) of the kept text into `out`; empty when reversed or outside.
  const char* CutKeptText(uint32_t begin, uint32_t end, ByteString& out);

  ByteString subtree_;
  ByteString contents_;
  MarkupParser parser_;
  ByteString canonical_;
  ByteString attribute_value_;
};

}  // namespace orvelan
