#pragma once

// What a service may tell its component object while an operation runs. Every
// component object implements it and turns each call into one call of the
// host's callback (event ids in comments). Calls run synchronously on the
// thread of the operation that raised them. Texts are never null and stay
// owned by the caller; only the reference arguments come back changed.
namespace orvelan {

class ComponentEvents {
 public:
  // Called before every event with the service's CodePage.
  virtual void SetEventCodePage(int code_page) = 0;
  // 2000: the host waits for its own events; it may change `timeout_ms`,
  // and -1 handed back means "interrupted".
  virtual int WaitForEvents(long& timeout_ms) = 0;
  // 2001: the host starts watching `socket` for `event_mask`; it returns a
  // handle in `handle` that a later UnwatchSocket hands back.
  virtual int WatchSocket(long socket, long event_mask, long& handle) = 0;
  // 2002: the host stops watching.
  virtual int UnwatchSocket(long handle) = 0;

  virtual ~ComponentEvents() = default;

  // 1
  virtual int FireConnectionStatus(const char* connection_event, int status_code, const char* description) = 0;
  // 2
  virtual int FireError(int error_code, const char* description) = 0;
  // 3: `accept` comes back as the host's decision. The certificate is
  // `cert_length` bytes in the encoding of SSLServerCertEncoded.
  virtual int FireSSLServerAuthentication(const char* cert_encoded, int cert_length, const char* cert_subject,
                                          const char* cert_issuer, const char* status, int& accept) = 0;
  // 4
  virtual int FireSSLStatus(const char* message) = 0;
  // 5 and up: a component's own events, all of whose parameters are texts
  // (SyncTransfers, SyncPayees, ...). Sinks that raise none ignore them.
  virtual int FireTextEvent(int /*event_id*/, int /*count*/, const char* const* /*texts*/) { return 0; }
};

}  // namespace orvelan
