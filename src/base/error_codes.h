#pragma once

// Result codes shared by every layer. 0 is success; the texts a host sees sit
// beside the code where the code has a fixed text.
namespace orvelan {

inline constexpr int kOk = 0;
// An unknown setting name, or an unknown or read-only property identifier.
inline constexpr int kErrUnknown = -1;

// Interrupted wait or time-out.
inline constexpr int kErrTimeout = 301;
inline constexpr char kTextInterrupted[] = "Interrupted.";
inline constexpr char kTextTimeout[] = "Timeout.";

// Memory could not be allocated.
inline constexpr int kErrOutOfMemory = 200;
inline constexpr char kTextOutOfMemory[] = "Out of memory.";

// A list index reached through X_CheckIndex.
inline constexpr int kErrCheckIndex = 280;
// A position or index outside the valid range.
inline constexpr int kErrIndexOutOfRange = 432;
// No response available, or a writer asked to overflow its buffer.
inline constexpr int kErrNoResponse = 508;

inline constexpr char kTextUnknownSetting[] = "Unknown config setting.";
inline constexpr char kTextNoDescription[] = "(no description available)";

}  // namespace orvelan
