#include "ofx/ofx_client.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include "base/text_util.h"
#include "base/unique_fd.h"
#include "core/setting_table.h"
#include "markup/markup_errors.h"
#include "ofx/ofx_log_file.h"
#include "ofx/ofx_status_table.h"

namespace orvelan {
namespace {

constexpr char kHeader1[] =
    "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:~0~\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
    "COMPRESSION:NONE\r\nOLDFILEUID:~1~\r\nNEWFILEUID:~2~\r\n\r\n";
constexpr char kSignon1[] =
    "<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>~6~\r\n<USERID>~0~\r\n<USERPASS>~1~\r\n<LANGUAGE>ENG\r\n<FI>\r\n"
    "<ORG>~2~\r\n~3~</FI>\r\n~7~<APPID>~4~\r\n<APPVER>~5~\r\n~8~~9~~10~~11~~12~~13~</SONRQ>\r\n~14~~15~"
    "</SIGNONMSGSRQV1>\r\n";
constexpr char kChallenge1[] =
    "<MFACHALLENGETRNRQ>\r\n<TRNUID>~0~\r\n<MFACHALLENGERQ>\r\n<DTCLIENT>~1~\r\n</MFACHALLENGERQ>\r\n"
    "</MFACHALLENGETRNRQ>\r\n";
constexpr char kHeader2[] =
    "<?OFX OFXHEADER=\"200\" VERSION=\"~0~\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n";
constexpr char kSignon2[] =
    "<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>~6~</DTCLIENT>\r\n<USERID>~0~</USERID>\r\n<USERPASS>~1~</USERPASS>\r\n"
    "<LANGUAGE>ENG</LANGUAGE>\r\n<FI>\r\n<ORG>~2~</ORG>\r\n~3~</FI>\r\n~7~<APPID>~4~</APPID>\r\n"
    "<APPVER>~5~</APPVER>\r\n~8~~9~~10~~11~~12~~13~</SONRQ>\r\n~14~~15~</SIGNONMSGSRQV1>\r\n";
constexpr char kChallenge2[] =
    "<MFACHALLENGETRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<MFACHALLENGERQ>\r\n<DTCLIENT>~1~</DTCLIENT>\r\n"
    "</MFACHALLENGERQ>\r\n</MFACHALLENGETRNRQ>\r\n";
constexpr char kImage211[] =
    "<IMAGEMSGSRQV1>\r\n<IMAGETRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<IMAGERQ>\r\n<IMAGEREF>~1~</IMAGEREF>\r\n"
    "</IMAGERQ>\r\n</IMAGETRNRQ>\r\n</IMAGEMSGSRQV1>\r\n";
// Servers accept only this SGML form, for 2.x requests as well.
constexpr char kPasswordChange[] =
    "<PINCHTRNRQ>\r\n<TRNUID>~0~\r\n<PINCHRQ>\r\n<USERID>~1~\r\n<NEWUSERPASS>~2~\r\n</PINCHRQ>\r\n</PINCHTRNRQ>\r\n";

// Servers that read 2.x requests as XML documents want a declaration first.
constexpr char kXmlDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n";

constexpr char kTextStatementType[] = "Statement type is invalid.";
constexpr char kDefaultCurrencyFormat[] = "";

struct ImageStatus {
  const char* body;
  int code;
  const char* text;
};
constexpr ImageStatus kImageStatuses[] = {
    {"OFX-STATUS=15000", 15000, "Must change USERPASS."},
    {"OFX-STATUS=15500", 15500, "Signon Invalid."},
    {"OFX-STATUS=15502", 15502, "USERPASS Lockout."},
    {"OFX-STATUS=16510", 16510, "Image not available yet. Try again later."},
    {"OFX-STATUS=16511", 16511, "Image expired."},
    {"OFX-STATUS=16512", 16512, "Image Reference Identifier not found."},
    {"OFX-STATUS=16513", 16513, "Image server is not available. Try again later."},
};

// Seconds modulo 1,000,000 in milliseconds, plus the milliseconds.
uint32_t MillisecondClock() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return static_cast<uint32_t>((now.tv_sec % 1000000) * 1000 + now.tv_usec / 1000);
}

// Two objects set up in the same millisecond would otherwise start from the
// same seed counter and draw the same transaction ids (a batch then matches
// a response to the wrong request): each object's counter starts an odd
// stride further on than the one before it.
uint32_t FirstSeedCounter() {
  static std::atomic<uint32_t> objects{0};
  return MillisecondClock() + 65537u * objects.fetch_add(1, std::memory_order_relaxed);
}

int AppendHexGroup(ByteString& out, uint32_t value, int bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  char text[8];
  for (int i = 0; i < bytes; ++i) {
    const uint32_t byte = (value >> (8 * i)) & 0xff;
    text[2 * i] = kDigits[byte >> 4];
    text[2 * i + 1] = kDigits[byte & 0xf];
  }
  return out.Append(text, 2 * bytes);
}

const char* ImageExtension(const char* content_type) {
  std::string_view type(content_type);
  if (type == "image/jpeg") return ".jpeg";
  if (type == "image/tiff") return ".tiff";
  if (type == "image/png") return ".png";
  if (type == "Application/pdf") return ".pdf";
  return "";
}

}  // namespace

