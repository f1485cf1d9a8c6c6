#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "ofx/ofx_client.h"
#include "ofx/request_template.h"
#include "services/service_steps.h"

// The institution's profile: who it is, which message sets it serves at which
// URL, and the sign-on realms with their password rules. It is also where the
// host answers a multi-factor challenge: it shows the engine's challenge
// questions, takes an answer per question and sends them. No settings of its
// own.
namespace orvelan {

// One message set of MSGSETLIST, e.g. BANKMSGSET.
struct MessageSetInfo : TextRecord<MessageSetInfo, 15> {
  enum Field : int8_t {
    kAggregate,
    kLanguage,
    kName,
    kRecovery,
    kRefreshSupport,
    kSecurity,
    kServiceProvider,
    kSignOnRealm,
    kSyncMode,
    kTransportSecurity,
    kURL,
    kVersion,
    kClosingAvailable,
    kClosingImageAvailable,
    kTxImageAvailable,
  };

  // Reads the message set at the cursor (its ...V1/MSGSETCORE and image
  // profile) and leaves the cursor there.
  int Parse(OFXClient& client);
};

// One SIGNONINFO.
struct SignOnInfo : TextRecord<SignOnInfo, 19> {
  enum Field : int8_t {
    kCharTypeName,  // CHARTYPE as sent
    kAggregate,
    kCaseSensitive,
    kPINChangeFirst,
    kMaxChars,
    kMinChars,
    kPINChange,
    kRealm,
    kSpaces,
    kSpecial,
    kUserCred1Label,
    kUserCred2Label,
    kClientUIdReq,
    kAuthTokenRequired,
    kAuthTokenLabel,
    kAuthTokenURL,
    kMFAChallengeSupported,
    kMFAChallengeFirst,
  };
  static constexpr int32_t kCharTypeCount = 4;
  static constexpr const char* kCharTypeNames[kCharTypeCount] = {"ALPHAONLY", "NUMERICONLY", "ALPHAORNUMERIC",
                                                                 "ALPHAANDNUMERIC"};

  int Parse(OFXClient& client);
  // The row of CHARTYPE (ASCII case ignored); -1 for a name outside them.
  int32_t CharType() const;
  int64_t Number(Field field) const { return text[field].ToInt64(); }
};

class FIProfileService : public OFXClient {
 public:
  static constexpr char kDefaultLastUpdate[] = "20000101120000.000[+0:GMT]";
  static constexpr int32_t kRoutingCount = 3;
  static constexpr const char* kRoutingNames[kRoutingCount] = {"NONE", "SERVICE", "MSGSET"};
  // The institution texts of PROFRS, in the order they are read.
  enum Institution : int8_t {
    kName,
    kAddress1,
    kAddress2,
    kAddress3,
    kCity,
    kState,
    kPostalCode,
    kCountry,
    kCustomerServicePhone,
    kTechSupportPhone,
    kHomePage,
    kEmail,
    kInstitutionCount
  };

  int InitDefaults() override;
  int Reset() override;
  int ClearResponse() override;
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  int ParseResponse() override;

  int GetProfile() { return Exchange(); }
  // The engine's challenge request: the next exchange asks for the questions.
  int RequestChallengeQuestions();
  // 2000 when there are no questions to answer, else sends the answers.
  int SendChallengeAnswers();

  // 0 "NONE", 1 "SERVICE", 2 "MSGSET"; anything else fails with 432 and
  // keeps the value.
  int32_t ClientRouting() const { return client_routing_; }
  int SetClientRouting(int32_t value);
  // The profile's date once one was read, else the date sent.
  const char* LastUpdate();
  int SetLastUpdate(const char* value) { return SetUserDate(*this, last_update_, value); }
  const char* LastUpdateOFX() const { return last_update_.Data(); }
  const char* FIProfileDate() { return FormatDate(shown_profile_date_, profile_date_.View()); }
  template <Institution kField>
  const char* FIText() const {
    return institution_[kField].Data();
  }

  // The engine's challenge list: resizing keeps the first questions.
  int32_t ChallengeQuestionCount() { return Challenges().Count(); }
  int SetChallengeQuestionCount(int32_t count);
  int CheckChallengeIndex(int32_t index);
  const char* ChallengeQuestionAggregate(int32_t index) { return Challenges().Item(index)->challenge.Data(); }
  const char* ChallengeQuestionAnswer(int32_t index) { return Challenges().Item(index)->answer.Data(); }
  int SetChallengeQuestionAnswer(int32_t index, const char* answer) {
    return Challenges().Item(index)->answer.Assign(answer);
  }
  const char* ChallengeQuestionLabel(int32_t index) { return Challenges().Item(index)->phrase_label.Data(); }
  const char* ChallengeQuestionPhraseId(int32_t index) { return Challenges().Item(index)->phrase_id.Data(); }

  int CheckMessageSetIndex(int32_t index);
  int32_t MessageSetCount() const { return message_sets_.Count(); }
  template <MessageSetInfo::Field kField>
  const char* MessageSetText(int32_t index) {
    return message_sets_.Item(index)->Text(kField);
  }
  template <MessageSetInfo::Field kField>
  bool MessageSetFlag(int32_t index) {
    return message_sets_.Item(index)->Flag(kField);
  }

  int CheckSignOnIndex(int32_t index);
  int32_t SignOnCount() const { return sign_ons_.Count(); }
  template <SignOnInfo::Field kField>
  const char* SignOnText(int32_t index) {
    return sign_ons_.Item(index)->Text(kField);
  }
  template <SignOnInfo::Field kField>
  bool SignOnFlag(int32_t index) {
    return sign_ons_.Item(index)->Flag(kField);
  }
  template <SignOnInfo::Field kField>
  int32_t SignOnNumber(int32_t index) {
    return static_cast<int32_t>(sign_ons_.Item(index)->Number(kField));
  }
  int32_t SignOnCharType(int32_t index) { return sign_ons_.Item(index)->CharType(); }

  ItemList<MessageSetInfo>& MessageSets() { return message_sets_; }
  ItemList<SignOnInfo>& SignOns() { return sign_ons_; }

 private:
  void RestoreDefaults();
  int ReadInstitution(MarkupDocument& doc);

  RequestTemplate request_;
  int32_t client_routing_ = 0;
  ByteString last_update_;
  ByteString institution_[kInstitutionCount];
  ByteString profile_date_;
  ByteString shown_last_update_;
  ByteString shown_profile_date_;
  ItemList<MessageSetInfo> message_sets_;
  ItemList<SignOnInfo> sign_ons_;
};

}  // namespace orvelan
