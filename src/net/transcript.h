#pragma once
#include <cstddef>
#include <string>
#include <string_view>

#include "core/file_handle.h"

namespace orvelan {

// The RecordToFile transcript of one connection: each piece sent becomes an
// `expect -exact "..."` line and each piece received a `send -nonewline "..."`
// line, escaped so that a script interpreter can replay the exchange.
// Open while a connection is up. Not thread-safe.
class Transcript {
 public:
  Transcript() = default;
  Transcript(const Transcript&) = delete;
  Transcript& operator=(const Transcript&) = delete;

  // Creates or truncates `path` (mode 0666 before the umask); returns the
  // file layer's code.
  int Open(const char* path);
  void Close() { file_.Close(); }
  bool IsOpen() const { return file_.IsOpen(); }

  // Appends one entry; a write error ends this entry and is returned.
  int Record(bool sent, std::string_view data);

  // The escaped form of `data`: NUL as "\000"; CR, LF and 32-126 copied, with
  // a backslash before \ $ " { } [ ]; any other byte as \ and three octal digits.
  static std::string Escape(std::string_view data);

 private:
  FileHandle file_;
};

}  // namespace orvelan
