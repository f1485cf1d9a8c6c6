#pragma once
// Runs one timed case in a fresh child process, so that the peak memory it
// reports belongs to that case alone, and hands its figures back through a
// pipe. Shared by the timing programs.
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace orvelan::bench {

struct Run {
  double seconds = 0;
  double parse_seconds = 0;   // the parse alone, where a case has one
  long peak_growth_kib = 0;   // peak resident size over the size before the case
  // The case once more in the same process, its memory now recycled.
  double warm_seconds = 0;
  double warm_parse_seconds = 0;
};

// The process's CPU time (user and system, page faults included), which a busy
// shared machine disturbs far less than the clock on the wall.
inline double CpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// A field of /proc/self/status, in KiB.
inline long StatusKiB(const char* field) {
  std::FILE* status = std::fopen("/proc/self/status", "r");
  long kib = 0;
  char line[256];
  const size_t length = std::strlen(field);
  while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
    if (std::strncmp(line, field, length) == 0) kib = std::atol(line + length);
  }
  if (status != nullptr) std::fclose(status);
  return kib;
}

inline long ResidentKiB() { return StatusKiB("VmRSS:"); }
inline long PeakKiB() { return StatusKiB("VmHWM:"); }

// A child starts with its parent's high-water mark; this lowers it to the
// resident size now, so that a case's peak is its own.
inline void ResetPeak() {
  if (std::FILE* f = std::fopen("/proc/self/clear_refs", "w")) {
    std::fputs("5", f);
    std::fclose(f);
  }
}

// The whole file, or the process ends: a benchmark without its input has
// nothing to report.
inline std::string ReadFile(const std::string& path) {
  std::string text;
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    std::fseek(f, 0, SEEK_END);
    text.resize(static_cast<size_t>(std::ftell(f)));
    std::fseek(f, 0, SEEK_SET);
    if (std::fread(&text[0], 1, text.size(), f) != text.size()) text.clear();
    std::fclose(f);
  }
  if (text.empty()) std::_Exit(1);
  return text;
}

// Times `body(seconds, parse_seconds)` twice in the child: the first run's
// figures and peak, and the second's times, its memory recycled as in a host
// that reads statement after statement.
template <typename Body>
Run ColdThenWarm(Body&& body) {
  // Freed memory stays with the process, so the second run finds it warm.
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  const long before = ResidentKiB();
  Run run;
  body(run.seconds, run.parse_seconds);
  run.peak_growth_kib = PeakKiB() - before;
  body(run.warm_seconds, run.warm_parse_seconds);
  return run;
}

// `body` runs in the child and returns its Run, or exits non-zero on failure.
template <typename Body>
Run RunInChild(Body&& body) {
  int fds[2];
  if (pipe(fds) != 0) std::exit(1);
  const pid_t child = fork();
  if (child == 0) {
    close(fds[0]);
    ResetPeak();
    const Run run = body();
    if (write(fds[1], &run, sizeof run) != static_cast<ssize_t>(sizeof run)) std::_Exit(1);
    std::_Exit(0);
  }
  close(fds[1]);
  Run run;
  const bool ok = read(fds[0], &run, sizeof run) == static_cast<ssize_t>(sizeof run);
  close(fds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!ok || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::fprintf(stderr, "a timed case failed\n");
    std::exit(1);
  }
  return run;
}

template <typename T>
T Median(std::vector<T> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace orvelan::bench