int OFXClient::InitDefaults() {
  seed_counter_ = FirstSeedCounter();
  if (HttpsClient::InitDefaults() == 0) return 0;
  document_.InitDefaults();
  ResetDocument();
  for (ByteString* text :
       {&image_file_, &access_key_, &client_uid_, &user_cred1_, &user_cred2_, &auth_token_, &ofx_log_, &request_,
        &retained_, &server_message_, &image_data_, &transaction_id_}) {
    text->Clear();
  }
  file_text_.Clear();
  response_is_set_ = false;
  raw_source_ = RawSource::kNone;
  challenges_.Clear();
  if (LoadTemplates() != kOk) return 0;
  formats_.SetOFXDateFormat(kDefaultOFXDateFormat);
  max_transferred_data_ = 0;  // an OFX response is kept whole
  debug_trace_ = false;
  lenient_reading_ = false;
  strict_server_requests_ = false;
  return 1;
}

void OFXClient::ClearRequestState() {
  mfa_challenge_pending_ = false;
  answers_ready_ = false;
  version_.Assign("102");
  old_file_uid_.Assign("NONE");
  new_file_uid_.Assign("NONE");
  formats_.SetDateFormat(kDefaultDateFormat);
  for (ByteString* text : {&fi_url_, &user_, &password_, &fi_organization_, &fi_id_, &app_id_, &app_version_,
                           &new_password_, &image_reference_}) {
    text->Clear();
  }
  include_images_ = false;
  statement_type_ = 0;
}

void OFXClient::ResetDocument() {
  document_parsed_ = false;
  file_response_.Clear();
  document_.Reset();
  document_.SetBuildDOM(true);
  document_.SetValidate(true);
  document_.SetKeepOriginalText(true);
}

int OFXClient::Reset() {
  ClearRequestState();
  ResetDocument();
  return DoAction(kReset);
}

int OFXClient::ClearResponse() {
  ResetDocument();
  server_message_.Clear();
  request_.Clear();
  retained_.Clear();
  parsed_ = retained_.View();
  // The block stays for the next file: refilling it costs no fresh pages.
  file_text_.Truncate(0);
  response_is_set_ = false;
  raw_source_ = RawSource::kNone;
  return kOk;
}

int OFXClient::BuildMessageSets(ByteString& out, bool wrapped) {
  if (!wrapped) out.Clear();
  return kOk;
}

int OFXClient::ParseResponse() { return kOk; }

// ---- Request ----

int OFXClient::LoadVersionTemplates() {
  const char first = version_.ByteAt(0);
  if (first == '1') {
    header_template_.Load(kHeader1);
    signon_template_.Load(kSignon1);
    challenge_template_.Load(kChallenge1);
  } else if (first == '2') {
    header_template_.Load(kHeader2);
    signon_template_.Load(kSignon2);
    challenge_template_.Load(kChallenge2);
  } else {
    return kOk;
  }
  if (int rc = image_template_.Load(version_.Equals("211") ? kImage211 : ""); rc != kOk) return rc;
  return header_template_.IsEmpty() || signon_template_.IsEmpty() || challenge_template_.IsEmpty() ? kErrOutOfMemory
                                                                                                   : kOk;
}

