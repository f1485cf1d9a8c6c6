#pragma once
#include <zlib.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "base/error_codes.h"

namespace orvelan {

// Inflates an HTTP body sent with "Content-Encoding: gzip" or "deflate" as it
// arrives in pieces. gzip bodies have their RFC 1952 header checked and
// skipped by hand; both are then inflated as raw deflate, which is what
// servers that say "deflate" usually send. The z_stream lives here by value
// and is ended only if it was initialised. Not thread-safe.
class Inflater {
 public:
  enum class Format : uint8_t { kNone = 0, kGzip = 1, kDeflate = 2 };
  enum Result : int { kOk = orvelan::kOk, kBadHeader = kErrBadGzipHeader, kFailed = kErrHttp };

  Inflater() = default;
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater();

  // Starts a new body; kNone passes bytes through unchanged. Returns kFailed
  // when zlib cannot be initialised.
  int Start(Format format);
  void Reset();
  Format format() const { return format_; }

  // Most bytes handed to `emit` at once.
  static constexpr size_t kOutputStep = 65536;
  // Hands the inflated form of `input` to `emit` in steps of at most
  // kOutputStep bytes, each valid during the call only: a small body that
  // inflates to gigabytes is never held whole. Empty steps are not handed on.
  // A decoder that failed stays failed. The gzip header must be whole in the
  // first piece that reaches it.
  int Inflate(std::string_view input, const std::function<void(std::string_view)>& emit);

  // Length of the gzip header at the front of `bytes`, or -1 when it is
  // invalid or cut short.
  static int64_t GzipHeaderLength(std::string_view bytes);

 private:
  z_stream stream_{};
  std::unique_ptr<char[]> step_;  // kOutputStep bytes, made on first use
  Format format_ = Format::kNone;
  bool initialised_ = false;
  bool header_done_ = false;
  bool failed_ = false;
};

}  // namespace orvelan
