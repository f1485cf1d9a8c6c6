#include "http/http_response_parser.h"

#include <cstring>

#include "base/text_util.h"

namespace orvelan {
namespace {

constexpr char kTextBadGzipHeader[] = "The GZIP header is invalid.";
constexpr char kTextDecompressFailed[] = "Could not decompress content.";
constexpr char kTextDecompressorInit[] = "Could not initialize decompressor.";
constexpr char kTextBadContentLength[] = "HTTP protocol error. Invalid Content-Length.";
constexpr char kTextConflictingContentLength[] = "HTTP protocol error. Conflicting Content-Length headers.";
constexpr int64_t kTooLong = -2;

std::string_view StripCr(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

bool ContainsNoCase(std::string_view text, std::string_view word) {
  for (size_t i = 0; i + word.size() <= text.size(); ++i) {
    if (EqualsNoCase(text.substr(i, word.size()), word)) return true;
  }
  return false;
}

// The leading decimal number of `text`; -1 without digits, kTooLong when it
// does not fit 63 bits.
int64_t ParseLength(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  int64_t value = 0;
  size_t i = 0;
  for (; i < text.size() && IsDigit(static_cast<unsigned char>(text[i])); ++i) {
    const int digit = text[i] - '0';
    if (value > (INT64_MAX - digit) / 10) return kTooLong;
    value = value * 10 + digit;
  }
  return i == 0 ? -1 : value;
}

// Chunk size before any extension; 0 for no digits or more than 15 of them,
// which ends the body rather than trusting a size that cannot be real.
uint64_t ParseChunkSize(std::string_view line) {
  uint64_t size = 0;
  size_t digits = 0;
  for (char c : line) {
    int v;
    if (c >= '0' && c <= '9') {
      v = c - '0';
    } else if (c >= 'a' && c <= 'f') {
      v = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
      v = c - 'A' + 10;
    } else {
      break;
    }
    if (++digits > 15) return 0;
    size = size * 16 + static_cast<uint64_t>(v);
  }
  return size;
}

}  // namespace

HttpResponseParser::HttpResponseParser(HttpResponseSink* sink) : sink_(sink) { lines_.SetMarker("\n"); }

void HttpResponseParser::Begin(bool allow_compression, bool no_body) {
  no_body_ = no_body;
  lines_.Clear();
  inflater_.Reset();
  error_text_ = "";
  content_length_ = -1;
  content_length_seen_ = false;
  wire_body_ = 0;
  received_ = 0;
  chunk_left_ = 0;
  status_code_ = 0;
  error_code_ = 0;
  state_ = State::kStatusLine;
  encoding_ = Inflater::Format::kNone;
  allow_compression_ = allow_compression;
  chunked_ = false;
}

int HttpResponseParser::Fail(int code, const char* text) {
  state_ = State::kFailed;
  error_code_ = code;
  error_text_ = text;
  return code;
}

void HttpResponseParser::End() {
  if (state_ == State::kDone || state_ == State::kFailed) return;
  state_ = State::kDone;
  sink_->OnEnd();
}

void HttpResponseParser::Finish() {
  if (state_ != State::kFailed) End();
}

int HttpResponseParser::Feed(std::string_view bytes) {
  for (;;) {
    switch (state_) {
      case State::kFailed:
        return error_code_;
      case State::kDone:
        return 0;  // bytes after the response are not ours
      case State::kBody: {
        if (bytes.empty()) return 0;
        std::string_view piece = bytes;
        if (content_length_ >= 0 && static_cast<uint64_t>(content_length_ - wire_body_) < piece.size()) {
          piece = piece.substr(0, static_cast<size_t>(content_length_ - wire_body_));
        }
        bytes.remove_prefix(piece.size());
        if (int rc = Body(piece); rc != 0) return rc;
        if (content_length_ >= 0 && wire_body_ >= content_length_) End();
        break;
      }
      case State::kChunkData: {
        if (bytes.empty()) return 0;
        const size_t n = chunk_left_ < bytes.size() ? static_cast<size_t>(chunk_left_) : bytes.size();
        chunk_left_ -= n;
        if (chunk_left_ == 0) state_ = State::kChunkDataEnd;
        if (int rc = Body(bytes.substr(0, n)); rc != 0) return rc;
        bytes.remove_prefix(n);
        break;
      }
      default: {
        // Line states take bytes only up to the first line end, so nothing
        // meant for the body is ever held in the line buffer.
        std::string_view line;
        if (lines_.NextLine(&line)) {
          if (int rc = HandleLine(line); rc != 0) return rc;
          break;
        }
        if (bytes.empty()) return 0;
        LineBuffer::Room room = lines_.FreeRoom();
        if (room.size == 0) {
          // A head line longer than the buffer is taken as it stands.
          if (int rc = HandleLine(lines_.TakeAll()); rc != 0) return rc;
          break;
        }
        const void* lf = std::memchr(bytes.data(), '\n', bytes.size());
        size_t n = lf == nullptr ? bytes.size() : static_cast<size_t>(static_cast<const char*>(lf) - bytes.data()) + 1;
        if (n > room.size) n = room.size;
        std::memcpy(room.data, bytes.data(), n);
        lines_.Commit(static_cast<uint32_t>(n));
        bytes.remove_prefix(n);
        break;
      }
    }
  }
}

int HttpResponseParser::HandleLine(std::string_view raw) {
  const std::string_view line = StripCr(raw);
  switch (state_) {
    case State::kStatusLine:
      if (line.empty() || line[0] != 'H') {
        // No head at all: the server sent the body straight away.
        state_ = State::kBody;
        std::string restored(raw);
        restored += '\n';
        return Body(restored);
      }
      ParseStatusLine(line);
      return 0;
    case State::kInterim:
      if (line.size() <= 1) {
        state_ = State::kStatusLine;
        status_code_ = 0;
      } else if (line[0] == 'H') {
        state_ = State::kStatusLine;
        ParseStatusLine(line);
      }
      return 0;
    case State::kHeaders:
      if (line.empty()) {
        EndHead();
        return 0;
      }
      ParseHeader(line);
      return state_ == State::kFailed ? error_code_ : 0;
    case State::kChunkSize:
      chunk_left_ = ParseChunkSize(line);
      if (chunk_left_ == 0) {
        End();  // trailers, if any, are not read
      } else {
        state_ = State::kChunkData;
      }
      return 0;
    case State::kChunkDataEnd:
      state_ = State::kChunkSize;
      return 0;
    default:
      return 0;
  }
}

void HttpResponseParser::ParseStatusLine(std::string_view line) {
  const size_t first = line.find(' ');
  std::string_view version = line.substr(0, first);
  std::string_view code_text;
  std::string_view description;
  if (first != std::string_view::npos) {
    const std::string_view rest = line.substr(first + 1);
    const size_t second = rest.find(' ');
    code_text = rest.substr(0, second);
    if (second != std::string_view::npos) description = rest.substr(second + 1);
  }
  const int64_t code = ParseLength(code_text);
  status_code_ = code < 0 || code > 999 ? 0 : static_cast<int>(code);
  if (status_code_ >= 100 && status_code_ <= 199) {
    state_ = State::kInterim;
    return;
  }
  state_ = State::kHeaders;
  sink_->OnStatus(version, status_code_, description);
}

void HttpResponseParser::ParseHeader(std::string_view line) {
  std::string_view name;
  std::string_view value;
  if (static_cast<unsigned char>(line[0]) <= ' ') {
    value = line.substr(1);
  } else {
    const size_t colon = line.find(':');
    name = line.substr(0, colon);
    if (colon != std::string_view::npos) {
      value = line.substr(colon + 1);
      while (!value.empty() && (value.front() == ' ' || value.front() == '\t')) value.remove_prefix(1);
    }
  }
  if (EqualsNoCase(name, "Content-Length")) {
    // Guessing which length is meant would misframe the body (and the next
    // response on a kept connection), so neither case is survivable.
    const int64_t length = ParseLength(value);
    if (length == kTooLong) {
      Fail(kErrHttp, kTextBadContentLength);
      return;
    }
    if (content_length_seen_ && length != content_length_) {
      Fail(kErrHttp, kTextConflictingContentLength);
      return;
    }
    content_length_seen_ = true;
    content_length_ = length;
  } else if (EqualsNoCase(name, "Transfer-Encoding")) {
    if (ContainsNoCase(value, "chunked")) chunked_ = true;
  } else if (allow_compression_ && EqualsNoCase(name, "Content-Encoding")) {
    encoding_ = EqualsNoCase(value, "gzip")      ? Inflater::Format::kGzip
                : EqualsNoCase(value, "deflate") ? Inflater::Format::kDeflate
                                                 : Inflater::Format::kNone;
    if (inflater_.Start(encoding_) != 0) {
      Fail(Inflater::kFailed, kTextDecompressorInit);
      return;
    }
  }
  sink_->OnHeader(line, name, value);
}

void HttpResponseParser::EndHead() {
  sink_->OnHeadEnd();
  if (no_body_) {
    End();
    return;
  }
  if (chunked_) {
    state_ = State::kChunkSize;
    return;
  }
  state_ = State::kBody;
  if (content_length_ == 0) End();
}

int HttpResponseParser::Body(std::string_view data) {
  wire_body_ += static_cast<int64_t>(data.size());
  int percent = -1;
  // The length on the wire is of the encoded body, so progress is measured there.
  if (content_length_ > 0 && !chunked_) {
    const int64_t p = wire_body_ * 100 / content_length_;
    percent = static_cast<int>(p > 100 ? 100 : p);
  }
  const auto deliver = [this, percent](std::string_view decoded) {
    received_ += static_cast<int64_t>(decoded.size());
    sink_->OnBody(decoded, received_, percent);
  };
  if (encoding_ == Inflater::Format::kNone) {
    deliver(data);
    return 0;
  }
  const int rc = inflater_.Inflate(data, deliver);
  if (rc == Inflater::kBadHeader) return Fail(rc, kTextBadGzipHeader);
  if (rc != 0) return Fail(rc, kTextDecompressFailed);
  return 0;
}

}  // namespace orvelan
