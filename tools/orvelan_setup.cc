// orvelan-profile and orvelan-accounts: what a host asks of a new institution.
// Built twice from this file: orvelan-profile prints the institution's profile
// (its message sets, its sign-on realms and their rules) and answers a
// multi-factor challenge; orvelan-accounts prints the user's account list.
//
//   orvelan-profile  FILE.ofx | --url URL --org ORG --user U [--fid FID] [--answer ID=TEXT]...
//   orvelan-accounts FILE.ofx | --url URL --org ORG --user U [--fid FID] [--access-key KEY]
//   common: [--format table|csv|json] [--ofx-version 102|211] [--ca-file PEM] [--app-id ID] [--app-version V]
//
// A server that asks for a challenge gets the questions printed; with an
// --answer for each (by phrase id) orvelan-profile answers them, prints the
// access key the server grants, and fetches the profile with it.
// orvelan-accounts takes that key with --access-key. The password comes from
// ORVELAN_PASSWORD only. Exit status: 0 on success, 1 with the library's code
// and text, 2 for a bad command line.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "orvelan.h"

namespace {

#ifdef ORVELAN_ACCOUNTS_TOOL
const char kName[] = "orvelan-accounts";
#define C(op) Account_##op
#define P(name) ACCOUNT_PROP_##name
#else
const char kName[] = "orvelan-profile";
#define C(op) FIProfile_##op
#define P(name) FIPROFILE_PROP_##name
#endif

enum class Format { kTable, kCsv, kJson };
enum class Kind { kText, kInt };
struct Column {
  const char* name;
  int id;
  Kind kind;
};
struct Section {
  const char* name;
  int count_id;  // 0: one row of the plain properties
  std::vector<Column> columns;
};

std::string Value(void* c, const Column& column, int row) {
  void* v = C(Get)(c, column.id, row, nullptr);
  if (column.kind == Kind::kInt) return std::to_string(static_cast<long>(reinterpret_cast<intptr_t>(v)));
  return v == nullptr ? "" : static_cast<const char*>(v);
}

std::string Quoted(const std::string& text, char quote, bool json) {
  std::string out(1, quote);
  for (char ch : text) {
    if (ch == quote || (json && ch == '\\')) out += json ? '\\' : quote;
    if (json && static_cast<unsigned char>(ch) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", ch);
      out += escaped;
      continue;
    }
    out += ch;
  }
  return out + quote;
}

void Print(void* c, const std::vector<Section>& sections, Format format) {
  if (format == Format::kJson) std::printf("{");
  for (size_t s = 0; s < sections.size(); ++s) {
    const Section& section = sections[s];
    const int rows = section.count_id == 0 ? 1 : static_cast<int>(reinterpret_cast<intptr_t>(C(Get)(c, section.count_id, 0, nullptr)));
    if (format == Format::kJson) {
      std::printf("%s\n  \"%s\": %s", s == 0 ? "" : ",", section.name, section.count_id == 0 ? "" : "[");
    } else {
      std::printf("%s%s\n", s == 0 ? "" : "\n", section.name);
    }
    if (format == Format::kCsv) {
      for (size_t i = 0; i < section.columns.size(); ++i) std::printf("%s%s", i ? "," : "", section.columns[i].name);
      std::printf("\n");
    }
    for (int row = 0; row < rows; ++row) {
      if (format == Format::kJson) std::printf("%s{", row == 0 ? "" : ", ");
      for (size_t i = 0; i < section.columns.size(); ++i) {
        const Column& column = section.columns[i];
        const std::string value = Value(c, column, row);
        if (format == Format::kTable) {
          std::printf("  %-28s %s\n", column.name, value.c_str());
        } else if (format == Format::kCsv) {
          std::printf("%s%s", i ? "," : "", Quoted(value, '"', false).c_str());
        } else {
          std::printf("%s\"%s\": %s", i ? ", " : "", column.name,
                      column.kind == Kind::kInt ? value.c_str() : Quoted(value, '"', true).c_str());
        }
      }
      if (format == Format::kJson) std::printf("}");
      if (format == Format::kCsv) std::printf("\n");
      if (format == Format::kTable && row + 1 < rows) std::printf("  --\n");
    }
    if (format == Format::kJson && section.count_id != 0) std::printf("]");
  }
  if (format == Format::kJson) std::printf("\n}");
  std::printf("\n");
}

int Fail(void* c) {
  std::fprintf(stderr, "%s: [%d] %s\n", kName, C(GetLastErrorCode)(c), C(GetLastError)(c));
  return 1;
}

int Usage(const char* why) {
  std::fprintf(stderr,
               "%s: %s\nusage: %s FILE.ofx | --url URL --org ORG --user U [--fid FID]\n"
               "         [--answer ID=TEXT]... [--access-key KEY] [--format table|csv|json]\n"
               "         [--ofx-version 102|211] [--ca-file PEM] [--app-id ID] [--app-version V]\n"
               "The password comes from ORVELAN_PASSWORD.\n",
               kName, why, kName);
  return 2;
}

std::vector<Section> Sections() {
#ifdef ORVELAN_ACCOUNTS_TOOL
  return {{"accounts", P(ACCCOUNT),
           {{"service_type", P(ACCSERVICETYPE), Kind::kText}, {"type", P(ACCTYPE), Kind::kText},
            {"bank_id", P(ACCBANKID), Kind::kText}, {"id", P(ACCID), Kind::kText},
            {"description", P(ACCDESCRIPTION), Kind::kText}, {"status", P(ACCSTATUS), Kind::kText},
            {"tx_download", P(ACCSUPPORTSTXDOWNLOAD), Kind::kInt},
            {"transfer_source", P(ACCISTRANSFERSOURCE), Kind::kInt},
            {"transfer_destination", P(ACCISTRANSFERDESTINATION), Kind::kInt}}},
          {"list", 0, {{"last_update", P(LASTUPDATE), Kind::kText}}}};
#else
  return {{"institution",
           0,
           {{"name", P(FINAME), Kind::kText}, {"address", P(FIADDRESS1), Kind::kText},
            {"city", P(FICITY), Kind::kText}, {"state", P(FISTATE), Kind::kText},
            {"country", P(FICOUNTRY), Kind::kText}, {"home_page", P(FIHOMEPAGE), Kind::kText},
            {"support_phone", P(FICUSTOMERSERVICEPHONE), Kind::kText},
            {"profile_date", P(FIPROFILEDATE), Kind::kText}, {"access_key", P(OFXACCESSKEY), Kind::kText}}},
          {"message_sets", P(MESSAGESETCOUNT),
           {{"name", P(MESSAGESETNAME), Kind::kText}, {"version", P(MESSAGESETVERSION), Kind::kText},
            {"url", P(MESSAGESETURL), Kind::kText}, {"realm", P(MESSAGESETSIGNONREALM), Kind::kText},
            {"security", P(MESSAGESETSECURITY), Kind::kText},
            {"closing", P(MESSAGESETCLOSINGAVAILABLE), Kind::kInt},
            {"tx_images", P(MESSAGESETTXIMAGEAVAILABLE), Kind::kInt}}},
          {"sign_on_realms", P(SIGNONCOUNT),
           {{"realm", P(SIGNONREALM), Kind::kText}, {"min_chars", P(SIGNONMINCHARS), Kind::kInt},
            {"max_chars", P(SIGNONMAXCHARS), Kind::kInt}, {"char_type", P(SIGNONCHARTYPE), Kind::kInt},
            {"case_sensitive", P(SIGNONCASESENSITIVE), Kind::kInt}, {"special", P(SIGNONSPECIAL), Kind::kInt},
            {"spaces", P(SIGNONSPACES), Kind::kInt}, {"pin_change", P(SIGNONPINCHANGE), Kind::kInt},
            {"mfa_supported", P(SIGNONMFACHALLENGESUPPORTED), Kind::kInt}}},
          {"challenge_questions", P(CHALLENGEQUESTIONCOUNT),
           {{"phrase_id", P(CHALLENGEQUESTIONPHRASEID), Kind::kText},
            {"label", P(CHALLENGEQUESTIONLABEL), Kind::kText}}}};
#endif
}

}  // namespace

