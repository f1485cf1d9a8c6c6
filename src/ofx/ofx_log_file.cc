#include "ofx/ofx_log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "base/error_codes.h"
#include "base/unique_fd.h"

namespace orvelan {
namespace {

constexpr char kRequestBegin[] = "\r\n\r\n================== BEGIN OFX REQUEST ==================\r\n\r\n";
constexpr char kRequestEnd[] = "\r\n\r\n================== END OFX REQUEST ==================\r\n\r\n";
constexpr char kResponseBegin[] = "\r\n\r\n================== BEGIN OFX RESPONSE ==================\r\n\r\n";
constexpr char kResponseEnd[] = "\r\n\r\n================== END OFX RESPONSE ==================";

// Closes explicitly so that a failing close can be reported.
bool CloseChecked(UniqueFd& fd) { return ::close(fd.release()) == 0; }

}  // namespace

int OFXLogFile::Fail(int code, const char* text) {
  error_text_ = text;
  return code;
}

int OFXLogFile::WriteRequest(std::string_view request) {
  UniqueFd fd(::open(path_, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!fd.is_valid()) return Fail(kErrCannotCreate, "Cannot create OFX log file.");
  WriteAll(fd.get(), kRequestBegin);
  if (!WriteAll(fd.get(), request)) return Fail(kErrCannotWrite, "Cannot write in OFX log file.");
  WriteAll(fd.get(), kRequestEnd);
  if (!CloseChecked(fd)) return Fail(kErrCannotClose, "Cannot close OFX log file.");
  return 0;
}

int OFXLogFile::WriteResponse(std::string_view response) {
  UniqueFd fd(::open(path_, O_WRONLY | O_APPEND | O_CLOEXEC));
  if (!fd.is_valid()) return Fail(kErrCannotOpen, "Cannot open OFX log file.");
  WriteAll(fd.get(), kResponseBegin);
  if (!WriteAll(fd.get(), response)) return Fail(kErrCannotWrite, "Cannot append to OFX log file.");
  WriteAll(fd.get(), kResponseEnd);
  if (!CloseChecked(fd)) return Fail(kErrCannotClose, "Cannot close open OFX log file.");
  return 0;
}

}  // namespace orvelan
