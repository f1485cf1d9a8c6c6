#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "http/https_client.h"
#include "markup/text_buffer.h"
#include "ofx/date_amount_format.h"
#include "ofx/lenient_reader.h"
#include "ofx/mfa_challenge.h"
#include "ofx/ofx_date_time.h"
#include "ofx/ofx_tag_table.h"
#include "ofx/request_template.h"

// The OFX engine every OFX service derives from: it writes the request (OFX
// header, <OFX> envelope, sign-on, the service's message sets), posts it,
// logs the exchange, parses and checks the response and hands the document
// to the service.
//
//   class StatementService : public OFXClient {
//     int BuildMessageSets(ByteString& out, bool wrapped) override;  // the STMTTRNRQ
//     int ParseResponse() override;        // walks Document() from the root
//   };
//   service.SetOFXUser("u"); ... service.SetFIUrl("https://bank/ofx");
//   if (int rc = service.Exchange(); rc != 0) ...;   // text in GetLastError()
//
// Error statuses of the server fail with 2001 "OFX server error (code): text";
// INFO and WARN statuses only fire Error and set ServerMessage. A
// multi-factor challenge sets MFAChallengePending, which makes the next
// requests carry the challenge request instead of message sets until Reset.
// One engine belongs to one component; not thread-safe.
namespace orvelan {

class OFXClient : public HttpsClient {
 public:
  // The text every masked credential reads as in the OFX log.
  static constexpr char kMaskedCredential[] = "******anon";
  static constexpr char kContentType[] = "application/x-ofx";

  OFXClient() = default;

  // Engine defaults: templates of "102", the response document with its
  // aggregates, an empty request state. 1, or 0 when a step failed.
  int InitDefaults() override;
  // The engine's settings (OFXVersion, OFXLog, DebugTrace, IncludeImages,
  // OFXDateFormat, DateFormat, CurrencyFormat, OFXData, ExtraTags,
  // NewPassword, ClientUId, UserCred1A, UserCred2A, AuthToken,
  // ServerMessage, LenientReading, StrictServerRequests), then the HTTP
  // layer's.
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  // Hooks a service overrides; each override runs the engine's version too
  // (Reset and ClearResponse after their own fields).
  //
  // Clears the request state (credentials, institution, version "102", ...;
  // ClientUId, UserCred1A, UserCred2A, AuthToken and OFXAccessKey survive),
  // the response document, and resets the HTTP state: 0 or 143 while busy.
  virtual int Reset();
  // Empties the response document, ServerMessage, the request sent and
  // OFXResponse. Runs before every response is processed.
  virtual int ClearResponse();
  // With `wrapped`, appends the service's request inside its message-set
  // wrapper to `out`; without, `out` becomes the bare transaction request
  // (the OFXRequest property). The engine's version adds nothing.
  virtual int BuildMessageSets(ByteString& out, bool wrapped);
  // Reads the checked response from Document(); the cursor is on the root.
  virtual int ParseResponse();

  // ---- Request (the envelope and sign-on) ----

  // Loads the templates of the current OFXVersion and the password-change
  // template, registers the aggregates and clears the request state.
  int LoadTemplates();
  // The whole request. Without `with_credentials` USERID, USERPASS and
  // NEWUSERPASS read "******anon" (the rendering for the log). 0 or 200.
  int BuildRequest(ByteString& out, bool with_credentials);
  // A fresh TRNUID (8-4-4-4-4-8 lowercase hex digits, or a random UUID with
  // StrictServerRequests), also kept as TransactionId(). 0 or 200.
  int NewTransactionId(ByteString& out);
  // 0, 2000 "Missing required field: ..." for the first empty credential or
  // institution field, or 202 for images with OFX 1.x.
  int CheckRequiredFields();
  // 0 transactions, 1 closing information; 202 for anything else.
  int SetStatementType(int32_t type);
  int32_t StatementType() const { return statement_type_; }
  const char* TransactionId() const { return transaction_id_.Data(); }

  // ---- Exchange and response ----