int OFXClient::LoadTemplates() {
  // Cleared first so that the templates are those of the default version.
  ClearRequestState();
  if (int rc = LoadVersionTemplates(); rc != kOk) return rc;
  if (int rc = password_change_template_.Load(kPasswordChange); rc != kOk) return rc;
  currency_format_.Assign(kDefaultCurrencyFormat);
  return document_.RegisterAggregates();
}

int OFXClient::NewTransactionId(ByteString& out) {
  if (strict_server_requests_) {
    // A version 4 UUID: servers that check the form accept only 8-4-4-4-12.
    uint8_t bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(std::rand() >> 7);
    }
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0f) | 0x40);
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3f) | 0x80);
    out.Clear();
    for (int i = 0; i < 16; ++i) {
      if ((i == 4 || i == 6 || i == 8 || i == 10) && out.AppendChar('-') != kOk) return kErrOutOfMemory;
      if (AppendHexGroup(out, bytes[i], 1) != kOk) return kErrOutOfMemory;
    }
    return transaction_id_.Assign(out);
  }
  ++seed_counter_;
  std::srand(static_cast<unsigned>(seed_counter_ * MillisecondClock()));
  static constexpr int kGroups[] = {4, 2, 2, 2, 2, 4};
  out.Clear();
  for (int i = 0; i < 6; ++i) {
    if (i > 0 && out.AppendChar('-') != kOk) return kErrOutOfMemory;
    const uint32_t value =
        kGroups[i] == 4 ? static_cast<uint32_t>(std::rand()) * 65535u : static_cast<uint32_t>(std::rand());
    if (AppendHexGroup(out, value, kGroups[i]) != kOk) return kErrOutOfMemory;
  }
  return transaction_id_.Assign(out);
}

int OFXClient::AppendOptionalElement(ByteString& out, const char* name, const ByteString& value) const {
  if (value.IsEmpty()) return kOk;
  int rc = out.AppendChar('<') | out.Append(name) | out.AppendChar('>') | out.Append(value);
  if (IsVersion2()) rc |= out.Append("</") | out.Append(name) | out.AppendChar('>');
  rc |= out.Append("\r\n");
  return rc == kOk ? kOk : kErrOutOfMemory;
}

int OFXClient::AppendChallengeAnswers(ByteString& out) {
  const bool v2 = IsVersion2();
  int rc = kOk;
  for (int32_t i = 0; i < challenges_.Count(); ++i) {
    const MFAChallenge* challenge = challenges_.Item(i);
    if (challenge == nullptr) return kErrOutOfMemory;
    rc |= out.Append("<MFACHALLENGEA>\r\n<MFAPHRASEID>") | out.Append(challenge->phrase_id);
    if (v2) rc |= out.Append("</MFAPHRASEID>");
    rc |= out.Append("\r\n<MFAPHRASEA>") | out.Append(challenge->answer);
    if (v2) rc |= out.Append("</MFAPHRASEA>");
    rc |= out.Append("\r\n</MFACHALLENGEA>\r\n");
  }
  return rc == kOk ? kOk : kErrOutOfMemory;
}

