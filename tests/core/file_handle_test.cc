#include "core/file_handle.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "core/file_name.h"

namespace orvelan {
namespace {

// The descriptors this process has open right now.
std::set<int> OpenDescriptors() {
  std::set<int> fds;
  DIR* dir = ::opendir("/proc/self/fd");
  if (dir == nullptr) return fds;
  const int own = ::dirfd(dir);
  while (const dirent* entry = ::readdir(dir)) {
    if (entry->d_name[0] == '.') continue;
    const int fd = std::atoi(entry->d_name);
    if (fd != own) fds.insert(fd);
  }
  ::closedir(dir);
  return fds;
}

std::string Pattern(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 31) ^ (i >> 8));
  return bytes;
}

class FileHandleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/file_handle_test.XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    for (const std::string& name : created_) ::unlink(Path(name).c_str());
    ::rmdir(dir_.c_str());
  }

  // A path inside the test's own directory, removed again in TearDown.
  std::string Path(const std::string& name) {
    created_.insert(name);
    return dir_ + "/" + name;
  }
  std::string WriteFile(const std::string& name, const std::string& content) {
    const std::string path = Path(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
  }

  std::string dir_;
  std::set<std::string> created_;
};

TEST_F(FileHandleTest, OpenFailuresReportTheirCodes) {
  const std::string missing = dir_ + "/missing";
  const std::string no_dir = dir_ + "/no/such/dir/file";
  FileHandle file;
  EXPECT_EQ(file.OpenRead(missing.c_str(), 0), FileHandle::kOpenReadFailed);
  EXPECT_EQ(file.OpenRead(missing.c_str(), 5), FileHandle::kSeekFailed);
  EXPECT_EQ(file.OpenRead(static_cast<const char*>(nullptr), 0), FileHandle::kOpenReadFailed);
  EXPECT_EQ(file.OpenWrite(no_dir.c_str(), 0), FileHandle::kOpenWriteFailed);
  EXPECT_EQ(file.OpenWrite(no_dir.c_str(), 5), FileHandle::kOpenWriteFailed);
  EXPECT_EQ(file.Create(no_dir.c_str()), FileHandle::kOpenWriteFailed);
  EXPECT_EQ(file.Create(dir_.c_str()), FileHandle::kOpenWriteFailed);  // a directory
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(FileHandleTest, ClosedHandleRefusesEverything) {
  FileHandle file;
  char buffer[4];
  EXPECT_EQ(file.Write("abc"), FileHandle::kNotOpen);
  EXPECT_EQ(file.Write("", 0), FileHandle::kNotOpen);
  EXPECT_EQ(file.ReadExact(buffer, sizeof buffer), FileHandle::kNotOpen);
  EXPECT_EQ(file.Size(), -1);
  EXPECT_EQ(file.Seek(0, SEEK_SET), -1);
  EXPECT_EQ(file.Close(), 0);
}

TEST_F(FileHandleTest, CreateTruncatesAndWritesAll) {
  const std::string path = WriteFile("f", "old content that is long");
  FileHandle file;
  ASSERT_EQ(file.Create(path.c_str()), 0);
  EXPECT_EQ(file.Size(), 0);
  const std::string big = Pattern(200000);
  EXPECT_EQ(file.Write(big.data(), big.size()), 0);
  EXPECT_EQ(file.Write(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(file.Write("tail"), 0);
  EXPECT_EQ(file.Size(), static_cast<int64_t>(big.size() + 4));
  file.Close();
  EXPECT_EQ(ReadFile(path), big + "tail");

  // OpenWrite without an offset truncates as well.
  ASSERT_EQ(file.OpenWrite(path.c_str(), 0), 0);
  EXPECT_EQ(file.Write("new"), 0);
  file.Close();
  EXPECT_EQ(ReadFile(path), "new");
}

TEST_F(FileHandleTest, OpenWriteWithOffsetOverwritesInPlace) {
  const std::string path = WriteFile("f", "0123456789");
  FileHandle file;
  ASSERT_EQ(file.OpenWrite(path.c_str(), 4), 0);
  EXPECT_EQ(file.Write("ab"), 0);
  file.Close();
  EXPECT_EQ(ReadFile(path), "0123ab6789");

  // A missing file is created; the gap before the offset reads as zeros.
  const std::string fresh = Path("fresh");
  ASSERT_EQ(file.OpenWrite(fresh.c_str(), 3), 0);
  EXPECT_EQ(file.Write("z"), 0);
  file.Close();
  EXPECT_EQ(ReadFile(fresh), std::string("\0\0\0z", 4));

  // Before the start of the file.
  EXPECT_EQ(file.OpenWrite(path.c_str(), -1), FileHandle::kSeekFailed);
  EXPECT_EQ(ReadFile(path), "0123ab6789");
}

TEST_F(FileHandleTest, OpenReadWithOffsetStartsThere) {
  const std::string path = WriteFile("f", "0123456789");
  FileHandle file;
  char buffer[3];
  ASSERT_EQ(file.OpenRead(path.c_str(), 6), 0);
  ASSERT_EQ(file.ReadExact(buffer, 3), 0);
  EXPECT_EQ(std::string(buffer, 3), "678");
  EXPECT_EQ(file.Seek(0, SEEK_CUR), 9);

  EXPECT_EQ(file.OpenRead(path.c_str(), -1), FileHandle::kSeekFailed);

  ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
  EXPECT_EQ(file.Size(), 10);
  EXPECT_EQ(file.Seek(-2, SEEK_END), 8);
  ASSERT_EQ(file.ReadExact(buffer, 2), 0);
  EXPECT_EQ(std::string(buffer, 2), "89");
  EXPECT_EQ(file.Seek(-1, SEEK_SET), -1);
  EXPECT_TRUE(file.IsOpen());  // a failed Seek leaves the file alone
}

TEST_F(FileHandleTest, ReadFailuresCloseTheFile) {
  const std::string path = WriteFile("f", "abcde");
  FileHandle file;
  char buffer[8] = {};
  ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
  EXPECT_EQ(file.ReadExact(buffer, 8), FileHandle::kShortRead);
  EXPECT_EQ(std::string(buffer, 5), "abcde");
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.ReadExact(buffer, 1), FileHandle::kNotOpen);

  // Exactly to the end is no short read; one more byte is.
  ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
  EXPECT_EQ(file.ReadExact(buffer, 5), 0);
  EXPECT_EQ(file.ReadExact(buffer, 0), 0);
  EXPECT_EQ(file.ReadExact(buffer, 1), FileHandle::kShortRead);

  // A directory opens read-only but cannot be read.
  ASSERT_EQ(file.OpenRead(dir_.c_str(), 0), 0);
  EXPECT_EQ(file.ReadExact(buffer, 1), FileHandle::kReadFailed);
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(FileHandleTest, WriteFailureClosesTheFile) {
  FileHandle file;
  if (file.OpenWrite("/dev/full", 0) != 0) GTEST_SKIP() << "no writable /dev/full";
  EXPECT_EQ(file.Write("x"), FileHandle::kWriteFailed);
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(FileHandleTest, NewFilesGet0666LessTheUmask) {
  struct Case {
    mode_t umask;
    mode_t expected;
  };
  const Case cases[] = {{0, 0666}, {022, 0644}, {077, 0600}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.umask);
    const mode_t saved = ::umask(c.umask);
    const std::string a = Path("created" + std::to_string(c.umask));
    const std::string b = Path("opened" + std::to_string(c.umask));
    FileHandle file;
    const int created = file.Create(a.c_str());
    const int opened = file.OpenWrite(b.c_str(), 1);
    ::umask(saved);
    ASSERT_EQ(created, 0);
    ASSERT_EQ(opened, 0);
    struct stat st;
    ASSERT_EQ(::stat(a.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, c.expected);
    ASSERT_EQ(::stat(b.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, c.expected);
  }
}

TEST_F(FileHandleTest, OwnsExactlyOneCloseOnExecDescriptor) {
  const std::string path = WriteFile("f", "abc");
  const std::set<int> before = OpenDescriptors();
  {
    FileHandle file;
    ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
    ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);  // reopening must not leak
    ASSERT_EQ(file.OpenWrite(path.c_str(), 1), 0);
    const std::set<int> during = OpenDescriptors();
    ASSERT_EQ(during.size(), before.size() + 1);
    for (int fd : during) {
      if (before.count(fd) == 0) {
        EXPECT_NE(::fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
      }
    }

    // Moving hands the descriptor on; the one moved over is closed.
    FileHandle other;
    ASSERT_EQ(other.OpenRead(path.c_str(), 0), 0);
    other = std::move(file);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(OpenDescriptors(), during);
  }
  EXPECT_EQ(OpenDescriptors(), before);

  // A failed open after a good one leaves nothing open either.
  FileHandle file;
  ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
  EXPECT_EQ(file.OpenRead((dir_ + "/missing").c_str(), 0), FileHandle::kOpenReadFailed);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(FileHandleTest, FileNameMustBeNarrow) {
  const std::string path = WriteFile("f", "abc");
  FileName name;
  ASSERT_EQ(name.SetNarrowName(path.c_str()), 0);
  EXPECT_EQ(name.Mode(), FileName::kNarrow);
  FileHandle file;
  ASSERT_EQ(file.OpenWrite(name, 3), 0);
  ASSERT_EQ(file.Write("d"), 0);
  file.Close();
  EXPECT_EQ(ReadFile(path), "abcd");

  // A wide name drops the narrow one, so nothing is opened by mistake.
  EXPECT_EQ(name.SetWideName(L"f"), -1);
  EXPECT_EQ(name.Mode(), FileName::kWide);
  EXPECT_STREQ(name.NarrowName(), "");
  EXPECT_STREQ(name.WideName(), "");
  ASSERT_EQ(file.OpenRead(path.c_str(), 0), 0);
  EXPECT_EQ(file.OpenRead(name, 0), FileHandle::kOpenWriteFailed);
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.OpenWrite(name, 0), FileHandle::kOpenWriteFailed);
  EXPECT_EQ(ReadFile(path), "abcd");

  ASSERT_EQ(name.SetNarrowName(path.c_str()), 0);
  EXPECT_EQ(file.OpenRead(name, 0), 0);
}

// Blocking pipe I/O is cut short by signals and by a peer that delivers or
// drains in small pieces; whole transfers must still go through.
class InterruptingTimer {
 public:
  InterruptingTimer() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: system calls see EINTR or return short
    ::sigaction(SIGALRM, &action, &saved_alarm_);
    // A peer that gives up early must fail the test, not kill it.
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &action, &saved_pipe_);
    const itimerval every_ms = {{0, 1000}, {0, 1000}};
    ::setitimer(ITIMER_REAL, &every_ms, nullptr);
  }
  ~InterruptingTimer() {
    const itimerval off = {};
    ::setitimer(ITIMER_REAL, &off, nullptr);
    ::sigaction(SIGPIPE, &saved_pipe_, nullptr);
    ::sigaction(SIGALRM, &saved_alarm_, nullptr);
  }

 private:
  struct sigaction saved_alarm_;
  struct sigaction saved_pipe_;
};

// Runs fn on a thread that never takes SIGALRM, so the signals land on the
// thread under test.
std::thread PeerThread(std::function<void()> fn) {
  sigset_t alarm, old;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  pthread_sigmask(SIG_BLOCK, &alarm, &old);
  std::thread peer(std::move(fn));
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  return peer;
}

TEST_F(FileHandleTest, WriteSurvivesInterruptsAndPartialWrites) {
  const std::string fifo = Path("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const std::string sent = Pattern(1 << 20);
  std::string received;
  InterruptingTimer timer;
  std::thread reader = PeerThread([&] {
    const int fd = ::open(fifo.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    char chunk[4096];
    for (int chunks = 1;; ++chunks) {
      const ssize_t n = ::read(fd, chunk, sizeof chunk);
      if (n <= 0) break;
      received.append(chunk, static_cast<size_t>(n));
      // Pauses of several timer periods let the pipe fill, so that a write
      // finds it full and is interrupted before it moves a byte.
      if (chunks % 32 == 0) ::usleep(3000);
    }
    ::close(fd);
  });
  FileHandle file;
  const int opened = file.OpenWrite(fifo.c_str(), 0);
  const int written = opened == 0 ? file.Write(sent.data(), sent.size()) : -1;
  file.Close();
  reader.join();
  EXPECT_EQ(opened, 0);
  EXPECT_EQ(written, 0);
  EXPECT_TRUE(received == sent) << received.size() << " of " << sent.size() << " bytes arrived";
}

TEST_F(FileHandleTest, ReadExactSurvivesInterruptsAndPartialReads) {
  const std::string fifo = Path("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const std::string sent = Pattern(300000);
  InterruptingTimer timer;
  std::thread writer = PeerThread([&] {
    const int fd = ::open(fifo.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) return;
    for (size_t at = 0; at < sent.size(); at += 1000) {
      if (::write(fd, sent.data() + at, std::min<size_t>(1000, sent.size() - at)) < 0) break;
      ::usleep(20);
    }
    ::close(fd);
  });
  FileHandle file;
  std::string received(sent.size(), '\0');
  const int opened = file.OpenRead(fifo.c_str(), 0);
  const int result = opened == 0 ? file.ReadExact(&received[0], received.size()) : -1;
  file.Close();
  writer.join();
  EXPECT_EQ(opened, 0);
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(received == sent);
}

}  // namespace
}  // namespace orvelan