  // Builds, logs and posts the request to FIUrl, then processes the
  // response. 0, the HTTP layer's code, 2002 or 2003 for an unreadable
  // response, 2001 for an error status, or the service's code.
  int Exchange();
  // Parses `text` as a server response, checks the sign-on, reads a
  // challenge or runs ParseResponse. The document refers to the engine's copy
  // of `text`, or to the HTTP body in place when `text` is TransferredData().
  int ProcessResponse(std::string_view text);
  // Checks the STATUS of the aggregate at `path` (relative to the cursor).
  // Without `is_signon` the cursor is left on `path`, else it goes back to
  // where it was. 0, 2001 for an error status, or a path error.
  int CheckStatus(std::string_view path, bool is_signon = false);
  // CheckStatus of the child `wrapper`, or of the root when the document is
  // that aggregate alone (a transaction response saved on its own).
  int CheckWrapperStatus(std::string_view wrapper);
  // `out` = the text at `path` and the cursor stays there; a missing element
  // gives 2000 when `required`, else an empty `out`.
  int ReadResponseValue(ByteString& out, MarkupDocument& document, std::string_view path, bool required);
  // Appends the text of the child `name` to `out` (emptied first when
  // `clear`) and returns to the parent. A missing child gives 202 when
  // `required`.
  int ReadField(MarkupDocument& document, const char* name, ByteString& out, bool required = true, bool clear = true);
  // The 1-based position among the children of `path` of the first one named
  // `name`, 0 when none; the cursor is left on `path`. When `path` cannot be
  // reached the result is the path's error code; a caller that must tell the
  // two apart checks HasPath(path) first.
  int FindChildIndex(MarkupDocument& document, std::string_view path, const char* name);
  // Reads an OFX file (header lines allowed) as a response. 0, 302, 305,
  // 2002, 2003 or the processing's code.
  int ReadOFXDataFile(const char* path);
  // Writes the raw last response; a null or empty path does nothing.
  int WriteOFXDataFile(const char* path);
  // The statement components' image download. Only "OPAQUE" references
  // (also an empty type) are fetched; others give 0 and no data. On success
  // `data` and `length` hold the image until the next call.
  int GetImage(const char* reference, const char* reference_type, const char*& data, int32_t& length);
  // "OFXData": processes `text` as a response; OFXResponse takes it whatever
  // the result.
  int SetData(std::string_view text);

  MarkupDocument& Document() { return document_; }
  // The raw bytes of the last response: the HTTP body, or the text or file
  // a response was read from.
  std::string_view RawResponse() const;
  const char* ServerMessage() const { return server_message_.Data(); }

  // ---- Multi-factor challenge ----

  bool MFAChallengePending() const { return mfa_challenge_pending_; }
  void SetMFAChallengePending(bool on) { mfa_challenge_pending_ = on; }
  // The next request carries the answers of Challenges().
  void SetAnswersReady(bool on) { answers_ready_ = on; }
  bool AnswersReady() const { return answers_ready_; }
  ItemList<MFAChallenge>& Challenges() { return challenges_; }

  // ---- Dates and amounts (the host's forms) ----

  // `out` = the OFX date in DateFormat; returns `out`'s text.
  const char* FormatDate(ByteString& out, std::string_view ofx_date);
  // `out` = the host's date as an OFX date; 0 or 676 "Cannot parse date.".
  int ParseUserDate(ByteString& out, std::string_view text);
  // The cleaned amount, valid until the next call.
  std::string_view FormatAmount(std::string_view text) { return formats_.FormatAmount(text); }
  static bool ParseOFXDate(OFXDateTime& date_time, std::string_view text) { return date_time.ParseOFXDate(text); }
  DateAmountFormat& Formats() { return formats_; }

  // ---- Properties common to the OFX components ----

