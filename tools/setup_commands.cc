// profile and accounts: what a host asks of a new institution. The profile
// shows its message sets, its sign-on realms and their rules, and answers a
// multi-factor challenge; accounts shows the user's account list.
//
// A server that asks for a challenge gets the questions printed; with an
// --answer for each (by phrase id) `profile` answers them, prints the access
// key the server grants, and fetches the profile with it. `accounts` takes
// that key with --access-key.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "cli.h"

namespace {

const char kUsage[] =
    "usage: orvelan profile|accounts FILE.ofx | SIGN-ON [--answer ID=TEXT]... [--access-key KEY]\n"
    "where SIGN-ON is --institution NAME, or --url URL --org ORG --user U [--fid FID];\n"
    "`orvelan --help` lists the common options.\n";

using K = Column::Kind;

}  // namespace

std::vector<Section> AccountSections() {
#define P(name) ACCOUNT_PROP_##name
  return {{"accounts", P(ACCCOUNT),
           {{"service_type", P(ACCSERVICETYPE)}, {"type", P(ACCTYPE)},
            {"bank_id", P(ACCBANKID)}, {"id", P(ACCID)},
            {"description", P(ACCDESCRIPTION)}, {"status", P(ACCSTATUS)},
            {"tx_download", P(ACCSUPPORTSTXDOWNLOAD), K::kInt},
            {"transfer_source", P(ACCISTRANSFERSOURCE), K::kInt},
            {"transfer_destination", P(ACCISTRANSFERDESTINATION), K::kInt}}},
          {"list", 0, {{"last_update", P(LASTUPDATE)}}}};
#undef P
}

std::vector<Section> ProfileSections() {
#define P(name) FIPROFILE_PROP_##name
  return {{"institution",
           0,
           {{"name", P(FINAME)}, {"address", P(FIADDRESS1)},
            {"city", P(FICITY)}, {"state", P(FISTATE)},
            {"country", P(FICOUNTRY)}, {"home_page", P(FIHOMEPAGE)},
            {"support_phone", P(FICUSTOMERSERVICEPHONE)},
            {"profile_date", P(FIPROFILEDATE)}, {"access_key", P(OFXACCESSKEY)}}},
          {"message_sets", P(MESSAGESETCOUNT),
           {{"name", P(MESSAGESETNAME)}, {"version", P(MESSAGESETVERSION)},
            {"url", P(MESSAGESETURL)}, {"realm", P(MESSAGESETSIGNONREALM)},
            {"security", P(MESSAGESETSECURITY)},
            {"closing", P(MESSAGESETCLOSINGAVAILABLE), K::kInt},
            {"tx_images", P(MESSAGESETTXIMAGEAVAILABLE), K::kInt}}},
          {"sign_on_realms", P(SIGNONCOUNT),
           {{"realm", P(SIGNONREALM)}, {"min_chars", P(SIGNONMINCHARS), K::kInt},
            {"max_chars", P(SIGNONMAXCHARS), K::kInt}, {"char_type", P(SIGNONCHARTYPE), K::kInt},
            {"case_sensitive", P(SIGNONCASESENSITIVE), K::kInt}, {"special", P(SIGNONSPECIAL), K::kInt},
            {"spaces", P(SIGNONSPACES), K::kInt}, {"pin_change", P(SIGNONPINCHANGE), K::kInt},
            {"mfa_supported", P(SIGNONMFACHALLENGESUPPORTED), K::kInt}}},
          {"challenge_questions", P(CHALLENGEQUESTIONCOUNT),
           {{"phrase_id", P(CHALLENGEQUESTIONPHRASEID)},
            {"label", P(CHALLENGEQUESTIONLABEL)}}}};
#undef P
}

