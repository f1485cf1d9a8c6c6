#include "net/socket_core.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

#include "core/error_text_table.h"
#include "core/setting_table.h"

namespace orvelan {

SocketCore::SocketCore() {
  // A send on a dead connection must return EPIPE, not end the host process.
  std::signal(SIGPIPE, SIG_IGN);
}

SocketCore::~SocketCore() {
  if (watched_ && external_event_loop_) FireUnwatchSocket(host_registration_);
}

int SocketCore::InitDefaults() {
  ComponentCore::InitDefaults();
  timeout_ms_ = 0;
  timeout_in_milliseconds_ = false;
  external_event_loop_ = false;
  select_wait_ms_ = 20;
  in_buffer_size_ = 65536;
  out_buffer_size_ = 65536;
  use_ipv6_ = false;
  absolute_timeout_ = false;
  ignore_external_events_ = false;
  transcript_path_.Clear();
  return 1;
}

int SocketCore::FillDefaultErrorText(int code) {
  if (code == kOk) return code;
  if (code == kErrTimeout) {
    if (HasNoErrorText()) SetErrorText(kTextInterrupted);
  } else if (code == kErrOutOfMemory) {
    SetErrorText(kTextOutOfMemory);
  } else if (HasNoErrorText()) {
    SetErrorText("[", code, "] ");
    const char* text = SystemErrorText(code);
    AppendErrorText(text != nullptr ? text : kTextNoDescription);
  }
  return code;
}

int SocketCore::HandleConfig(ConfigArgument& argument, const char*& out) {
  struct Buffer {
    // A new size reaches a live socket at once; 0 keeps the system's.
    static int Set(SocketCore& c, int64_t& size, int option, const ConfigArgument& argument) {
      size = argument.ValueAsInt();
      if (size == 0 || !c.socket_.is_valid()) return kOk;
      const int value = static_cast<int>(size);
      if (setsockopt(c.socket_.get(), SOL_SOCKET, option, &value, sizeof value) != 0) return errno;
      return kOk;
    }
  };
  using R = Setting<SocketCore>;
  static constexpr R kSettings[] = {
      R::Int<&SocketCore::select_wait_ms_>("SelectWaitMillis"),
      R::TrueFalse<&SocketCore::absolute_timeout_>("AbsoluteTimeout"),
      {"TimeoutInMilliseconds", R::QueryTrueFalse<&SocketCore::timeout_in_milliseconds_>,
       [](SocketCore& c, const ConfigArgument& argument) {
         // The number stays and changes its unit: Timeout 60 becomes 60 ms.
         const int32_t number = c.Timeout();
         c.timeout_in_milliseconds_ = argument.ValueAsBool();
         return c.SetTimeout(number);
       }},
      {"WinsockStatus", [](SocketCore& c, const char*& out) { return c.ReturnConfigValue(out, int64_t{0}); }},
      R::TrueFalse<&SocketCore::ignore_external_events_>("IgnoreExternalEvents"),
      R::TrueFalse<&SocketCore::use_ipv6_>("UseIPv6"),
      R::Text<&SocketCore::transcript_path_>("RecordToFile"),
      {"InBufferSize", R::QueryInt<&SocketCore::in_buffer_size_>,
       [](SocketCore& c, const ConfigArgument& argument) {
         return Buffer::Set(c, c.in_buffer_size_, SO_RCVBUF, argument);
       }},
      {"OutBufferSize", R::QueryInt<&SocketCore::out_buffer_size_>,
       [](SocketCore& c, const ConfigArgument& argument) {
         return Buffer::Set(c, c.out_buffer_size_, SO_SNDBUF, argument);
       }},
      R::Text<&SocketCore::kerberos_spn_>("KerberosSPN"),
      // No system security provider here: the setting is kept, the answer is no.
      {"UseSystemSSPI", [](SocketCore& c, const char*& out) { return AnswerTrueFalse(c, out, false); },
       [](SocketCore& c, const ConfigArgument& argument) {
         c.use_system_sspi_ = argument.ValueAsBool();
         return kOk;
       }},
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return ComponentCore::HandleConfig(argument, out);
}

int SocketCore::ProcessEvents(long /*timeout_ms*/) { return PollSocket(0); }

int32_t SocketCore::Timeout() const {
  return static_cast<int32_t>(timeout_in_milliseconds_ ? timeout_ms_ : timeout_ms_ / 1000);
}

int SocketCore::SetTimeout(int32_t value) {
  timeout_ms_ = timeout_in_milliseconds_ ? int64_t{value} : int64_t{value} * 1000;
  return kOk;
}

void SocketCore::Interrupt() {
  interrupt_requested_ = true;
  interrupted_ = false;
}

uint64_t SocketCore::NowMs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000 + static_cast<uint64_t>(now.tv_nsec) / 1000000;
}

void SocketCore::StartDeadline() {
  deadline_ms_ = timeout_ms_ <= 0 ? 0 : NowMs() + static_cast<uint64_t>(timeout_ms_);
}

// The tick drops the fraction of the millisecond in which the deadline was
// started; only a tick past the deadline guarantees the whole time-out passed.
bool SocketCore::DeadlinePassed() const { return deadline_ms_ != 0 && NowMs() > deadline_ms_; }

int SocketCore::Stop(const char* text) {
  SetErrorText(text);
  return kErrTimeout;
}

int SocketCore::WaitCycle() {
  if (interrupt_requested_) {
    interrupt_requested_ = false;
    interrupted_ = true;
    return Stop(kTextInterrupted);
  }
  if (external_event_loop_) {
    PollSocket(0);
    long wait_ms = select_wait_ms_;
    FireWaitForEvents(wait_ms);
    if (wait_ms == -1) {
      interrupt_requested_ = true;
    } else {
      PollSocket(wait_ms);
    }
  } else {
    PollSocket(select_wait_ms_);
  }
  if (interrupt_requested_) {
    interrupt_requested_ = false;
    interrupted_ = true;
    return Stop(kTextInterrupted);
  }
  if (DeadlinePassed()) return Stop(kTextTimeout);
  return kOk;
}

int SocketCore::WatchSocket(uint32_t mask) {
  if (mask != 0 && socket_.is_valid()) {
    const int flags = fcntl(socket_.get(), F_GETFL, 0);
    if (flags < 0 || fcntl(socket_.get(), F_SETFL, flags | O_NONBLOCK) != 0) return errno;
  }
  SetEventMask(mask);
  return kOk;
}

void SocketCore::SetEventMask(uint32_t mask) {
  if (mask == event_mask_ && (mask != 0) == watched_) return;
  event_mask_ = mask;
  if (!external_event_loop_) {
    watched_ = mask != 0;
    return;
  }
  if (watched_) FireUnwatchSocket(host_registration_);
  watched_ = false;
  if (mask != 0 && socket_.is_valid()) {
    FireWatchSocket(socket_.get(), static_cast<long>(mask), host_registration_);
    watched_ = true;
  }
}

int SocketCore::PollSocket(long timeout_ms) {
  const int fd = socket_.get();
  if (fd < 0 || event_mask_ == 0) return 0;
  if (pending_read_) {
    pending_read_ = false;
    OnSocketEvent(kSocketMessage, static_cast<unsigned long>(fd), kEventRead);
    return 0;
  }
  const bool want_write = (event_mask_ & (kEventWrite | kEventConnect)) != 0;
  // poll, not select: an fd_set cannot hold a descriptor past FD_SETSIZE,
  // which a host with many files open hands us.
  pollfd watch{fd, static_cast<short>(POLLIN | POLLPRI | (want_write ? POLLOUT : 0)), 0};
  const int wait_ms = static_cast<int>(std::clamp<long>(timeout_ms, 0, INT_MAX));
  int ready = poll(&watch, 1, wait_ms);
  if (ready > 0 && (watch.revents & POLLNVAL)) {
    errno = EBADF;
    ready = -1;
  }
  if (ready < 0) {
    if (errno == EINTR) return 0;
    if (event_mask_ & kEventClose) {
      OnSocketEvent(kSocketMessage, static_cast<unsigned long>(fd), kEventClose | (errno << 16));
    }
    return ready;
  }
  if (ready == 0) return 0;
  // The sets select would have reported: hang-up and error count as readable,
  // error as writable (when asked), urgent data as the exception.
  const bool readable = (watch.revents & (POLLIN | POLLHUP | POLLERR)) != 0;
  const bool writable = want_write && (watch.revents & (POLLOUT | POLLERR)) != 0;
  const bool exceptional = (watch.revents & POLLPRI) != 0;
  if ((event_mask_ & kEventConnect) && (exceptional || writable || readable)) {
    // Linux reports a failed connect as readable and writable; SO_ERROR says which.
    int error = 0;
    socklen_t length = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) error = errno;
    RemoveEvents(kEventConnect);
    OnSocketEvent(kSocketMessage, static_cast<unsigned long>(fd), kEventConnect | (error << 16));
    if (error != 0 || socket_.get() != fd) return ready;
  }
  if (writable && (event_mask_ & kEventWrite)) {
    RemoveEvents(kEventWrite);
    OnSocketEvent(kSocketMessage, static_cast<unsigned long>(fd), kEventWrite);
    if (socket_.get() != fd) return ready;
  }
  if (readable && socket_.get() == fd) {
    OnSocketEvent(kSocketMessage, static_cast<unsigned long>(fd), kEventRead);
  }
  return ready;
}

}  // namespace orvelan
