#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "base/error_codes.h"
#include "http/inflater.h"
#include "net/line_buffer.h"

namespace orvelan {

// Where the parser reports what it found. Views are valid during the call only.
class HttpResponseSink {
 public:
  virtual ~HttpResponseSink() = default;
  // A final (non-1xx) status line, split at its first two blanks.
  virtual void OnStatus(std::string_view version, int code, std::string_view description) = 0;
  // One header line: `line` as received without its line end, and its split;
  // a line without colon is all name, a folded line has an empty name.
  virtual void OnHeader(std::string_view line, std::string_view name, std::string_view value) = 0;
  virtual void OnHeadEnd() = 0;
  // Decoded body bytes; `received` counts decoded bytes so far and `percent`
  // is -1 while the length is unknown.
  virtual void OnBody(std::string_view data, int64_t received, int percent) = 0;
  virtual void OnEnd() = 0;
};

// The socket-free half of the HTTP client: turns response bytes, cut anywhere,
// into status, headers and a decoded body (identity, length-delimited,
// close-delimited or chunked; gzip or deflate when compression is allowed).
//
//   HttpResponseParser parser(&sink);
//   parser.Begin(/*allow_compression=*/true);
//   while (bytes arrive) if (int rc = parser.Feed(bytes)) return rc;
//   parser.Finish();  // the peer closed: ends a close-delimited body
//
// A failure is sticky: Feed keeps returning the code (102 bad gzip header;
// 151 decompression failure, or a Content-Length that overflows or disagrees
// with an earlier one) and ErrorText() names it. Not thread-safe.
class HttpResponseParser {
 public:
  enum class State : uint8_t {
    kStatusLine, kInterim, kHeaders, kBody, kChunkSize, kChunkData, kChunkDataEnd, kDone, kFailed
  };

  explicit HttpResponseParser(HttpResponseSink* sink);
  HttpResponseParser(const HttpResponseParser&) = delete;
  HttpResponseParser& operator=(const HttpResponseParser&) = delete;

  // Starts a new response; `no_body` for the answer to HEAD, whose length
  // headers describe a body that is not sent.
  void Begin(bool allow_compression, bool no_body = false);
  int Feed(std::string_view bytes);
  // The connection ended: a body without length is complete.
  void Finish();

  State state() const { return state_; }
  bool IsComplete() const { return state_ == State::kDone; }
  bool HasStatus() const { return status_code_ != 0; }
  int StatusCode() const { return status_code_; }
  int64_t ContentLength() const { return content_length_; }
  bool IsChunked() const { return chunked_; }
  const char* ErrorText() const { return error_text_; }

 private:
  int HandleLine(std::string_view line);
  void ParseStatusLine(std::string_view line);
  void ParseHeader(std::string_view line);
  void EndHead();
  int Body(std::string_view data);
  int Fail(int code, const char* text);
  void End();

  HttpResponseSink* sink_;  // not owned
  LineBuffer lines_{4000};
  Inflater inflater_;
  const char* error_text_ = "";
  int64_t content_length_ = -1;
  int64_t wire_body_ = 0;     // body bytes as sent, before decoding
  int64_t received_ = 0;      // decoded body bytes
  uint64_t chunk_left_ = 0;
  int status_code_ = 0;
  int error_code_ = 0;
  State state_ = State::kStatusLine;
  Inflater::Format encoding_ = Inflater::Format::kNone;
  bool allow_compression_ = false;
  bool chunked_ = false;
  bool no_body_ = false;
  bool content_length_seen_ = false;
};

}  // namespace orvelan