int main(int argc, char** argv) {
  std::map<std::string, std::string> options = {{"--format", "table"}, {"--app-id", "QWIN"}, {"--app-version", "2700"},
                                                {"--ofx-version", "102"}};
  std::map<std::string, std::string> answers;
  std::string file;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") return Usage("prints an institution's setup data"), 0;
    if (arg.rfind("--", 0) != 0) {
      file = arg;
      continue;
    }
    if (i + 1 >= argc) return Usage(("missing value for " + arg).c_str());
    const std::string value = argv[++i];
    if (arg == "--answer") {
      const size_t eq = value.find('=');
      if (eq == std::string::npos) return Usage("--answer takes ID=TEXT");
      answers[value.substr(0, eq)] = value.substr(eq + 1);
    } else if (arg == "--url" || arg == "--org" || arg == "--user" || arg == "--fid" || arg == "--format" ||
               arg == "--ofx-version" || arg == "--ca-file" || arg == "--app-id" || arg == "--app-version" ||
               arg == "--access-key") {
      options[arg] = value;
    } else {
      return Usage(("unknown option " + arg).c_str());
    }
  }
  const std::string& f = options["--format"];
  const Format format = f == "csv" ? Format::kCsv : f == "json" ? Format::kJson : Format::kTable;
  if (f != "table" && f != "csv" && f != "json") return Usage("--format is table, csv or json");

  void* c = C(Create)(nullptr, nullptr, nullptr);
  const auto set = [c](int id, const std::string& value) { return C(Set)(c, id, 0, value.c_str(), 0); };
  const auto config = [c](const std::string& setting) {
    void* params[2] = {const_cast<char*>(setting.c_str()), nullptr};
    int lengths[2] = {0, 0};
    return C(Do)(c, 2, 2, params, lengths);
  };
  config("ExtraTags=LOANMSGSETV1");  // the fixed dictionary lacks it
  int rc = 0;