int OFXClient::BuildRequest(ByteString& out, bool with_credentials) {
  if (int rc = LoadVersionTemplates(); rc != kOk) return rc;
  const bool v2 = IsVersion2();
  const std::string_view user = with_credentials ? user_.View() : std::string_view(kMaskedCredential);
  const std::string_view password = with_credentials ? password_.View() : std::string_view(kMaskedCredential);

  ByteString fid, now, optional[5], answers, password_change, challenge_request, image_request, trnuid;
  int rc = kOk;
  if (!fi_id_.IsEmpty()) {
    rc |= fid.Append("<FID>") | fid.Append(fi_id_);
    if (v2) rc |= fid.Append("</FID>");
    rc |= fid.Append("\r\n");
  }
  OFXDateTime::FormatNow(now, formats_.OFXDateFormat().View());
  static constexpr const char* kOptionalNames[] = {"CLIENTUID", "USERCRED1", "USERCRED2", "AUTHTOKEN", "ACCESSKEY"};
  const ByteString* optional_values[] = {&client_uid_, &user_cred1_, &user_cred2_, &auth_token_, &access_key_};
  for (int i = 0; i < 5; ++i) rc |= AppendOptionalElement(optional[i], kOptionalNames[i], *optional_values[i]);
  if (answers_ready_ && challenges_.Count() > 0) rc |= AppendChallengeAnswers(answers);
  if (!new_password_.IsEmpty()) {
    rc |= NewTransactionId(trnuid);
    const std::string_view arguments[] = {
        trnuid.View(), user, with_credentials ? new_password_.View() : std::string_view(kMaskedCredential)};
    rc |= password_change_template_.Expand(password_change, arguments, 3, true);
  }
  if (mfa_challenge_pending_) {
    rc |= NewTransactionId(trnuid);
    const std::string_view arguments[] = {trnuid.View(), now.View()};
    rc |= challenge_template_.Expand(challenge_request, arguments, 2, true);
  }
  const bool has_image_request = !image_reference_.IsEmpty();
  if (has_image_request) {
    rc |= NewTransactionId(trnuid);
    const std::string_view arguments[] = {trnuid.View(), image_reference_.View()};
    rc |= image_template_.Expand(image_request, arguments, 2, true);
  }
  if (rc != kOk) return kErrOutOfMemory;

  const std::string_view header_arguments[] = {version_.View(), old_file_uid_.View(), new_file_uid_.View()};
  const std::string_view signon_arguments[] = {user,
                                               password,
                                               fi_organization_.View(),
                                               fid.View(),
                                               app_id_.View(),
                                               app_version_.View(),
                                               now.View(),
                                               session_cookie_.View(),
                                               optional[0].View(),
                                               optional[1].View(),
                                               optional[2].View(),
                                               optional[3].View(),
                                               optional[4].View(),
                                               answers.View(),
                                               password_change.View(),
                                               challenge_request.View()};
  out.Clear();
  if (v2 && strict_server_requests_) rc |= out.Append(kXmlDeclaration);
  rc |= header_template_.Expand(out, header_arguments, 3, false) | out.Append("<OFX>\r\n") |
       signon_template_.Expand(out, signon_arguments, 16, false);
  if (rc != kOk) return kErrOutOfMemory;
  if (has_image_request) {
    rc = out.Append(image_request);
  } else if (!mfa_challenge_pending_) {
    rc = BuildMessageSets(out, true);
  }
  if (rc != kOk) return rc;
  return out.Append("</OFX>");
}

int OFXClient::CheckRequiredFields() {
  static constexpr struct {
    ByteString OFXClient::*field;
    const char* text;
  } kRequired[] = {
      {&OFXClient::user_, "Missing required field: OFX User Id is missing in the request."},
      {&OFXClient::password_, "Missing required field: OFX Password is missing in the request."},
      {&OFXClient::app_id_, "Missing required field: OFX Application Id is missing in the request."},
      {&OFXClient::app_version_, "Missing required field: OFX Application Version is missing in the request."},
      {&OFXClient::fi_organization_, "Missing required field: FI Organization Name is missing in the request."},
  };
  for (const auto& required : kRequired) {
    if ((this->*required.field).IsEmpty()) return ReportError(kErrMissingField, required.text);
  }
  if (include_images_ && version_.ByteAt(0) == '1') {
    return ReportError(kErrInvalidValue, "Transaction Images are not available for OFX Version(s) 1.x.");
  }
  return kOk;
}

int OFXClient::SetStatementType(int32_t type) {
  if (type != 0 && type != 1) return ReportError(kErrInvalidValue, kTextStatementType);
  statement_type_ = type;
  return kOk;
}

int OFXClient::SetIncludeImages(bool on) {
  include_images_ = on;
  return kOk;
}

const char* OFXClient::OFXRequest() {
  if (BuildMessageSets(request_, false) != kOk) request_.Clear();
  return request_.Data();
}

// ---- Exchange and response ----

int OFXClient::MapParseFailure(int code) {
  if (code == kErrInvalidPath) return ReportError(kErrInvalidOFXResponse, kTextInvalidOFXResponse);
  if (code == kErrUnbalancedTag) return ReportError(kErrUnknownOFXTags, kTextUnknownOFXTags);
  return code;
}

