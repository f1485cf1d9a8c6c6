#include "core/component_core.h"

#include "core/setting_table.h"

namespace orvelan {
namespace {

const char* OrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

int ComponentCore::OnSocketEvent(int /*message*/, unsigned long /*socket*/, long /*event_bits*/) { return kOk; }

int ComponentCore::ProcessEvents(long /*timeout_ms*/) { return kOk; }

int ComponentCore::InitDefaults() {
  last_error_code_ = 0;
  last_error_text_.Clear();
  charset_mode_ = 0;
  return 1;
}

int ComponentCore::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<ComponentCore>;
  static constexpr R kSettings[] = {
      R::Int<&ComponentCore::code_page_>("CodePage"),
      R::Int<&ComponentCore::charset_mode_>("CharsetMode"),  // cut to 8 bits
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  out = "";
  SetErrorText(kTextUnknownSetting);
  return kErrUnknown;
}

int ComponentCore::FillDefaultErrorText(int code) {
  if (code == kErrOutOfMemory) SetErrorText(kTextOutOfMemory);
  return code;
}

int ComponentCore::FillDefaultErrorTextSince(uint32_t version, int code) {
  if (code != kOk && version == error_text_version_) SetErrorText("");
  if (HasNoErrorText()) FillDefaultErrorText(code);
  return code;
}

int ComponentCore::Config(const char* text, const char*& out) {
  out = "";
  ConfigArgument argument;
  if (int rc = argument.Parse(text); rc != kOk) return rc;
  return HandleConfig(argument, out);
}

void ComponentCore::ClearError() {
  ++error_text_version_;
  last_error_text_.Clear();
  last_error_code_ = 0;
}

void ComponentCore::SetErrorText(const char* text) {
  ++error_text_version_;
  last_error_text_.Assign(text);
}

void ComponentCore::SetErrorText(const char* a, const char* b, const char* c, const char* d) {
  ClearError();
  last_error_text_.Append(a);
  last_error_text_.Append(b);
  last_error_text_.Append(c);
  last_error_text_.Append(d);
}

void ComponentCore::SetErrorText(const char* prefix, int64_t number, const char* suffix) {
  ClearError();
  AppendErrorText(prefix, number, suffix);
}

void ComponentCore::AppendErrorText(const char* text) {
  ++error_text_version_;
  last_error_text_.Append(text);
}

void ComponentCore::AppendErrorText(const char* prefix, int64_t number, const char* suffix) {
  ++error_text_version_;
  last_error_text_.Append(prefix);
  last_error_text_.AppendInt64(number);
  last_error_text_.Append(suffix);
}

int ComponentCore::ReportError(int code, const char* text) {
  SetErrorText(text);
  return code;
}

int ComponentCore::ReturnConfigValue(const char*& out, const char* text) {
  ++error_text_version_;
  const int rc = last_error_text_.Assign(text);
  out = last_error_text_.Data();
  return rc;
}

int ComponentCore::ReturnConfigValue(const char*& out, int64_t number) {
  ++error_text_version_;
  last_error_text_.Clear();
  const int rc = last_error_text_.AppendInt(static_cast<int32_t>(number));
  out = last_error_text_.Data();
  return rc;
}

int ComponentCore::FireConnectionStatus(const char* connection_event, int status_code, const char* description) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  event_sink_->FireConnectionStatus(OrEmpty(connection_event), status_code, OrEmpty(description));
  return kOk;
}

int ComponentCore::FireError(int error_code, const char* description) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  event_sink_->FireError(error_code, OrEmpty(description));
  return kOk;
}

int ComponentCore::FireSSLServerAuthentication(const char* cert_encoded, int cert_length, const char* cert_subject,
                                               const char* cert_issuer, const char* status, int& accept) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  event_sink_->FireSSLServerAuthentication(OrEmpty(cert_encoded), cert_length, OrEmpty(cert_subject),
                                           OrEmpty(cert_issuer), OrEmpty(status), accept);
  return kOk;
}

int ComponentCore::FireSSLStatus(const char* message) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  event_sink_->FireSSLStatus(OrEmpty(message));
  return kOk;
}

int ComponentCore::FireTextEvent(int event_id, int count, const char* const* texts) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  event_sink_->FireTextEvent(event_id, count, texts);
  return kOk;
}

int ComponentCore::FireWaitForEvents(long& timeout_ms) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  return event_sink_->WaitForEvents(timeout_ms);
}

int ComponentCore::FireWatchSocket(long socket, long event_mask, long& handle) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  return event_sink_->WatchSocket(socket, event_mask, handle);
}

int ComponentCore::FireUnwatchSocket(long handle) {
  if (event_sink_ == nullptr) return kOk;
  event_sink_->SetEventCodePage(code_page_);
  return event_sink_->UnwatchSocket(handle);
}

}  // namespace orvelan