int RunSetupCommand(Cli& cli, const std::string& command, int argc, char** argv, int first) {
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, {{"--answer", "answer", nullptr, true}}, kUsage, &args);
      status != 0) {
    return status < 0 ? 0 : status;
  }
  std::map<std::string, std::string> answers;
  for (const std::string& answer : args.All("answer")) {
    const size_t eq = answer.find('=');
    if (eq == std::string::npos) return cli.Usage("--answer takes ID=TEXT", kUsage);
    answers[answer.substr(0, eq)] = answer.substr(eq + 1);
  }
  const bool accounts = command == "accounts";
  const Component& component = accounts ? kAccountComponent : kProfileComponent;
  const std::vector<Section> sections = accounts ? AccountSections() : ProfileSections();
  Format format = Format::kTable;
  ParseFormat(args.Get("format").empty() ? "table" : args.Get("format"), &format);
  if (args.words.size() > 1) return cli.Usage("only one file can be read at a time", kUsage);
  const std::string file = args.words.empty() ? std::string() : args.words[0];
  std::string password;
  if (file.empty()) {
    if (args.Get("url").empty() || args.Get("org").empty() || args.Get("user").empty()) {
      return cli.Usage("give FILE.ofx, or --url, --org and --user", kUsage);
    }
    if (int status = ReadPassword(cli, kUsage, &password); status != 0) return status;
  }

  Session session(cli, component);
  // The fixed dictionary lacks the loan message set that 1.x profiles list.
  if (int status = session.ApplyReadSettings(args, "LOANMSGSETV1"); status != 0) return status;
  const int read = accounts ? ACCOUNT_METHOD_READOFXDATAFILE : FIPROFILE_METHOD_READOFXDATAFILE;
  const int fetch = accounts ? ACCOUNT_METHOD_GETINFO : FIPROFILE_METHOD_GETPROFILE;
  if (!file.empty()) {
    void* params[1] = {const_cast<char*>(file.c_str())};
    int lengths[1] = {0};
    if (session.Run(read, 1, params, lengths, false) != 0) return session.Fail("ReadOFXDataFile");
    PrintSections(component, session.handle(), sections, "", format, stdout);
    return 0;
  }
  if (int status = session.SignOn(args, password, "102"); status != 0) return status;
  int rc = session.Run(fetch, 0, nullptr, nullptr, true);
  if (!accounts && rc == 2001 && std::strstr(component.last_error(session.handle()), "(3000)") != nullptr) {
    if (session.Run(FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS, 0, nullptr, nullptr, true) != 0) {
      return session.Fail("RequestChallengeQuestions");
    }
    const long count = session.Integer(FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT);
    bool answered = count > 0;
    for (int i = 0; i < count; ++i) {
      const auto answer = answers.find(session.Text(FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID, i));
      if (answer == answers.end()) {
        answered = false;
        continue;
      }
      component.set(session.handle(), FIPROFILE_PROP_CHALLENGEQUESTIONANSWER, i, answer->second.c_str(), 0);
    }
    if (!answered) {
      PrintSections(component, session.handle(), {sections.back()}, "", format, stdout);
      std::fprintf(stderr, "%s: the server asks these questions; answer each with --answer ID=TEXT\n",
                   cli.name.c_str());
      return 1;
    }
    if (session.Run(FIPROFILE_METHOD_SENDCHALLENGEANSWERS, 0, nullptr, nullptr, true) != 0) {
      return session.Fail("SendChallengeAnswers");
    }
    // Reset ends the challenge and keeps the access key; the sign-on is set again.
    session.Run(FIPROFILE_METHOD_RESET, 0, nullptr, nullptr, false);
    if (int status = session.SignOn(args, password, "102"); status != 0) return status;
    if (int status = session.ApplyReadSettings(args, "LOANMSGSETV1"); status != 0) return status;
    rc = session.Run(fetch, 0, nullptr, nullptr, true);
  }
  if (rc != 0) return session.Fail(accounts ? "GetInfo" : "GetProfile");
  PrintSections(component, session.handle(), sections, "", format, stdout);
  return 0;
}
