#pragma once
#include <cstdlib>
#include <fstream>
#include <string>

namespace orvelan {

// The long runs (ORVELAN_LONG=1, `make test-long`) take full size; every
// other run a scaled-down variant.
inline bool LongRun() {
  const char* value = std::getenv("ORVELAN_LONG");
  return value != nullptr && std::string(value) == "1";
}

// Under AddressSanitizer freed memory waits in quarantine, and under either
// sanitizer every byte has shadow, so resident sizes say nothing about the
// library: the memory bounds hold in ordinary builds only.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kMemoryIsMeasured = false;
#else
inline constexpr bool kMemoryIsMeasured = true;
#endif

// A field of /proc/self/status, in KiB.
inline long StatusKiB(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, field.size(), field) == 0) return std::stol(line.substr(field.size()));
  }
  return -1;
}

}  // namespace orvelan
