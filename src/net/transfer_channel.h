#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "net/tls_channel.h"

// The blocking face of the transport: connect and wait, send a whole buffer.
// Each runs wait cycles until done, so time-outs (301 "Timeout."), interrupts
// (301 "Interrupted.") and the host's event loop all apply. Not thread-safe.
namespace orvelan {

class TransferChannel : public TlsChannel {
 public:
  TransferChannel() = default;

  // Connects and waits until the connection (and TLS, when on) is up. Returns
  // the connect error with its text, or 301 after disconnecting.
  int ConnectAndWait();
  // Sends all `length` bytes, waiting whenever the socket is full. With
  // `progress`, OnSendProgress runs after every partial send and a non-zero
  // result stops the send with that code.
  int SendAll(const char* data, int32_t length, bool progress);
  // SendAll in pieces of at most `chunk_size`, reporting the running total
  // through OnSendProgress after each.
  int SendChunked(const char* data, int32_t length, int32_t chunk_size);

 protected:
  void FireConnected(int code, const char* description) override;
  // Bytes of the current send done so far; non-zero stops the send.
  virtual int OnSendProgress(int64_t bytes_done) {
    (void)bytes_done;
    return 0;
  }

 private:
  ByteString connect_error_text_;
  int connect_error_ = 0;
  bool connect_done_ = false;
};

}  // namespace orvelan