  const char* FIId() const { return fi_id_.Data(); }
  int SetFIId(const char* value) { return fi_id_.Assign(value); }
  const char* FIOrganization() const { return fi_organization_.Data(); }
  int SetFIOrganization(const char* value) { return fi_organization_.Assign(value); }
  const char* FIUrl() const { return fi_url_.Data(); }
  int SetFIUrl(const char* value) { return fi_url_.Assign(value); }
  // Statement components: where a downloaded image is stored, without extension.
  const char* ImageFile() const { return image_file_.Data(); }
  int SetImageFile(const char* value) { return image_file_.Assign(value); }
  bool IncludeImages() const { return include_images_; }
  int SetIncludeImages(bool on);
  // Replaced by the ACCESSKEY of every sign-on response.
  const char* OFXAccessKey() const { return access_key_.Data(); }
  int SetOFXAccessKey(const char* value) { return access_key_.Assign(value); }
  const char* OFXAppId() const { return app_id_.Data(); }
  int SetOFXAppId(const char* value) { return app_id_.Assign(value); }
  const char* OFXAppVersion() const { return app_version_.Data(); }
  int SetOFXAppVersion(const char* value) { return app_version_.Assign(value); }
  const char* OFXPassword() const { return password_.Data(); }
  int SetOFXPassword(const char* value) { return password_.Assign(value); }
  const char* OFXUser() const { return user_.Data(); }
  int SetOFXUser(const char* value) { return user_.Assign(value); }
  // The first character selects OFX 1.x SGML ("1") or OFX 2.x XML ("2"); the
  // next request picks up a change.
  const char* OFXVersion() const { return version_.Data(); }
  int SetOFXVersion(const char* value) { return version_.Assign(value); }
  // The service's own request aggregate as it would be sent now, with a
  // fresh TRNUID; empty when it cannot be built.
  const char* OFXRequest();
  // The last response. Writing clears the request state as Reset does, then
  // processes the text; an empty text fails with 508.
  // A data file reads back as its top element, with the end tags that SGML
  // leaves out written in and without the header lines.
  const char* OFXResponse();
  int SetOFXResponse(const char* value);
  // The IMAGEREF of the pending image request; the body of the next request
  // is the image request while it is set (OFX "211" only).
  const char* ImageReference() const { return image_reference_.Data(); }
  int SetImageReference(const char* value) { return image_reference_.Assign(value); }

 private:
  enum class RawSource : int8_t { kNone, kHttp, kRetained, kFile };

  // The request fields that Reset and writing OFXResponse clear.
  void ClearRequestState();
  // Loads the version-dependent templates; an unknown version keeps the old.
  int LoadVersionTemplates();
  bool IsVersion2() const { return version_.ByteAt(0) == '2'; }
  // "<NAME>value</NAME>\r\n" (no end tag for 1.x); nothing for an empty value.
  int AppendOptionalElement(ByteString& out, const char* name, const ByteString& value) const;
  int AppendChallengeAnswers(ByteString& out);
  void ResetDocument();
  // Turns the parser's 207 and 201 into 2002 and 2003.
  int MapParseFailure(int code);
  int ReadChallenges();
  int WriteImageFile(const ByteString& path);

  // Request state.
  RequestTemplate header_template_;
  RequestTemplate signon_template_;
  RequestTemplate password_change_template_;
  RequestTemplate challenge_template_;
  RequestTemplate image_template_;
  bool mfa_challenge_pending_ = false;
  bool answers_ready_ = false;
  ByteString version_;
  DateAmountFormat formats_;
  ByteString currency_format_;
  ByteString fi_url_;
  ByteString user_;
  ByteString password_;
  ByteString fi_organization_;
  ByteString fi_id_;
  ByteString app_id_;
  ByteString app_version_;
  ByteString old_file_uid_;
  ByteString new_file_uid_;
  ByteString session_cookie_;  // nothing fills it; kept for the SESSCOOKIE slot
  ByteString client_uid_;
  ByteString user_cred1_;
  ByteString user_cred2_;
  ByteString access_key_;
  ByteString auth_token_;
  ByteString new_password_;
  ByteString transaction_id_;
  ByteString image_reference_;
  int32_t statement_type_ = 0;
  uint32_t seed_counter_ = 0;
  ItemList<MFAChallenge> challenges_;

  // Response state.
  OFXTagTable document_;
  bool include_images_ = false;
  bool debug_trace_ = false;
  ByteString ofx_log_;
  ByteString request_;            // the request sent; OFXRequest reuses it
  ByteString retained_;           // a response that did not come over HTTP
  std::string_view parsed_;       // what the document refers to: retained_ or the HTTP body
  bool response_is_set_ = false;  // parsed_ is OFXResponse (both end in a NUL)
  TextBuffer file_text_;          // a data file as read, parsed in place
  ByteString file_response_;      // OFXResponse of a data file, made when first read
  bool document_parsed_ = false;  // the last response parsed as markup
  RawSource raw_source_ = RawSource::kNone;
  bool posted_ = false;  // the last Exchange reached the post
  int post_result_ = 0;
  ByteString server_message_;
  ByteString image_file_;
  ByteString image_data_;

  // Opt-in: responses and files that break the strict rules are repaired
  // (each repair fires Error), and requests take the forms strict servers
  // want (a UUID TRNUID, an XML declaration before the 2.x header).
  bool lenient_reading_ = false;
  bool strict_server_requests_ = false;
  LenientReader lenient_;
};

}  // namespace orvelan
