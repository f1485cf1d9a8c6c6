#include "core/file_handle.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "core/file_name.h"

namespace orvelan {
namespace {

constexpr mode_t kNewFileMode = 0666;  // the umask narrows it

}  // namespace

bool FileHandle::Reopen(const char* path, int flags) {
  fd_.reset();
  if (path == nullptr) return false;
  int fd;
  do {
    fd = ::open(path, flags | O_CLOEXEC, kNewFileMode);
  } while (fd < 0 && errno == EINTR);  // opening a FIFO can block
  fd_.reset(fd);
  return fd_.is_valid();
}

int FileHandle::SkipForward(int64_t offset) {
  // Without a file lseek fails with EBADF, which is what makes a failed open
  // with an offset report kSeekFailed.
  return ::lseek(fd_.get(), static_cast<off_t>(offset), SEEK_CUR) < 0 ? kSeekFailed : 0;
}

int FileHandle::OpenRead(const char* path, int64_t offset) {
  const bool opened = Reopen(path, O_RDONLY);
  if (offset != 0) return SkipForward(offset);
  return opened ? 0 : kOpenReadFailed;
}

int FileHandle::OpenWrite(const char* path, int64_t offset) {
  if (offset == 0) return Create(path);
  if (!Reopen(path, O_RDWR | O_CREAT)) return kOpenWriteFailed;
  return SkipForward(offset);
}

int FileHandle::Create(const char* path) {
  return Reopen(path, O_WRONLY | O_CREAT | O_TRUNC) ? 0 : kOpenWriteFailed;
}

int FileHandle::OpenRead(const FileName& name, int64_t offset) {
  if (!name.IsNarrow()) {
    Close();
    return kOpenWriteFailed;
  }
  return OpenRead(name.NarrowName(), offset);
}

int FileHandle::OpenWrite(const FileName& name, int64_t offset) {
  if (!name.IsNarrow()) {
    Close();
    return kOpenWriteFailed;
  }
  return OpenWrite(name.NarrowName(), offset);
}

int FileHandle::Write(const void* bytes, size_t length) {
  if (!IsOpen()) return kNotOpen;
  const char* p = static_cast<const char*>(bytes);
  while (length > 0) {
    const ssize_t n = ::write(fd_.get(), p, length);
    if (n < 0 && errno == EINTR) continue;
    // A zero count for a non-empty write would otherwise loop for ever.
    if (n <= 0) {
      fd_.reset();
      return kWriteFailed;
    }
    p += n;
    length -= static_cast<size_t>(n);
  }
  return 0;
}

int FileHandle::Write(const char* text) {
  return Write(text, text == nullptr ? 0 : std::strlen(text));
}

int FileHandle::ReadExact(void* buffer, size_t length) {
  if (!IsOpen()) return kNotOpen;
  char* p = static_cast<char*>(buffer);
  while (length > 0) {
    const ssize_t n = ::read(fd_.get(), p, length);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      fd_.reset();
      return n == 0 ? kShortRead : kReadFailed;
    }
    p += n;
    length -= static_cast<size_t>(n);
  }
  return 0;
}

int64_t FileHandle::Size() const {
  struct stat st;
  if (!IsOpen() || ::fstat(fd_.get(), &st) != 0) return -1;
  return static_cast<int64_t>(st.st_size);
}

int64_t FileHandle::Seek(int64_t offset, int whence) {
  if (!IsOpen()) return -1;
  return static_cast<int64_t>(::lseek(fd_.get(), static_cast<off_t>(offset), whence));
}

int FileHandle::Close() {
  fd_.reset();
  return 0;
}

}  // namespace orvelan
