#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "core/component_events.h"
#include "core/config_argument.h"

// The root of every service: the last error, the settings chain and the event
// sink. Each layer of a service (transport, OFX engine, the service itself)
// derives from the one below, handles its own setting names in HandleConfig
// (from a table of rows, core/setting_table.h) and passes the rest down:
//
//   int TcpClient::HandleConfig(ConfigArgument& argument, const char*& out) {
//     static constexpr Setting<TcpClient> kSettings[] = {...};
//     if (const auto* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
//     return SocketCore::HandleConfig(argument, out);
//   }
//
// The layer that knows what went wrong sets the error text; the component
// object stores the code after each operation and fills a default text when
// no layer set one. One object belongs to one component; not thread-safe.
namespace orvelan {

class ComponentCore {
 public:
  ComponentCore() = default;
  ComponentCore(const ComponentCore&) = delete;
  ComponentCore& operator=(const ComponentCore&) = delete;
  virtual ~ComponentCore() = default;

  // Socket readiness delivered by the wait loop; the base has no socket.
  virtual int OnSocketEvent(int message, unsigned long socket, long event_bits);
  // Handles "CodePage" and "CharsetMode"; any other name gives -1 and
  // "Unknown config setting.". Layers override, handle their own names, and
  // end by calling their base's version. `out` receives a query's answer.
  virtual int HandleConfig(ConfigArgument& argument, const char*& out);
  // Polls the component's socket once without waiting; the base has none.
  virtual int ProcessEvents(long timeout_ms);
  // Resets this layer's fields; every override calls its base's first.
  // The component object runs it once, right after construction.
  virtual int InitDefaults();
  // Fills the default text for `code` when no layer set one (see the .cc);
  // returns `code` unchanged. This version knows only 200; the transport's
  // adds the system error texts.
  virtual int FillDefaultErrorText(int code);

  // Parses `text` and runs it through HandleConfig. `out` points at an empty
  // text unless a query answered; the answer is also the last-error text.
  int Config(const char* text, const char*& out);

  void ClearError();
  // A null text counts as empty.
  void SetErrorText(const char* text);
  void SetErrorText(const char* a, const char* b, const char* c, const char* d);
  void SetErrorText(const char* prefix, int64_t number, const char* suffix);
  void AppendErrorText(const char* text);
  void AppendErrorText(const char* prefix, int64_t number, const char* suffix);
  // Sets the text and returns `code` unchanged (the code is not stored).
  int ReportError(int code, const char* text);
  int SetLastErrorCode(int code) { return last_error_code_ = code; }
  // Counts changes of the last-error text. An operation takes it when it
  // starts, so that on failure it can tell a text of its own from one left
  // by an earlier operation (which stays until some operation replaces it).
  uint32_t ErrorTextVersion() const { return error_text_version_; }
  // For a failure that set no text since `version`: drops the text left from
  // before, then fills the default text when none is left. Returns `code`.
  int FillDefaultErrorTextSince(uint32_t version, int code);
  int GetLastErrorCode() const { return last_error_code_; }
  // Never null.
  const char* GetLastError() const { return last_error_text_.Data(); }
  bool HasNoErrorText() const { return last_error_text_.IsEmpty(); }

  // Writes a query's answer into the last-error text and points `out` at it.
  // Numbers are written as signed 32-bit decimals (wider values are cut).
  int ReturnConfigValue(const char*& out, const char* text);
  int ReturnConfigValue(const char*& out, int64_t number);

  // The sink is the component object; not owned.
  void SetEventSink(ComponentEvents* sink) { event_sink_ = sink; }
  ComponentEvents* GetEventSink() const { return event_sink_; }
  int CodePage() const { return code_page_; }
  int CharsetMode() const { return charset_mode_; }

  // Raise an event towards the host. Without a sink they do nothing and
  // return 0; null texts travel as empty texts. The first three return 0
  // whatever the host did; the host's decision comes back in `accept`.
  int FireConnectionStatus(const char* connection_event, int status_code, const char* description);
  int FireError(int error_code, const char* description);
  int FireSSLServerAuthentication(const char* cert_encoded, int cert_length, const char* cert_subject,
                                  const char* cert_issuer, const char* status, int& accept);
  int FireSSLStatus(const char* message);
  // A component's own event with `count` text parameters; the host's result
  // is ignored.
  int FireTextEvent(int event_id, int count, const char* const* texts);
  // The event-loop calls return the host's result.
  int FireWaitForEvents(long& timeout_ms);
  int FireWatchSocket(long socket, long event_mask, long& handle);
  int FireUnwatchSocket(long handle);

 private:
  int32_t last_error_code_ = 0;
  int32_t code_page_ = 0;
  ByteString last_error_text_;  // also the buffer of Config answers
  uint32_t error_text_version_ = 0;
  int8_t charset_mode_ = 0;     // stored and reported only
  ComponentEvents* event_sink_ = nullptr;
};

}  // namespace orvelan