int OFXClient::Exchange() {
  posted_ = false;
  SetContentType(kContentType);
  ClearResponse();
  // A service's BuildMessageSets reports its own missing fields.
  if (int rc = BuildRequest(request_, true); rc != kOk) return rc;
  if (debug_trace_) FireConnectionStatus("REQUEST", 0, request_.Data());
  ResetDocument();
  if (int rc = SetPostData(request_.Data(), request_.Length()); rc != kOk) return ReportError(rc, nullptr);
  OFXLogFile log(ofx_log_.Data());
  if (!ofx_log_.IsEmpty()) {
    ByteString masked;
    if (BuildRequest(masked, false) == kOk) {
      if (int rc = log.WriteRequest(masked.View()); rc != kOk) ReportError(rc, log.ErrorText());
    }
  }
  if (int rc = CheckRequiredFields(); rc != kOk) return rc;
  posted_ = true;
  post_result_ = PostToURL(fi_url_.Data());
  raw_source_ = RawSource::kHttp;
  if (!ofx_log_.IsEmpty()) {
    if (int rc = log.WriteResponse(TransferredData()); rc != kOk) {
      // A failed post keeps its own message.
      if (post_result_ == kOk) ReportError(rc, log.ErrorText());
    }
  }
  if (debug_trace_) {
    const ByteString body(TransferredData());
    FireConnectionStatus("RESPONSE", 0, body.Data());
  }
  if (post_result_ != kOk) return post_result_;
  if (int rc = ProcessResponse(TransferredData()); rc != kOk) return MapParseFailure(rc);
  response_is_set_ = true;
  raw_source_ = RawSource::kHttp;
  Connect(false);
  return kOk;
}

int OFXClient::ProcessResponse(std::string_view text) {
  ResetDocument();
  // The document refers to the text it parsed. The HTTP body stays put until
  // the next HTTP action, and every path to one resets the document first,
  // so it is parsed in place; any other text is copied, so the caller's may go.
  const std::string_view body = TransferredData();
  if (!text.empty() && text.data() == body.data() && text.size() == body.size()) {
    parsed_ = body;
  } else if (!text.empty() && text.data() == file_text_.Data() && text.size() == file_text_.View().size()) {
    parsed_ = file_text_.View();
  } else {
    if (text.data() != retained_.Data()) {
      response_is_set_ = false;
      if (int rc = retained_.Assign(text); rc != kOk) return ReportError(rc, nullptr);
    }
    parsed_ = retained_.View();
  }
  if (int rc = document_.RegisterAggregates(); rc != kOk) return ReportError(rc, document_.GetLastError());
  std::string_view text_to_parse = parsed_;
  if (lenient_reading_) {
    if (int rc = lenient_.Prepare(parsed_, document_.Parser(), text_to_parse); rc != kOk) {
      return ReportError(rc, nullptr);
    }
    for (const LenientReader::Repair& repair : lenient_.Repairs()) FireError(repair.code, repair.text.c_str());
  }
  const int parsed = document_.ParseRetained(text_to_parse);
  // Names learned from this document do not carry over to the next.
  if (lenient_reading_) lenient_.Forget(document_.Parser());
  if (parsed != kOk) return ReportError(parsed, document_.GetLastError());
  if (int rc = document_.SelectPath("/"); rc != kOk) return ReportError(rc, document_.GetLastError());
  document_parsed_ = true;

  if (document_.HasPath("SIGNONMSGSRSV1")) {
    if (int rc = CheckStatus("SIGNONMSGSRSV1/SONRS/", true); rc != kOk) return rc;
    if (int rc = ReadResponseValue(access_key_, document_, "SIGNONMSGSRSV1/SONRS/ACCESSKEY", false); rc != kOk) {
      return rc;
    }
    // Reading the key moved the cursor; the service expects the root.
    if (!access_key_.IsEmpty() && document_.SelectPath("/") != kOk) {
      return ReportError(document_.GetLastErrorCode(), document_.GetLastError());
    }
  }
  if (!document_.HasPath("SIGNONMSGSRSV1/MFACHALLENGETRNRS")) {
    return mfa_challenge_pending_ ? kOk : ParseResponse();
  }
  mfa_challenge_pending_ = true;
  return ReadChallenges();
}

