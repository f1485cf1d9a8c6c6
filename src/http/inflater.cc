#include "http/inflater.h"

namespace orvelan {

Inflater::~Inflater() { Reset(); }

void Inflater::Reset() {
  if (initialised_) inflateEnd(&stream_);
  stream_ = z_stream{};
  initialised_ = false;
  header_done_ = false;
  failed_ = false;
  format_ = Format::kNone;
}

int Inflater::Start(Format format) {
  Reset();
  format_ = format;
  if (format == Format::kNone) return kOk;
  if (inflateInit2(&stream_, -15) != Z_OK) {
    failed_ = true;
    return kFailed;
  }
  initialised_ = true;
  header_done_ = format != Format::kGzip;
  return kOk;
}

int64_t Inflater::GzipHeaderLength(std::string_view bytes) {
  const auto* p = reinterpret_cast<const uint8_t*>(bytes.data());
  const size_t size = bytes.size();
  if (size < 10 || p[0] != 31 || p[1] != 139 || p[2] != 8) return -1;
  const uint8_t flags = p[3];
  if (flags & 0xE0) return -1;
  size_t at = 10;  // magic, method, flags, time, extra flags, OS
  if (flags & 4) {
    if (size < at + 2) return -1;
    at += 2 + (p[at] | (p[at + 1] << 8));
    if (at > size) return -1;
  }
  for (uint8_t zero_ended : {uint8_t{8}, uint8_t{16}}) {
    if (!(flags & zero_ended)) continue;
    while (at < size && p[at] != 0) ++at;
    if (at == size) return -1;
    ++at;
  }
  if (flags & 2) {
    at += 2;
    if (at > size) return -1;
  }
  return static_cast<int64_t>(at);
}

int Inflater::Inflate(std::string_view input, const std::function<void(std::string_view)>& emit) {
  if (failed_) return kFailed;
  if (format_ == Format::kNone) {
    if (!input.empty()) emit(input);
    return kOk;
  }
  if (!header_done_) {
    if (input.empty()) return kOk;
    const int64_t header = GzipHeaderLength(input);
    if (header < 0) {
      failed_ = true;
      return kBadHeader;
    }
    input.remove_prefix(static_cast<size_t>(header));
    header_done_ = true;
  }
  if (step_ == nullptr) step_.reset(new char[kOutputStep]);
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
  stream_.avail_in = static_cast<uInt>(input.size());
  do {
    stream_.next_out = reinterpret_cast<Bytef*>(step_.get());
    stream_.avail_out = static_cast<uInt>(kOutputStep);
    const int rc = inflate(&stream_, Z_SYNC_FLUSH);
    const size_t produced = kOutputStep - stream_.avail_out;
    if (produced > 0) emit(std::string_view(step_.get(), produced));
    if (rc == Z_STREAM_END) return kOk;  // a gzip trailer after the end is ignored
    if (rc == Z_BUF_ERROR && stream_.avail_in == 0) return kOk;
    if (rc != Z_OK) {
      failed_ = true;
      return kFailed;
    }
  } while (stream_.avail_out == 0 || stream_.avail_in > 0);
  return kOk;
}

}  // namespace orvelan
