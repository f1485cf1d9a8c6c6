#include "core/file_handle.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "core/file_name.h"

namespace orvelan {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class FileHandleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(::mkdtemp(dir_.data()), nullptr);
    std::ofstream(path_ = dir_ + "/f", std::ios::binary) << "0123456789";
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  std::string dir_ = "/tmp/file_handle_test.XXXXXX";
  std::string path_;
};

TEST_F(FileHandleTest, FailuresReportTheirCodes) {
  const char* file = path_.c_str();
  const std::string missing = dir_ + "/missing", no_dir = dir_ + "/no/such/file";
  FileName wide;
  wide.SetWideName(L"f");
  char buffer[16] = {};
  const struct { const char* name; std::function<int(FileHandle&)> run; int code; bool open_after; } cases[] = {
      {"read a missing file", [&](FileHandle& f) { return f.OpenRead(missing.c_str(), 0); }, 3, false},
      {"skip before the start", [&](FileHandle& f) { return f.OpenRead(file, -1); }, 8, true},
      {"write in a missing directory", [&](FileHandle& f) { return f.OpenWrite(no_dir.c_str(), 5); }, 4, false},
      {"a wide name", [&](FileHandle& f) { f.OpenRead(file, 0); return f.OpenRead(wide, 0); }, 4, false},
      {"write without a file", [&](FileHandle& f) { return f.Write("x"); }, 5, false},
      {"read a directory", [&](FileHandle& f) { f.OpenRead(dir_.c_str(), 0); return f.ReadExact(buffer, 1); },
       6, false},
      {"write a read-only file", [&](FileHandle& f) { f.OpenRead(file, 0); return f.Write("x"); }, 7, false},
      {"read past the end", [&](FileHandle& f) { f.OpenRead(file, 0); return f.ReadExact(buffer, 11); }, 10, false},
  };
  for (const auto& c : cases) {
    FileHandle handle;
    EXPECT_EQ(c.run(handle), c.code) << c.name;
    EXPECT_EQ(handle.IsOpen(), c.open_after) << c.name;
  }
}

// Reopening closes the earlier descriptor; the one held is close-on-exec. A
// missing file is created with the gap reading as zeros, its mode narrowed by
// the umask alone.
TEST_F(FileHandleTest, WritesAndReadsAtOffsets) {
  const int next_fd = ::dup(0);
  ::close(next_fd);
  FileHandle file;
  ASSERT_EQ(file.OpenWrite(path_.c_str(), 4), 0);  // in place, no truncation
  EXPECT_EQ(file.Write("ab"), 0);
  ASSERT_EQ(file.OpenRead(path_.c_str(), 3), 0);
  EXPECT_NE(::fcntl(next_fd, F_GETFD) & FD_CLOEXEC, 0);
  char buffer[7];
  ASSERT_EQ(file.ReadExact(buffer, 7), 0);  // exactly to the end
  EXPECT_EQ(std::string(buffer, 7), "3ab6789");
  ASSERT_EQ(file.OpenWrite(path_.c_str(), 0), 0);
  EXPECT_EQ(file.Size(), 0);  // truncated
  const mode_t saved = ::umask(0);
  const int opened = file.OpenWrite((dir_ + "/fresh").c_str(), 3);
  ::umask(saved);
  ASSERT_EQ(opened, 0);
  EXPECT_EQ(file.Write("z"), 0);
  file.Close();
  EXPECT_EQ(::fcntl(next_fd, F_GETFD), -1);
  EXPECT_EQ(ReadFile(dir_ + "/fresh"), std::string("\0\0\0z", 4));
  struct stat st;
  ASSERT_EQ(::stat((dir_ + "/fresh").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0666u);
}


// A timer without SA_RESTART interrupts the writer while a slow reader keeps
// the pipe full, so Write sees both EINTR and partial counts.
TEST_F(FileHandleTest, WriteResumesAfterInterruptsAndPartialWrites) {
  const std::string fifo = dir_ + "/fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::string sent(1 << 20, '\0'), received;
  for (size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 31 + (i >> 12));
  sigset_t alarm, old;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  pthread_sigmask(SIG_BLOCK, &alarm, &old);  // the reader inherits the block
  std::thread reader([&] {
    FileHandle in;
    char chunk[4096];
    in.OpenRead(fifo.c_str(), 0);
    for (int n = 1; in.ReadExact(chunk, sizeof chunk) == 0; ++n) {
      received.append(chunk, sizeof chunk);
      if (n % 32 == 0) ::usleep(3000);
    }
  });
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  struct sigaction action = {}, saved;
  action.sa_handler = [](int) {};
  ::sigaction(SIGALRM, &action, &saved);
  const itimerval every_ms = {{0, 1000}, {0, 1000}}, off = {};
  ::setitimer(ITIMER_REAL, &every_ms, nullptr);
  FileHandle out;
  const int written = out.OpenWrite(fifo.c_str(), 0) == 0 ? out.Write(sent.data(), sent.size()) : -1;
  out.Close();
  ::setitimer(ITIMER_REAL, &off, nullptr);
  ::sigaction(SIGALRM, &saved, nullptr);
  reader.join();
  EXPECT_EQ(written, 0);
  EXPECT_TRUE(received == sent) << received.size() << " of " << sent.size() << " bytes arrived";
}

}  // namespace
}  // namespace orvelan