int OFXClient::ReadChallenges() {
  auto fail = [this](int rc) { return ReportError(rc, document_.GetLastError()); };
  if (int rc = document_.SelectPath("SIGNONMSGSRSV1/"); rc != kOk) return fail(rc);
  if (int rc = CheckStatus("MFACHALLENGETRNRS/", true); rc != kOk) return rc;
  if (int rc = document_.SelectPath("MFACHALLENGETRNRS/MFACHALLENGERS/"); rc != kOk) return fail(rc);
  for (;;) {
    ByteString step("[");
    step.AppendInt(challenges_.Count() + 1);
    step.AppendChar(']');
    if (!document_.HasPath(step.View())) return kOk;
    if (challenges_.SetCount(challenges_.Count() + 1) != kOk) return ReportError(kErrOutOfMemory, nullptr);
    MFAChallenge* challenge = challenges_.Last();
    if (challenge == nullptr) return ReportError(kErrOutOfMemory, nullptr);
    if (int rc = document_.SelectPath(step.View()); rc != kOk) return fail(rc);
    if (int rc = challenge->challenge.Assign(document_.ElementSubtree()); rc != kOk) return ReportError(rc, nullptr);
    if (int rc = ReadField(document_, "MFAPHRASEID", challenge->phrase_id, true); rc != kOk) return rc;
    if (int rc = ReadField(document_, "MFAPHRASELABEL", challenge->phrase_label, false); rc != kOk) return rc;
    if (int rc = document_.SelectPath(".."); rc != kOk) return fail(rc);
  }
}

int OFXClient::CheckStatus(std::string_view path, bool is_signon) {
  ByteString back("*");
  back.AppendInt(static_cast<int32_t>(document_.Tree().Cursor()));
  if (int rc = document_.SelectPath(path); rc != kOk) return ReportError(rc, document_.GetLastError());
  if (!is_signon) {
    back.Assign("*");
    back.AppendInt(static_cast<int32_t>(document_.Tree().Cursor()));
  }

  int32_t code = 0;
  ByteString severity, message;
  if (document_.HasPath("STATUS/CODE")) {
    document_.SelectPath("STATUS/CODE");
    code = ParseInt32(document_.ElementText());
    if (document_.HasPath("../SEVERITY")) {
      document_.SelectPath("../SEVERITY");
      severity.Assign(document_.ElementText());
    }
    if (document_.HasPath("../MESSAGE")) {
      document_.SelectPath("../MESSAGE");
      message.Assign(document_.ElementText());
    } else {
      message.Assign(OFXStatusTable::Text(code));
    }
  }
  if (code == 3000) mfa_challenge_pending_ = true;
  if (code != 0) {
    if (!severity.Equals("INFO") && !severity.Equals("WARN")) {
      SetErrorText("OFX server error (", code, "): ");
      AppendErrorText(message.Data());
      return kErrServerStatus;
    }
    server_message_.Assign(severity);
    server_message_.Append(": ");
    server_message_.Append(message);
    FireError(code, server_message_.Data());
  }
  if (int rc = document_.SelectPath(back.View()); rc != kOk) return ReportError(rc, document_.GetLastError());
  return kOk;
}

int OFXClient::CheckWrapperStatus(std::string_view wrapper) {
  if (wrapper != document_.ElementName()) return CheckStatus(wrapper);
  ByteString rooted("/");
  rooted.Append(wrapper);
  return CheckStatus(rooted.View());
}

int OFXClient::ReadResponseValue(ByteString& out, MarkupDocument& document, std::string_view path, bool required) {
  if (document.HasPath(path)) {
    if (int rc = document.SelectPath(path); rc != kOk) return ReportError(rc, document.GetLastError());
    return out.Assign(document.ElementText());
  }
  if (required) return ReportError(kErrMissingField, kTextMissingElement);
  return out.Clear();
}

int OFXClient::ReadField(MarkupDocument& document, const char* name, ByteString& out, bool required, bool clear) {
  if (clear) out.Clear();
  const std::string_view child(name == nullptr ? "" : name);
  if (!child.empty() && document.HasPath(child)) {
    if (int rc = document.SelectPath(child); rc != kOk) return ReportError(rc, document.GetLastError());
    if (int rc = out.Append(document.ElementText()); rc != kOk) return rc;
    if (int rc = document.SelectPath(".."); rc != kOk) return ReportError(rc, document.GetLastError());
    return kOk;
  }
  if (!required) return kOk;
  SetErrorText("Required field missing: \"", name, "\".", nullptr);
  return kErrInvalidValue;
}

int OFXClient::FindChildIndex(MarkupDocument& document, std::string_view path, const char* name) {
  if (int rc = document.SelectPath(path); rc != kOk) return ReportError(rc, document.GetLastError());
  const std::string_view wanted(name == nullptr ? "" : name);
  const int32_t count = document.ChildCount();
  for (int32_t i = 0; i < count; ++i) {
    if (wanted == document.ChildName(i)) return i + 1;
  }
  return 0;
}

