#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/unique_fd.h"
#include "core/component_core.h"
#include "net/ntlm_auth.h"
#include "net/transcript.h"

// What every network service shares beneath its connection: the socket
// descriptor and the wait loop that turns its readiness into events, the
// time-out clock, the traffic transcript, the socket settings, and the
// default error texts of the system error numbers.
//
// Blocking operations of the layers above run wait cycles:
//
//   StartDeadline();
//   while (!done) if (int rc = WaitCycle()) return rc;  // 301 on time-out or interrupt
//
// Each cycle is one select of at most SelectWaitMillis on the socket, which
// returns at once when the socket is ready, so waiting never delays ready data.
// Not thread-safe; Interrupt() may be called from an event handler.
namespace orvelan {

// Socket events, as dispatched to OnSocketEvent: the low 16 bits of the word
// carry the event, the high 16 bits an error number.
enum SocketEvent : uint32_t { kEventRead = 1, kEventWrite = 2, kEventConnect = 16, kEventClose = 32 };
inline constexpr int kSocketMessage = 101;

class SocketCore : public ComponentCore {
 public:
  SocketCore();
  ~SocketCore() override;

  int InitDefaults() override;
  // Adds "[code] text" from the system error table (or "(no description
  // available)") to the core's defaults; 301 reads "Interrupted." unless a
  // layer said "Timeout.".
  int FillDefaultErrorText(int code) override;
  int HandleConfig(ConfigArgument& argument, const char*& out) override;
  // One wait cycle's poll without waiting.
  int ProcessEvents(long timeout_ms) override;

  // The component's Timeout property: seconds, or milliseconds while
  // TimeoutInMilliseconds is on; held in milliseconds. 0 means no time-out.
  // A negative value also sets no deadline, and makes the HTTP layer work
  // asynchronously: a request returns at once and its exchange goes on as
  // the host pumps the socket's events.
  int32_t Timeout() const;
  int SetTimeout(int32_t value);

  // Whether the host drives the waiting through events 2000 to 2002.
  void SetExternalEventLoop(bool on) { external_event_loop_ = on; }
  bool ExternalEventLoop() const { return external_event_loop_; }

  // Asks the running blocking operation to stop with 301 "Interrupted.".
  void Interrupt();

  int SocketHandle() const { return socket_.get(); }

 protected:
  // One cycle: 0 to go on; 301 with "Timeout." or "Interrupted." to stop.
  int WaitCycle();
  // One poll of at most `timeout_ms` on the registered socket, dispatching
  // what is ready (connect, write, read; in that order) to OnSocketEvent.
  int PollSocket(long timeout_ms);
  void StartDeadline();
  // Traffic moves the deadline unless AbsoluteTimeout is on.
  void RestartDeadline() {
    if (!absolute_timeout_) StartDeadline();
  }
  bool DeadlinePassed() const;

  // Watches `fd` (switched to non-blocking) for `mask`; mask 0 unwatches.
  int WatchSocket(uint32_t mask);
  void AddEvents(uint32_t bits) { SetEventMask(event_mask_ | bits); }
  void RemoveEvents(uint32_t bits) { SetEventMask(event_mask_ & ~bits); }
  void SetEventMask(uint32_t mask);
  static uint64_t NowMs();

  UniqueFd socket_;
  NtlmAuth ntlm_;  // proxy authentication, for the HTTP layer and the tunnel
  Transcript transcript_;
  ByteString transcript_path_;
  uint64_t deadline_ms_ = 0;  // monotonic; 0 = none
  int64_t timeout_ms_ = 0;  // negative: asynchronous, no deadline
  int32_t select_wait_ms_ = 20;
  int64_t in_buffer_size_ = 65536;
  int64_t out_buffer_size_ = 65536;
  uint32_t event_mask_ = 0;
  long host_registration_ = 0;
  bool timeout_in_milliseconds_ = false;
  bool use_ipv6_ = false;
  bool secure_ = false;  // TLS carries the traffic: the transcript would be noise
  bool absolute_timeout_ = false;
  bool interrupt_requested_ = false;
  bool interrupted_ = false;
  bool ignore_external_events_ = false;
  bool pending_read_ = false;
  bool external_event_loop_ = false;
  bool watched_ = false;

 private:
  int Stop(const char* text);

  ByteString kerberos_spn_;
  bool use_system_sspi_ = false;
};

}  // namespace orvelan
