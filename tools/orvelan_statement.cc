// orvelan-statement: prints a bank statement read from an OFX file, or
// downloads one from an institution's OFX server.
//
//   orvelan-statement FILE.ofx [--format table|csv|json]
//   orvelan-statement --url URL --org ORG --fid FID --user U
//                     --bank-id B --account A [--type checking|savings|moneymrkt|creditline]
//                     [--from MM/DD/YYYY] [--to MM/DD/YYYY] [--format table|csv|json]
//                     [--ofx-version 102|211] [--accept-cert FILE] [--timeout SECONDS]
//                     [--app-id ID] [--app-version VERSION]
//
// The application id and version default to "QWIN" and "2700", which most
// servers accept. The password never travels on the command line, where other
// users can read it: it comes from ORVELAN_PASSWORD or, when that is unset and
// standard input is a terminal, a prompt without echo. A response is kept up to
// 256 MB; the rest is dropped.
// Exit status: 0 on success, 1 when the library reports an error (its code and
// text go to standard error), 2 for a bad command line.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include <termios.h>
#include <unistd.h>

#include "orvelan.h"
#include "statement_printer.h"

namespace {

const char kUsage[] =
    "usage: orvelan-statement FILE.ofx [--format table|csv|json]\n"
    "       orvelan-statement --url URL --org ORG --fid FID --user U\n"
    "                         --bank-id B --account A [--type checking|savings|moneymrkt|creditline]\n"
    "                         [--from MM/DD/YYYY] [--to MM/DD/YYYY] [--format table|csv|json]\n"
    "                         [--ofx-version 102|211] [--accept-cert FILE] [--timeout SECONDS]\n"
    "                         [--app-id ID] [--app-version VERSION]\n"
    "The password comes from the environment variable ORVELAN_PASSWORD or, when\n"
    "that is unset and standard input is a terminal, a prompt without echo.\n"
    "A server's response is kept up to 256 MB; the rest is dropped.\n";

const char kPasswordVariable[] = "ORVELAN_PASSWORD";
// Large enough for years of transactions, small enough that a broken or
// hostile server cannot fill the host's memory.
const char kMaxTransferredData[] = "MaxTransferredData=268435456";

struct Options {
  std::string file, url, org, fid, user, password, bank_id, account, from, to, ofx_version, accept_cert;
  std::string app_id = "QWIN", app_version = "2700";
  int account_type = 0;
  long timeout = -1;
  StatementPrinter::Format format = StatementPrinter::Format::kTable;
};

int Usage(const char* problem) {
  if (problem != nullptr) std::fprintf(stderr, "orvelan-statement: %s\n", problem);
  std::fputs(kUsage, stderr);
  return 2;
}

bool ParseAccountType(const char* name, int* type) {
  static const char* const kNames[] = {"checking", "savings", "moneymrkt", "creditline"};
  for (int i = 0; i < 4; ++i) {
    if (std::strcmp(name, kNames[i]) == 0) {
      *type = i;
      return true;
    }
  }
  return false;
}

// Returns 0, or the exit status for a bad command line.
int ParseOptions(int argc, char** argv, Options* options) {
  struct TextOption {
    const char* flag;
    std::string* target;
  } const text_options[] = {
      {"--url", &options->url},           {"--org", &options->org},         {"--fid", &options->fid},
      {"--user", &options->user},         {"--bank-id", &options->bank_id},
      {"--account", &options->account},   {"--from", &options->from},       {"--to", &options->to},
      {"--ofx-version", &options->ofx_version}, {"--accept-cert", &options->accept_cert},
      {"--app-id", &options->app_id},     {"--app-version", &options->app_version},
  };
  for (int i = 1; i < argc; ++i) {
    const char* arg = argv[i];
    if (std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0) return Usage(nullptr);
    if (std::strncmp(arg, "--", 2) != 0) {
      if (!options->file.empty()) return Usage("only one file can be read at a time");
      options->file = arg;
      continue;
    }
    if (std::strncmp(arg, "--password", 10) == 0) {
      return Usage("--password is not accepted: the password comes from ORVELAN_PASSWORD or a prompt");
    }
    if (i + 1 >= argc) return Usage((std::string(arg) + " needs a value").c_str());
    const char* value = argv[++i];
    bool known = false;
    for (const TextOption& option : text_options) {
      if (std::strcmp(arg, option.flag) == 0) {
        *option.target = value;
        known = true;
      }
    }
    if (known) continue;
    if (std::strcmp(arg, "--type") == 0) {
      if (!ParseAccountType(value, &options->account_type)) return Usage("unknown account type");
    } else if (std::strcmp(arg, "--format") == 0) {
      if (!StatementPrinter::ParseFormat(value, &options->format)) return Usage("unknown format");
    } else if (std::strcmp(arg, "--timeout") == 0) {
      char* end = nullptr;
      options->timeout = std::strtol(value, &end, 10);
      if (*value == '\0' || *end != '\0') return Usage("the time-out is a number of seconds");
    } else {
      return Usage((std::string("unknown option ") + arg).c_str());
    }
  }
  if (options->file.empty() == options->url.empty()) return Usage("give either a file or --url");
  if (!options->url.empty()) {
    const struct {
      const std::string& value;
      const char* flag;
    } required[] = {{options->org, "--org"},         {options->fid, "--fid"},         {options->user, "--user"},
                    {options->account, "--account"}};
    for (const auto& entry : required) {
      if (entry.value.empty()) return Usage((std::string(entry.flag) + " is required with --url").c_str());
    }
  }
  return 0;
}

// Returns 0 with the password set, or exit status 2 when there is none.
int ReadPassword(Options* options) {
  if (const char* from_environment = std::getenv(kPasswordVariable); from_environment != nullptr) {
    options->password = from_environment;
  } else if (isatty(STDIN_FILENO)) {
    termios saved{};
    const bool can_hide = tcgetattr(STDIN_FILENO, &saved) == 0;
    if (can_hide) {
      termios quiet = saved;
      quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
      tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    std::fputs("OFX password: ", stderr);
    char line[1024];
    const bool got = std::fgets(line, sizeof line, stdin) != nullptr;
    if (can_hide) tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    std::fputc('\n', stderr);
    if (got) options->password.assign(line, std::strcspn(line, "\r\n"));
  }
  if (options->password.empty()) return Usage("no password: set ORVELAN_PASSWORD or run on a terminal to be asked");
  return 0;
}

// The library's code and text on standard error; exit status 1.
int Fail(void* st, const char* what) {
  std::fprintf(stderr, "orvelan-statement: %s failed: %d %s\n", what, BankStatement_GetLastErrorCode(st),
               BankStatement_GetLastError(st));
  return 1;
}

int SetText(void* st, int id, const std::string& value) {
  return BankStatement_Set(st, id, 0, value.c_str(), static_cast<int>(value.size()));
}

// The library reads host dates with the time of day; a bare date means midnight.
std::string WithTime(const std::string& date) {
  return date.find(' ') == std::string::npos ? date + " 00:00:00" : date;
}

int Download(void* st, const Options& options) {
  const struct {
    int id;
    const char* name;
    std::string value;
  } texts[] = {
      {BANKSTATEMENT_PROP_FIURL, "FIUrl", options.url},
      {BANKSTATEMENT_PROP_FIORGANIZATION, "FIOrganization", options.org},
      {BANKSTATEMENT_PROP_FIID, "FIId", options.fid},
      {BANKSTATEMENT_PROP_OFXUSER, "OFXUser", options.user},
      {BANKSTATEMENT_PROP_OFXPASSWORD, "OFXPassword", options.password},
      {BANKSTATEMENT_PROP_OFXAPPID, "OFXAppId", options.app_id},
      {BANKSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion", options.app_version},
      {BANKSTATEMENT_PROP_BANKID, "BankId", options.bank_id},
      {BANKSTATEMENT_PROP_ACCOUNTID, "AccountId", options.account},
      {BANKSTATEMENT_PROP_STARTDATE, "StartDate", options.from.empty() ? "" : WithTime(options.from)},
      {BANKSTATEMENT_PROP_ENDDATE, "EndDate", options.to.empty() ? "" : WithTime(options.to)},
      {BANKSTATEMENT_PROP_OFXVERSION, "OFXVersion", options.ofx_version.empty() ? "102" : options.ofx_version},
  };
  for (const auto& text : texts) {
    if (SetText(st, text.id, text.value) != 0) return Fail(st, text.name);
  }
  void* config[2] = {const_cast<char*>(kMaxTransferredData), nullptr};
  int config_lengths[2] = {0, 0};
  if (BankStatement_Do(st, BANKSTATEMENT_METHOD_CONFIG, 2, config, config_lengths) != 0) {
    return Fail(st, "MaxTransferredData");
  }
  if (BankStatement_Set(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0,
                        reinterpret_cast<void*>(static_cast<intptr_t>(options.account_type)), 0) != 0) {
    return Fail(st, "AccountType");
  }
  if (options.timeout >= 0 &&
      BankStatement_Set(st, BANKSTATEMENT_PROP_TIMEOUT, 0, reinterpret_cast<void*>(static_cast<intptr_t>(options.timeout)),
                        0) != 0) {
    return Fail(st, "Timeout");
  }
  if (!options.accept_cert.empty()) {
    std::ifstream in(options.accept_cert, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "orvelan-statement: cannot read %s\n", options.accept_cert.c_str());
      return 1;
    }
    std::string certificate((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (SetText(st, BANKSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, certificate) != 0) {
      return Fail(st, "SSLAcceptServerCertEncoded");
    }
  }
  if (BankStatement_Do(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr) != 0) return Fail(st, "GetStatement");
  return 0;
}

int ReadFile(void* st, const std::string& file) {
  void* params[1] = {const_cast<char*>(file.c_str())};
  int lengths[1] = {0};
  if (BankStatement_Do(st, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
    return Fail(st, "ReadOFXDataFile");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (int status = ParseOptions(argc, argv, &options); status != 0) return status;
  if (!options.url.empty()) {
    if (int status = ReadPassword(&options); status != 0) return status;
  }
  void* st = BankStatement_Create(nullptr, nullptr, nullptr);
  if (st == nullptr) {
    std::fprintf(stderr, "orvelan-statement: cannot create a BankStatement\n");
    return 1;
  }
  int status = options.file.empty() ? Download(st, options) : ReadFile(st, options.file);
  if (status == 0) StatementPrinter(options.format).Print(st, stdout);
  BankStatement_Destroy(st);
  return status;
}
