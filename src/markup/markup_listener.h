#pragma once
#include <cstdint>

#include "base/byte_string.h"

// Receiver of the parser's events. Every operation returns 0 or an error code;
// a non-zero code stops the parse with that code. The defaults do nothing, so
// a receiver overrides only what it wants. Texts are valid during the call.
namespace orvelan {

class MarkupListener {
 public:
  virtual ~MarkupListener() = default;

  virtual int OnText(const char* /*text*/, int32_t /*length*/) { return 0; }
  virtual int OnComment(const char* /*text*/) { return 0; }
  virtual int OnEndTag(const char* /*uri*/, const char* /*local_name*/, const char* /*qualified_name*/,
                       bool /*is_empty*/) {
    return 0;
  }
  virtual int OnEndNamespace(const char* /*prefix*/) { return 0; }
  // A warning when the parse goes on (the Ignore...Prefixes options); its
  // result is then ignored.
  virtual int FireError(int /*code*/, const char* /*message*/) { return 0; }
  // `value` holds the replacement and may be changed.
  virtual int OnEntity(const char* /*name*/, ByteString& /*value*/) { return 0; }
  virtual int OnWhitespace(const char* /*text*/) { return 0; }
  virtual int OnDeclaration(const char* /*text*/) { return 0; }
  virtual int OnInstruction(const char* /*text*/) { return 0; }
  virtual int OnSection(const char* /*keyword*/, const char* /*content*/) { return 0; }
  virtual int OnStartTag(const char* /*uri*/, const char* /*local_name*/, const char* /*qualified_name*/,
                         bool /*is_empty*/) {
    return 0;
  }
  virtual int OnStartNamespace(const char* /*prefix*/, const char* /*uri*/) { return 0; }
  virtual int OnInputChar(char /*ch*/) { return 0; }
};

}  // namespace orvelan