#ifdef ORVELAN_ACCOUNTS_TOOL
  const int kRead = ACCOUNT_METHOD_READOFXDATAFILE, kFetch = ACCOUNT_METHOD_GETINFO;
#else
  const int kRead = FIPROFILE_METHOD_READOFXDATAFILE, kFetch = FIPROFILE_METHOD_GETPROFILE;
#endif
  if (!file.empty()) {
    void* params[1] = {const_cast<char*>(file.c_str())};
    int lengths[1] = {0};
    rc = C(Do)(c, kRead, 1, params, lengths);
  } else {
    const char* password = std::getenv("ORVELAN_PASSWORD");
    if (options["--url"].empty() || options["--org"].empty() || options["--user"].empty()) {
      return Usage("give FILE.ofx, or --url, --org and --user");
    }
    if (password == nullptr || *password == '\0') return Usage("set ORVELAN_PASSWORD");
    const auto sign_on = [&] {
      set(P(FIURL), options["--url"]);
      set(P(FIORGANIZATION), options["--org"]);
      set(P(FIID), options["--fid"]);
      set(P(OFXUSER), options["--user"]);
      set(P(OFXPASSWORD), password);
      set(P(OFXAPPID), options["--app-id"]);
      set(P(OFXAPPVERSION), options["--app-version"]);
      set(P(OFXVERSION), options["--ofx-version"]);
      if (!options["--access-key"].empty()) set(P(OFXACCESSKEY), options["--access-key"]);
      if (!options["--ca-file"].empty()) config("OpenSSLCAFile=" + options["--ca-file"]);
    };
    sign_on();
    rc = C(Do)(c, kFetch, 0, nullptr, nullptr);
#ifndef ORVELAN_ACCOUNTS_TOOL
    if (rc == 2001 && std::strstr(C(GetLastError)(c), "(3000)") != nullptr) {
      if (C(Do)(c, FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS, 0, nullptr, nullptr) != 0) return Fail(c);
      const int count = static_cast<int>(reinterpret_cast<intptr_t>(C(Get)(c, P(CHALLENGEQUESTIONCOUNT), 0, nullptr)));
      bool answered = count > 0;
      for (int i = 0; i < count; ++i) {
        const auto answer = answers.find(static_cast<const char*>(C(Get)(c, P(CHALLENGEQUESTIONPHRASEID), i, nullptr)));
        if (answer == answers.end()) answered = false;
        if (answer != answers.end()) C(Set)(c, P(CHALLENGEQUESTIONANSWER), i, answer->second.c_str(), 0);
      }
      if (!answered) {
        Print(c, {Sections().back()}, format);
        std::fprintf(stderr, "%s: the server asks these questions; answer each with --answer ID=TEXT\n", kName);
        return 1;
      }
      if (C(Do)(c, FIPROFILE_METHOD_SENDCHALLENGEANSWERS, 0, nullptr, nullptr) != 0) return Fail(c);
      C(Do)(c, FIPROFILE_METHOD_RESET, 0, nullptr, nullptr);  // ends the challenge; the access key stays
      sign_on();
      rc = C(Do)(c, kFetch, 0, nullptr, nullptr);
    }
#endif
  }
  if (rc != 0) return Fail(c);
  Print(c, Sections(), format);
  C(Destroy)(c);
  return 0;
}
