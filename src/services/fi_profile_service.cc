#include "services/fi_profile_service.h"

#include "base/error_codes.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

constexpr RequestForm kRequest = {
    MessageSetTable::kProfile,
    "<PROFTRNRQ>\r\n<TRNUID>~0~\r\n<PROFRQ>\r\n<CLIENTROUTING>~1~\r\n<DTPROFUP>~2~\r\n</PROFRQ>\r\n</PROFTRNRQ>\r\n",
    "<PROFTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PROFRQ>\r\n<CLIENTROUTING>~1~</CLIENTROUTING>\r\n"
    "<DTPROFUP>~2~</DTPROFUP>\r\n</PROFRQ>\r\n</PROFTRNRQ>\r\n"};

constexpr char kTextBadRouting[] = "ClientRouting must be a valid value.";
constexpr char kTextNoAnswers[] =
    "Missing required MFA fields: Challenge QuestionId/Answer pairs are missing in the request.";
constexpr char kTextInvalidChallengeIndex[] = "Invalid ChallengeQuestionIndex (out of bounds).";
constexpr char kTextInvalidMessageSetIndex[] = "Invalid MessageSetIndex (out of bounds).";
constexpr char kTextInvalidSignOnIndex[] = "Invalid SignOnIndex (out of bounds).";

using F = FIProfileService;
using M = MessageSetInfo;
using G = SignOnInfo;

// From PROFRS, each a sibling of the one before.
constexpr FieldRead kInstitution[] = {
    {F::kName, "../FINAME", true},         {F::kAddress1, "../ADDR1", true},
    {F::kAddress2, "../ADDR2", false},     {F::kAddress3, "../ADDR3", false},
    {F::kCity, "../CITY", true},           {F::kState, "../STATE", true},
    {F::kPostalCode, "../POSTALCODE", true}, {F::kCountry, "../COUNTRY", true},
    {F::kCustomerServicePhone, "../CSPHONE", false}, {F::kTechSupportPhone, "../TSPHONE", false},
    {F::kHomePage, "../URL", false},       {F::kEmail, "../EMAIL", false}};

constexpr FieldRead kCore[] = {{M::kVersion, "VER", true},
                               {M::kURL, "URL", true},
                               {M::kTransportSecurity, "TRANSPSEC", true},
                               {M::kSignOnRealm, "SIGNONREALM", true},
                               {M::kLanguage, "LANGUAGE", true},
                               {M::kSyncMode, "SYNCMODE", true},
                               {M::kRecovery, "RESPFILEER", true},
                               {M::kServiceProvider, "SPNAME", false},
                               {M::kRefreshSupport, "REFRESHSUPT", false},
                               {M::kSecurity, "OFXSEC", true}};
constexpr FieldRead kClosing[] = {{M::kClosingAvailable, "CLOSINGAVAIL", false}};
constexpr FieldRead kImages[] = {{M::kClosingImageAvailable, "CLOSINGIMGAVAIL", false},
                                 {M::kTxImageAvailable, "TRANIMGAVAIL", false}};

constexpr FieldRead kSignOn[] = {{G::kCaseSensitive, "CASESEN", true},
                                 {G::kPINChangeFirst, "CHGPINFIRST", true},
                                 {G::kMaxChars, "MAX", true},
                                 {G::kMinChars, "MIN", true},
                                 {G::kPINChange, "PINCH", true},
                                 {G::kRealm, "SIGNONREALM", true},
                                 {G::kSpaces, "SPACES", true},
                                 {G::kSpecial, "SPECIAL", true},
                                 {G::kUserCred1Label, "USERCRED1LABEL", false},
                                 {G::kUserCred2Label, "USERCRED2LABEL", false},
                                 {G::kClientUIdReq, "CLIENTUIDREQ", false},
                                 {G::kAuthTokenRequired, "AUTHTOKENFIRST", false},
                                 {G::kAuthTokenLabel, "AUTHTOKENLABEL", false},
                                 {G::kAuthTokenURL, "AUTHTOKENINFOURL", false},
                                 {G::kMFAChallengeSupported, "MFACHALLENGESUPT", false},
                                 {G::kMFAChallengeFirst, "MFACHALLENGEFIRST", false},
                                 {G::kCharTypeName, "CHARTYPE", true}};

int CheckIndex(OFXClient& client, int32_t index, int32_t count, const char* text) {
  if (index >= 0 && index < count) return kOk;
  return client.ReportError(kErrIndexOutOfRange, text);
}

}  // namespace

// ---- Records ----

int MessageSetInfo::Parse(OFXClient& client) {
  MarkupDocument& doc = client.Document();
  if (text[kAggregate].Assign(doc.ElementSubtree()) != kOk || text[kName].Assign(doc.ElementName()) != kOk) {
    return client.ReportError(kErrOutOfMemory, nullptr);
  }
  ByteString core(text[kName]);
  core.Append("V1/MSGSETCORE");
  if (int rc = SelectOrReport(client, core.View()); rc != kOk) return rc;
  if (int rc = ReadFields(client, text, kCore); rc != kOk) return rc;
  if (int rc = SelectOrReport(client, ".."); rc != kOk) return rc;
  if (int rc = ReadFields(client, text, kClosing); rc != kOk) return rc;
  if (doc.SelectPathIfPresent("IMAGEPROF")) {
    if (int rc = ReadFields(client, text, kImages); rc != kOk) return rc;
    if (int rc = SelectOrReport(client, ".."); rc != kOk) return rc;
  }
  return SelectOrReport(client, "..");
}

int SignOnInfo::Parse(OFXClient& client) {
  if (text[kAggregate].Assign(client.Document().ElementSubtree()) != kOk) {
    return client.ReportError(kErrOutOfMemory, nullptr);
  }
  return ReadFields(client, text, kSignOn);
}

