#pragma once
#include <cstddef>
#include <cstdint>

#include "base/unique_fd.h"

namespace orvelan {

class FileName;

// One open file at a time, reporting failures as small result codes that the
// layer using the file turns into its own message (the OFX log, data files,
// transcripts). Files are opened, used and closed within one operation.
//
//   FileHandle file;
//   if (int rc = file.Create(path); rc != 0) return rc;
//   if (int rc = file.Write(request.Data(), request.Length()); rc != 0) return rc;
//   file.Close();
//
// Every open closes the previous file first. Descriptors are opened
// close-on-exec; new files get permissions 0666 less the process umask.
// Move-only; not thread-safe.
class FileHandle {
 public:
  static constexpr int kOpenReadFailed = 3;
  // Also: a FileName that does not hold a narrow name.
  static constexpr int kOpenWriteFailed = 4;
  static constexpr int kNotOpen = 5;
  static constexpr int kReadFailed = 6;
  static constexpr int kWriteFailed = 7;
  static constexpr int kSeekFailed = 8;
  static constexpr int kShortRead = 10;

  FileHandle() = default;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  FileHandle(FileHandle&&) noexcept = default;
  FileHandle& operator=(FileHandle&&) noexcept = default;
  // Closes an open file.
  ~FileHandle() = default;

  // Opens path read-only. With offset 0 the result is 0 or kOpenReadFailed.
  // Otherwise the position then moves by offset from the start, and any
  // failure, the open's included, gives kSeekFailed; a file whose seek failed
  // stays open.
  int OpenRead(const char* path, int64_t offset);

  // With offset 0, creates or truncates path for writing (as Create).
  // Otherwise opens it read-write without truncating, creating it if missing,
  // and moves to offset, so later writes overwrite in place:
  // kOpenWriteFailed when the open fails, kSeekFailed when the seek does (the
  // file then stays open).
  int OpenWrite(const char* path, int64_t offset);

  // Creates or truncates path for writing; 0 or kOpenWriteFailed.
  int Create(const char* path);

  // As above with the name's narrow form; kOpenWriteFailed, for reading too,
  // when the holder is not in narrow mode (any open file is closed first).
  int OpenRead(const FileName& name, int64_t offset);
  int OpenWrite(const FileName& name, int64_t offset);

  // Writes all length bytes, resuming after partial writes and interrupts.
  // kNotOpen without a file; kWriteFailed when the system refuses, and the
  // file is then closed. A null text writes nothing.
  int Write(const void* bytes, size_t length);
  int Write(const char* text);

  // Reads exactly length bytes into buffer, resuming after partial reads and
  // interrupts. kNotOpen without a file; kReadFailed on a read error and
  // kShortRead when the file ends first, both of which close the file. After
  // kShortRead the buffer holds the bytes that were there.
  int ReadExact(void* buffer, size_t length);

  // The open file's size in bytes; -1 without a file or when fstat fails.
  int64_t Size() const;

  // lseek: the new position from the start, or -1 (also without a file).
  int64_t Seek(int64_t offset, int whence);

  // Closes an open file; always 0.
  int Close();

  bool IsOpen() const { return fd_.is_valid(); }

 private:
  // Opens with flags after closing the current file; false when open fails.
  bool Reopen(const char* path, int flags);
  // kSeekFailed when moving offset bytes from the current position fails.
  int SkipForward(int64_t offset);

  UniqueFd fd_;
};

}  // namespace orvelan
