#pragma once
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace orvelan {

// Sole owner of a POSIX descriptor, as unique_ptr is of a pointer: closes it
// when destroyed or replaced. -1 stands for "no descriptor".
//
//   UniqueFd fd(::open(path, O_RDONLY | O_CLOEXEC));
//   if (fd.get() < 0) return kOpenReadFailed;
//   ... ::read(fd.get(), ...) ...          // closed when fd goes out of scope
//
// Move-only; moving leaves the source at -1. Not thread-safe.
class UniqueFd {
 public:
  UniqueFd() noexcept = default;
  // Takes ownership of fd; a negative value means none.
  explicit UniqueFd(int fd) noexcept : fd_(fd < 0 ? -1 : fd) {}
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  ~UniqueFd() { reset(); }

  // The descriptor, still owned by this object; -1 when none.
  int get() const noexcept { return fd_; }
  bool is_valid() const noexcept { return fd_ >= 0; }

  // Gives up ownership without closing; the caller now owns the result.
  int release() noexcept { return std::exchange(fd_, -1); }

  // Closes the current descriptor (if any) and takes ownership of fd.
  void reset(int fd = -1) noexcept {
    const int old = std::exchange(fd_, fd < 0 ? -1 : fd);
    // Linux releases the descriptor even when close reports EINTR, so a retry
    // could close a descriptor another thread has just been given.
    if (old >= 0 && old != fd_) ::close(old);
  }

 private:
  int fd_ = -1;
};

// Writes every byte, resuming after short writes and EINTR; false on any
// other failure (errno tells which).
inline bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

}  // namespace orvelan