int32_t SignOnInfo::CharType() const {
  for (int32_t i = 0; i < kCharTypeCount; ++i) {
    if (text[kCharTypeName].EqualsNoCase(kCharTypeNames[i])) return i;
  }
  return -1;
}

// ---- Service ----

int FIProfileService::InitDefaults() {
  if (OFXClient::InitDefaults() == 0) return 0;
  RestoreDefaults();
  return 1;
}

int FIProfileService::Reset() {
  RestoreDefaults();
  return OFXClient::Reset();
}

void FIProfileService::RestoreDefaults() {
  client_routing_ = 0;
  last_update_.Assign(kDefaultLastUpdate);
  ClearResponse();
}

int FIProfileService::ClearResponse() {
  for (ByteString& text : institution_) text.Clear();
  profile_date_.Clear();
  message_sets_.Clear();
  sign_ons_.Clear();
  return OFXClient::ClearResponse();
}

int FIProfileService::SetClientRouting(int32_t value) {
  if (value < 0 || value >= kRoutingCount) return ReportError(kErrIndexOutOfRange, kTextBadRouting);
  client_routing_ = value;
  return kOk;
}

const char* FIProfileService::LastUpdate() {
  return FormatDate(shown_last_update_, profile_date_.IsEmpty() ? last_update_.View() : profile_date_.View());
}

int FIProfileService::RequestChallengeQuestions() {
  SetMFAChallengePending(true);
  return Exchange();
}

int FIProfileService::SendChallengeAnswers() {
  SetAnswersReady(true);
  if (Challenges().Count() == 0) return ReportError(kErrMissingField, kTextNoAnswers);
  return Exchange();
}

int FIProfileService::SetChallengeQuestionCount(int32_t count) {
  return Challenges().SetCount(count) == kOk ? kOk : ReportError(kErrOutOfMemory, nullptr);
}

int FIProfileService::CheckChallengeIndex(int32_t index) {
  // The list creates a question on first access; reading one must find it.
  if (CheckIndex(*this, index, Challenges().Count(), kTextInvalidChallengeIndex) != kOk) return kErrIndexOutOfRange;
  return Challenges().Item(index) == nullptr ? ReportError(kErrOutOfMemory, nullptr) : kOk;
}

int FIProfileService::CheckMessageSetIndex(int32_t index) {
  return CheckIndex(*this, index, message_sets_.Count(), kTextInvalidMessageSetIndex);
}

int FIProfileService::CheckSignOnIndex(int32_t index) {
  return CheckIndex(*this, index, sign_ons_.Count(), kTextInvalidSignOnIndex);
}

int FIProfileService::BuildMessageSets(ByteString& out, bool wrapped) {
  ByteString trnuid;
  if (int rc = NewTransactionId(trnuid); rc != kOk) return rc;
  if (last_update_.IsEmpty() && last_update_.Assign(kDefaultLastUpdate) != kOk) {
    return ReportError(kErrOutOfMemory, nullptr);
  }
  const std::string_view arguments[] = {trnuid.View(), kRoutingNames[client_routing_], last_update_.View()};
  return ExpandRequest(*this, kRequest, request_, out, wrapped, arguments, 3);
}

int FIProfileService::ParseResponse() {
  MarkupDocument& doc = Document();
  doc.SelectPathIfPresent("PROFMSGSRSV1");
  if (int rc = CheckWrapperStatus("PROFTRNRS"); rc != kOk) return rc;
  // An INFO or WARN status (the client's profile is up to date, say) comes
  // without a profile; its message is the answer.
  if (doc.HasPath("STATUS/CODE")) {
    ByteString code;
    if (int rc = ReadResponseValue(code, doc, "STATUS/CODE", true); rc != kOk) return rc;
    if (ParseInt32(code.Data()) != 0) return ReportError(kErrNoResponse, ServerMessage());
    if (int rc = SelectOrReport(*this, "../.."); rc != kOk) return rc;
  }
  if (int rc = ReadResponseValue(profile_date_, doc, "PROFRS/DTPROFUP", true); rc != kOk) return rc;
  if (int rc = ReadInstitution(doc); rc != kOk) return rc;
  if (int rc = SelectOrReport(*this, "../MSGSETLIST/"); rc != kOk) return rc;
  if (int rc = ReadRecords(*this, "", message_sets_, [this](MessageSetInfo& m) { return m.Parse(*this); });
      rc != kOk) {
    return rc;
  }
  if (doc.HasPath("TAX1099MSGSET")) {
    // Not exposed, but a 1099 message set without them is no profile.
    ByteString value;
    for (const char* path : {"TAX1099MSGSET/TAX1099MSGSETV1/TAX1099DNLD", "../EXTD1099B", "../TAXYEARSUPPORTED"}) {
      if (int rc = ReadResponseValue(value, doc, path, true); rc != kOk) return rc;
    }
    if (int rc = SelectOrReport(*this, "../../.."); rc != kOk) return rc;
  }
  if (int rc = SelectOrReport(*this, "../SIGNONINFOLIST"); rc != kOk) return rc;
  return ReadRecords(*this, "SIGNONINFO", sign_ons_, [this](SignOnInfo& s) { return s.Parse(*this); });
}

// Every text is a sibling of the one read before it, so a missing optional
// one leaves the cursor where the next relative step still works.
int FIProfileService::ReadInstitution(MarkupDocument& doc) {
  for (const FieldRead& row : kInstitution) {
    if (int rc = ReadResponseValue(institution_[row.field], doc, row.name, row.required); rc != kOk) return rc;
  }
  return kOk;
}

}  // namespace orvelan