std::string_view OFXClient::RawResponse() const {
  switch (raw_source_) {
    case RawSource::kHttp:
      return TransferredData();
    case RawSource::kRetained:
      return retained_.View();
    case RawSource::kFile:
      return file_text_.View();
    case RawSource::kNone:
      break;
  }
  return {};
}

int OFXClient::ReadOFXDataFile(const char* path) {
  UniqueFd fd(::open(path == nullptr ? "" : path, O_RDONLY | O_CLOEXEC));
  if (!fd.is_valid()) return ReportError(kErrCannotOpen, "Cannot open OFX data file for reading.");
  ClearResponse();
  // Read straight into a block of the file's size: a large statement is not
  // copied through a series of growths. A file that grows meanwhile, or that
  // has no size (a pipe), is read on in chunks.
  struct stat info {};
  int32_t have = 0;
  if (::fstat(fd.get(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 && info.st_size < 0x7FFFFFF0) {
    const int32_t size = static_cast<int32_t>(info.st_size);
    if (int rc = file_text_.SetLength(size); rc != kOk) return ReportError(rc, nullptr);
    while (have < size) {
      const ssize_t n = ::read(fd.get(), file_text_.MutableData() + have, static_cast<size_t>(size - have));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return ReportError(kErrCannotRead, "Cannot read from OFX data file.");
      if (n == 0) break;
      have += static_cast<int32_t>(n);
    }
    file_text_.SetLength(have);
  }
  char chunk[4096];
  for (;;) {
    const ssize_t n = ::read(fd.get(), chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return ReportError(kErrCannotRead, "Cannot read from OFX data file.");
    if (n == 0) break;
    if (int rc = file_text_.Append(chunk, static_cast<int32_t>(n)); rc != kOk) return ReportError(rc, nullptr);
  }
  raw_source_ = RawSource::kFile;
  // Parsed in place: the parser skips the OFX 1.x header lines and keeps the
  // end tags SGML leaves out beside the text rather than in a second copy.
  const int rc = ProcessResponse(file_text_.View());
  response_is_set_ = document_parsed_;
  return MapParseFailure(rc);
}

const char* OFXClient::OFXResponse() {
  if (!response_is_set_) return "";
  if (raw_source_ != RawSource::kFile) return parsed_.data();
  if (file_response_.IsEmpty()) {
    DocumentTree& tree = document_.Tree();
    const uint32_t cursor = tree.Cursor();
    tree.SetCursor(tree.Top());
    file_response_.Assign(document_.ElementSubtree());
    tree.SetCursor(cursor);
  }
  return file_response_.Data();
}

int OFXClient::WriteOFXDataFile(const char* path) {
  if (path == nullptr || *path == '\0') return kOk;
  UniqueFd fd(::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!fd.is_valid()) return ReportError(kErrCannotCreate, "Cannot create OFX log file.");
  if (!WriteAll(fd.get(), RawResponse())) return ReportError(kErrCannotWrite, "Cannot write in OFX log file.");
  if (::close(fd.release()) != 0) return ReportError(kErrCannotClose, "Cannot close open OFX log file.");
  return kOk;
}

int OFXClient::SetOFXResponse(const char* value) {
  ClearRequestState();
  ClearResponse();
  if (value == nullptr || *value == '\0') return ReportError(kErrNoResponse, kTextNoResponse);
  const int rc = ProcessResponse(value);
  raw_source_ = RawSource::kRetained;
  if (rc == kOk) response_is_set_ = true;
  return rc;
}

int OFXClient::SetData(std::string_view text) {
  ClearResponse();
  const int rc = ProcessResponse(text);
  // OFXResponse takes the text (copied by ProcessResponse) whatever the result.
  response_is_set_ = true;
  raw_source_ = RawSource::kRetained;
  return MapParseFailure(rc);
}

int OFXClient::WriteImageFile(const ByteString& path) {
  UniqueFd fd(::open(path.Data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!fd.is_valid()) {
    SetErrorText("Cannot open file \"", path.Data(), "\" for writing.", nullptr);
    return kErrCannotCreate;
  }
  if (!WriteAll(fd.get(), image_data_.View())) {
    SetErrorText("Cannot write to file \"", path.Data(), "\".", nullptr);
    return kErrCannotWrite;
  }
  if (::close(fd.release()) != 0) {
    SetErrorText("Cannot close open file \"", path.Data(), "\".", nullptr);
    return kErrCannotClose;
  }
  return kOk;
}

int OFXClient::GetImage(const char* reference, const char* reference_type, const char*& data, int32_t& length) {
  image_data_.Clear();
  data = image_data_.Data();
  length = 0;
  const ByteString file(image_file_);
  version_.Assign("211");
  image_reference_.Assign(reference);
  const std::string_view type(reference_type == nullptr ? "" : reference_type);
  if (!type.empty() && type != "OPAQUE") return kOk;

  // An image body is no OFX document, so the exchange's own result says
  // nothing; but without any response there is nothing to judge.
  const int exchanged = Exchange();
  if (!posted_) return exchanged;
  if (post_result_ != kOk) return post_result_;
  if (int rc = image_data_.Assign(TransferredData()); rc != kOk) return ReportError(rc, nullptr);
  ClearError();

  if (std::string_view(ResponseContentType()) != kContentType && !file.IsEmpty()) {
    ByteString path(file);
    path.Append(ImageExtension(ResponseContentType()));
    WriteImageFile(path);  // a file failure leaves its text but not the result
    data = image_data_.Data();
    length = image_data_.Length();
    return kOk;
  }
  for (const ImageStatus& status : kImageStatuses) {
    if (image_data_.Equals(status.body)) return ReportError(status.code, status.text);
  }
  return ReportError(kErrServerStatus, "");
}

// ---- Dates ----

const char* OFXClient::FormatDate(ByteString& out, std::string_view ofx_date) {
  formats_.FormatDate(out, ofx_date);
  return out.Data();
}

int OFXClient::ParseUserDate(ByteString& out, std::string_view text) {
  if (formats_.ParseUserDate(out, text) != kOk) return ReportError(kErrCannotParseDate, kTextCannotParseDate);
  return kOk;
}

// ---- Settings ----

int OFXClient::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<OFXClient>;
  using A = const ConfigArgument&;
  static constexpr R kSettings[] = {
      R::Text<&OFXClient::version_>("OFXVersion"),
      R::Text<&OFXClient::ofx_log_>("OFXLog"),
      R::OneZero<&OFXClient::debug_trace_>("DebugTrace"),
      R::OneZero<&OFXClient::include_images_>("IncludeImages"),
      {"OFXDateFormat",
       [](OFXClient& c, const char*& out) { return c.ReturnConfigValue(out, c.formats_.OFXDateFormat().Data()); },
       [](OFXClient& c, A argument) { return c.formats_.SetOFXDateFormat(argument.Value()); }},
      {"DateFormat",
       [](OFXClient& c, const char*& out) { return c.ReturnConfigValue(out, c.formats_.DateFormat().Data()); },
       [](OFXClient& c, A argument) { return c.formats_.SetDateFormat(argument.Value()); }},
      R::Text<&OFXClient::currency_format_>("CurrencyFormat"),
      {"OFXData",
       [](OFXClient& c, const char*& out) {
         const ByteString raw(c.RawResponse());
         return c.ReturnConfigValue(out, raw.Data());
       },
       [](OFXClient& c, A argument) {
         return c.SetData(std::string_view(argument.Value(), static_cast<size_t>(argument.ValueLength())));
       }},
      {"ExtraTags", [](OFXClient& c, const char*& out) { return c.ReturnConfigValue(out, c.document_.ExtraTags()); },
       [](OFXClient& c, A argument) { return c.document_.SetExtraTags(argument.Value()); }},
      R::Text<&OFXClient::new_password_>("NewPassword"),
      R::Text<&OFXClient::client_uid_>("ClientUId"),
      R::Text<&OFXClient::user_cred1_>("UserCred1A"),
      R::Text<&OFXClient::user_cred2_>("UserCred2A"),
      R::Text<&OFXClient::auth_token_>("AuthToken"),
      {"ServerMessage", R::QueryText<&OFXClient::server_message_>},
      R::OneZero<&OFXClient::lenient_reading_>("LenientReading"),
      R::OneZero<&OFXClient::strict_server_requests_>("StrictServerRequests"),
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return HttpsClient::HandleConfig(argument, out);
}

}  // namespace orvelan
