#pragma once
#include <cstdint>

#include "core/component_core.h"

// What every network service shares beneath its connection: the time-out
// clock, the external event loop switch, and the default error texts of the
// system error numbers. The connection itself lives in the layers above.
namespace orvelan {

class SocketCore : public ComponentCore {
 public:
  SocketCore() = default;

  int InitDefaults() override;
  // Adds "[code] text" from the system error table (or "(no description
  // available)") to the core's defaults; 301 reads "Interrupted.".
  int FillDefaultErrorText(int code) override;

  // The component's Timeout property: seconds, or milliseconds while
  // TimeoutInMilliseconds is on; held in milliseconds. 0 means no time-out;
  // a negative value counts as 0.
  int32_t Timeout() const;
  int SetTimeout(int32_t value);

  // Whether the host drives the waiting through events 2000 to 2002.
  void SetExternalEventLoop(bool on) { external_event_loop_ = on; }
  bool ExternalEventLoop() const { return external_event_loop_; }

 protected:
  uint32_t timeout_ms_ = 0;
  bool timeout_in_milliseconds_ = false;
  bool external_event_loop_ = false;
};

}  // namespace orvelan
