#include "services/fi_profile_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = FIProfileService;
using P = PropertyBuilder<S>;
using M = MessageSetInfo;
using G = SignOnInfo;

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Int<&S::ChallengeQuestionCount, &S::SetChallengeQuestionCount>(FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT,
                                                                        "ChallengeQuestionCount"),
      P::IndexedText<&S::ChallengeQuestionAggregate, &S::CheckChallengeIndex>(
          FIPROFILE_PROP_CHALLENGEQUESTIONAGGREGATE, "ChallengeQuestionAggregate"),
      P::IndexedText<&S::ChallengeQuestionAnswer, &S::CheckChallengeIndex, &S::SetChallengeQuestionAnswer>(
          FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, "ChallengeQuestionAnswer"),
      P::IndexedText<&S::ChallengeQuestionLabel, &S::CheckChallengeIndex>(FIPROFILE_PROP_CHALLENGEQUESTIONLABEL,
                                                                          "ChallengeQuestionLabel"),
      P::IndexedText<&S::ChallengeQuestionPhraseId, &S::CheckChallengeIndex>(FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID,
                                                                             "ChallengeQuestionPhraseId"),
      P::Int<&S::ClientRouting, &S::SetClientRouting>(FIPROFILE_PROP_CLIENTROUTING, "ClientRouting", true, 0),
      P::Text<&S::FIText<S::kAddress1>>(FIPROFILE_PROP_FIADDRESS1, "FIAddress1"),
      P::Text<&S::FIText<S::kAddress2>>(FIPROFILE_PROP_FIADDRESS2, "FIAddress2"),
      P::Text<&S::FIText<S::kAddress3>>(FIPROFILE_PROP_FIADDRESS3, "FIAddress3"),
      P::Text<&S::FIText<S::kCity>>(FIPROFILE_PROP_FICITY, "FICity"),
      P::Text<&S::FIText<S::kCountry>>(FIPROFILE_PROP_FICOUNTRY, "FICountry"),
      P::Text<&S::FIText<S::kCustomerServicePhone>>(FIPROFILE_PROP_FICUSTOMERSERVICEPHONE, "FICustomerServicePhone"),
      P::Text<&S::FIText<S::kEmail>>(FIPROFILE_PROP_FIEMAIL, "FIEmail"),
      P::Text<&S::FIText<S::kHomePage>>(FIPROFILE_PROP_FIHOMEPAGE, "FIHomePage"),
      P::Text<&S::FIText<S::kName>>(FIPROFILE_PROP_FINAME, "FIName"),
      P::Text<&S::FIText<S::kPostalCode>>(FIPROFILE_PROP_FIPOSTALCODE, "FIPostalCode"),
      P::Text<&S::FIProfileDate>(FIPROFILE_PROP_FIPROFILEDATE, "FIProfileDate"),
      P::Text<&S::FIText<S::kState>>(FIPROFILE_PROP_FISTATE, "FIState"),
      P::Text<&S::FIText<S::kTechSupportPhone>>(FIPROFILE_PROP_FITECHSUPPORTPHONE, "FITechSupportPhone"),
      P::Text<&S::LastUpdate, &S::SetLastUpdate>(FIPROFILE_PROP_LASTUPDATE, "LastUpdate"),

      P::Int<&S::MessageSetCount>(FIPROFILE_PROP_MESSAGESETCOUNT, "MessageSetCount"),
      P::IndexedText<&S::MessageSetText<M::kAggregate>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETAGGREGATE,
                                                                                  "MessageSetAggregate"),
      P::IndexedBool<&S::MessageSetFlag<M::kClosingAvailable>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETCLOSINGAVAILABLE, "MessageSetClosingAvailable"),
      P::IndexedBool<&S::MessageSetFlag<M::kClosingImageAvailable>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETCLOSINGIMAGEAVAILABLE, "MessageSetClosingImageAvailable"),
      P::IndexedText<&S::MessageSetText<M::kLanguage>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETLANGUAGE,
                                                                                 "MessageSetLanguage"),
      P::IndexedText<&S::MessageSetText<M::kName>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETNAME,
                                                                             "MessageSetName"),
      P::IndexedBool<&S::MessageSetFlag<M::kRecovery>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETRECOVERY,
                                                                                 "MessageSetRecovery"),
      P::IndexedBool<&S::MessageSetFlag<M::kRefreshSupport>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETREFRESHSUPPORT, "MessageSetRefreshSupport"),
      P::IndexedText<&S::MessageSetText<M::kSecurity>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETSECURITY,
                                                                                 "MessageSetSecurity"),
      P::IndexedText<&S::MessageSetText<M::kServiceProvider>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETSERVICEPROVIDER, "MessageSetServiceProvider"),
      P::IndexedText<&S::MessageSetText<M::kSignOnRealm>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETSIGNONREALM, "MessageSetSignOnRealm"),
      P::IndexedText<&S::MessageSetText<M::kSyncMode>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETSYNCMODE,
                                                                                 "MessageSetSyncMode"),
      P::IndexedBool<&S::MessageSetFlag<M::kTransportSecurity>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETTRANSPORTSECURITY, "MessageSetTransportSecurity"),
      P::IndexedBool<&S::MessageSetFlag<M::kTxImageAvailable>, &S::CheckMessageSetIndex>(
          FIPROFILE_PROP_MESSAGESETTXIMAGEAVAILABLE, "MessageSetTxImageAvailable"),
      P::IndexedText<&S::MessageSetText<M::kURL>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETURL,
                                                                            "MessageSetURL"),
      P::IndexedText<&S::MessageSetText<M::kVersion>, &S::CheckMessageSetIndex>(FIPROFILE_PROP_MESSAGESETVERSION,
                                                                                "MessageSetVersion"),

      P::Int<&S::SignOnCount>(FIPROFILE_PROP_SIGNONCOUNT, "SignOnCount"),
      P::IndexedText<&S::SignOnText<G::kAggregate>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONAGGREGATE,
                                                                          "SignOnAggregate"),
      P::IndexedText<&S::SignOnText<G::kAuthTokenLabel>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONAUTHTOKENLABEL,
                                                                               "SignOnAuthTokenLabel"),
      P::IndexedBool<&S::SignOnFlag<G::kAuthTokenRequired>, &S::CheckSignOnIndex>(
          FIPROFILE_PROP_SIGNONAUTHTOKENREQUIRED, "SignOnAuthTokenRequired"),
      P::IndexedText<&S::SignOnText<G::kAuthTokenURL>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONAUTHTOKENURL,
                                                                             "SignOnAuthTokenURL"),
      P::IndexedBool<&S::SignOnFlag<G::kCaseSensitive>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONCASESENSITIVE,
                                                                              "SignOnCaseSensitive"),
      P::IndexedInt<&S::SignOnCharType, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONCHARTYPE, "SignOnCharType"),
      P::IndexedBool<&S::SignOnFlag<G::kClientUIdReq>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONCLIENTUIDREQ,
                                                                             "SignOnClientUIdReq"),
      P::IndexedInt<&S::SignOnNumber<G::kMaxChars>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONMAXCHARS,
                                                                          "SignOnMaxChars"),
      P::IndexedBool<&S::SignOnFlag<G::kMFAChallengeFirst>, &S::CheckSignOnIndex>(
          FIPROFILE_PROP_SIGNONMFACHALLENGEFIRST, "SignOnMFAChallengeFirst"),
      P::IndexedBool<&S::SignOnFlag<G::kMFAChallengeSupported>, &S::CheckSignOnIndex>(
          FIPROFILE_PROP_SIGNONMFACHALLENGESUPPORTED, "SignOnMFAChallengeSupported"),
      P::IndexedInt<&S::SignOnNumber<G::kMinChars>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONMINCHARS,
                                                                          "SignOnMinChars"),
      P::IndexedBool<&S::SignOnFlag<G::kPINChange>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONPINCHANGE,
                                                                          "SignOnPINChange"),
      P::IndexedBool<&S::SignOnFlag<G::kPINChangeFirst>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONPINCHANGEFIRST,
                                                                               "SignOnPINChangeFirst"),
      P::IndexedText<&S::SignOnText<G::kRealm>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONREALM, "SignOnRealm"),
      P::IndexedBool<&S::SignOnFlag<G::kSpaces>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONSPACES, "SignOnSpaces"),
      P::IndexedBool<&S::SignOnFlag<G::kSpecial>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONSPECIAL,
                                                                        "SignOnSpecial"),
      P::IndexedText<&S::SignOnText<G::kUserCred1Label>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONUSERCRED1LABEL,
                                                                               "SignOnUserCred1Label"),
      P::IndexedText<&S::SignOnText<G::kUserCred2Label>, &S::CheckSignOnIndex>(FIPROFILE_PROP_SIGNONUSERCRED2LABEL,
                                                                               "SignOnUserCred2Label"),
  };
  std::vector<PropertyDef<S>> pool;
  AppendCommonRows(pool);
  AppendNamedRows(table, pool,
                  {
                      {FIPROFILE_PROP_FIID, "FIId"},
                      {FIPROFILE_PROP_FIORGANIZATION, "FIOrganization"},
                      {FIPROFILE_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {FIPROFILE_PROP_FIREWALLTYPE, "FirewallType"},
                      {FIPROFILE_PROP_FIREWALLHOST, "FirewallHost"},
                      {FIPROFILE_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {FIPROFILE_PROP_FIREWALLPORT, "FirewallPort"},
                      {FIPROFILE_PROP_FIREWALLUSER, "FirewallUser"},
                      {FIPROFILE_PROP_FIURL, "FIUrl"},
                      {FIPROFILE_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {FIPROFILE_PROP_OFXAPPID, "OFXAppId"},
                      {FIPROFILE_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {FIPROFILE_PROP_OFXPASSWORD, "OFXPassword"},
                      {FIPROFILE_PROP_OFXREQUEST, "OFXRequest"},
                      {FIPROFILE_PROP_OFXRESPONSE, "OFXResponse"},
                      {FIPROFILE_PROP_OFXUSER, "OFXUser"},
                      {FIPROFILE_PROP_OFXVERSION, "OFXVersion"},
                      {FIPROFILE_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {FIPROFILE_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {FIPROFILE_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {FIPROFILE_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {FIPROFILE_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {FIPROFILE_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {FIPROFILE_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {FIPROFILE_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

std::vector<MethodDef<S>> Methods() {
  std::vector<MethodDef<S>> methods =
      CommonMethods<S>({FIPROFILE_METHOD_CONFIG, FIPROFILE_METHOD_READOFXDATAFILE, FIPROFILE_METHOD_RESET,
                        FIPROFILE_METHOD_WRITEOFXDATAFILE});
  methods.push_back({FIPROFILE_METHOD_GETPROFILE, "GetProfile", [](S& s, MethodCall<S>&) { return s.GetProfile(); }});
  methods.push_back({FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS, "RequestChallengeQuestions",
                     [](S& s, MethodCall<S>&) { return s.RequestChallengeQuestions(); }});
  methods.push_back({FIPROFILE_METHOD_SENDCHALLENGEANSWERS, "SendChallengeAnswers",
                     [](S& s, MethodCall<S>&) { return s.SendChallengeAnswers(); }});
  return methods;
}

}  // namespace

const ComponentTables<FIProfileService>& FIProfileTables() {
  static const ComponentTables<FIProfileService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
