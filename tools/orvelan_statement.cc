// orvelan-statement: prints a bank, credit card, loan or investment statement
// read from an OFX file, or downloads one from an institution's OFX server.
//
//   orvelan-statement FILE.ofx [--card | --loan] [--format table|csv|json]
//   orvelan-statement --url URL --org ORG --fid FID --user U ACCOUNT
//                     [--closing] [--from MM/DD/YYYY] [--to MM/DD/YYYY] [--format table|csv|json]
//                     [--ofx-version 102|211] [--accept-cert FILE] [--timeout SECONDS]
//                     [--app-id ID] [--app-version VERSION]
//   where ACCOUNT is one of
//     --bank-id B --account A [--type checking|savings|moneymrkt|creditline]
//     --card NUMBER
//     --loan ACCOUNT [--loan-type auto|consumer|mortgage|commercial|student|military|smb|constr|homeequity]
//     --broker BROKERID --account A
//
// A file's content tells which statement it holds; --card or --loan overrides
// that. The application id and version default to "QWIN" and "2700", which most
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
    "usage: orvelan-statement FILE.ofx [--card | --loan] [--format table|csv|json]\n"
    "       orvelan-statement --url URL --org ORG --fid FID --user U ACCOUNT\n"
    "                         [--closing] [--from MM/DD/YYYY] [--to MM/DD/YYYY] [--format table|csv|json]\n"
    "                         [--ofx-version 102|211] [--accept-cert FILE] [--timeout SECONDS]\n"
    "                         [--app-id ID] [--app-version VERSION]\n"
    "where ACCOUNT is one of\n"
    "  --bank-id B --account A [--type checking|savings|moneymrkt|creditline]   a bank account\n"
    "  --card NUMBER                                                           a credit card\n"
    "  --loan ACCOUNT [--loan-type auto|consumer|mortgage|commercial|student|\n"
    "                  military|smb|constr|homeequity]                          a loan\n"
    "  --broker BROKERID --account A                                           a brokerage account\n"
    "A file's content tells which statement it holds; --card or --loan overrides that.\n"
    "--closing asks for the statement closing information instead of the transactions\n"
    "(over OFX 2.1.1 unless --ofx-version says otherwise).\n"
    "The password comes from the environment variable ORVELAN_PASSWORD or, when\n"
    "that is unset and standard input is a terminal, a prompt without echo.\n"
    "A server's response is kept up to 256 MB; the rest is dropped.\n";

const char kPasswordVariable[] = "ORVELAN_PASSWORD";
// Large enough for years of transactions, small enough that a broken or
// hostile server cannot fill the host's memory.
const char kMaxTransferredData[] = "MaxTransferredData=268435456";
// The loan aggregates the fixed OFX dictionary does not know.
const char kLoanExtraTags[] = "ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING";
// Likewise for investments, with the retirement-plan aggregates brokers add.
const char kInvExtraTags[] = "ExtraTags=INVSTMTENDRS,INVCLOSING,SWITCHMF,INV401K,INV401KBAL";

struct Options {
  std::string file, url, org, fid, user, password, bank_id, account, from, to, ofx_version, accept_cert;
  std::string card_or_loan;  // the value of --card or --loan
  std::string app_id = "QWIN", app_version = "2700";
  const StatementKind* kind = nullptr;  // chosen on the command line, else by the file
  const char* type_flag = nullptr;      // --type or --loan-type, whichever was given
  int account_type = 0;
  bool closing = false;
  long timeout = -1;
  StatementPrinter::Format format = StatementPrinter::Format::kTable;
};

int Usage(const char* problem) {
  if (problem != nullptr) std::fprintf(stderr, "orvelan-statement: %s\n", problem);
  std::fputs(kUsage, stderr);
  return 2;
}

bool ParseAccountType(const StatementKind& kind, const char* name, int* type) {
  for (int i = 0; i < kind.account_type_count; ++i) {
    if (std::strcmp(name, kind.account_type_names[i]) == 0) {
      *type = i;
      return true;
    }
  }
  return false;
}

// Sets the kind once; a second, different one is a usage error.
bool ChooseKind(const StatementKind& kind, Options* options) {
  if (options->kind != nullptr && options->kind != &kind) return false;
  options->kind = &kind;
  return true;
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
  // A download names the card or loan after --card or --loan; reading a file,
  // they are bare hints.
  bool download = false;
  for (int i = 1; i < argc; ++i) download = download || std::strcmp(argv[i], "--url") == 0;
  const char* type_name = nullptr;
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
    const bool is_card = std::strcmp(arg, "--card") == 0, is_loan = std::strcmp(arg, "--loan") == 0;
    if (is_card || is_loan) {
      if (!ChooseKind(is_card ? kCardStatement : kLoanStatement, options)) return Usage("give only one of --card and --loan");
      if (!download) continue;
    }
    if (std::strcmp(arg, "--broker") == 0) {
      if (!ChooseKind(kInvStatement, options)) return Usage("--broker is for brokerage accounts");
      if (i + 1 >= argc) return Usage("--broker needs a value");
      options->bank_id = argv[++i];
      continue;
    }
    if (std::strcmp(arg, "--closing") == 0) {
      options->closing = true;
      continue;
    }
    if (i + 1 >= argc) return Usage((std::string(arg) + " needs a value").c_str());
    const char* value = argv[++i];
    if (is_card || is_loan) {
      options->card_or_loan = value;
      continue;
    }
    bool known = false;
    for (const TextOption& option : text_options) {
      if (std::strcmp(arg, option.flag) == 0) {
        *option.target = value;
        known = true;
      }
    }
    if (known) continue;
    if (std::strcmp(arg, "--type") == 0 || std::strcmp(arg, "--loan-type") == 0) {
      options->type_flag = arg;
      type_name = value;
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
    if (options->kind == nullptr) options->kind = &kBankStatement;
    const StatementKind& kind = *options->kind;
    const bool bank = &kind == &kBankStatement;
    const bool by_account = bank || &kind == &kInvStatement;
    if (!by_account) {
      if (!options->bank_id.empty() || !options->account.empty()) return Usage("--bank-id and --account are for bank accounts");
      options->account = options->card_or_loan;
    }
    if (type_name != nullptr) {
      const char* wanted = bank ? "--type" : &kind == &kLoanStatement ? "--loan-type" : nullptr;
      if (wanted == nullptr || std::strcmp(options->type_flag, wanted) != 0) {
        return Usage((std::string(options->type_flag) + " does not fit this account").c_str());
      }
      if (!ParseAccountType(kind, type_name, &options->account_type)) return Usage("unknown account type");
    }
    const struct {
      const std::string& value;
      const char* flag;
    } required[] = {{options->org, "--org"},
                    {options->fid, "--fid"},
                    {options->user, "--user"},
                    {options->account, by_account ? "--account" : &kind == &kCardStatement ? "--card" : "--loan"}};
    for (const auto& entry : required) {
      if (entry.value.empty()) return Usage((std::string(entry.flag) + " is required with --url").c_str());
    }
  } else if (type_name != nullptr || options->closing) {
    return Usage("--type, --loan-type and --closing are for downloads");
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

// The statement in a file, judged by its first transaction wrapper; a file
// that shows none is read as a bank statement, whose reader names what is
// missing.
const StatementKind& KindOfFile(const std::string& path) {
  static const struct {
    const char* tag;
    const StatementKind& kind;
  } kWrappers[] = {{"<STMTTRNRS>", kBankStatement},          {"<STMTENDTRNRS>", kBankStatement},
                   {"<CCSTMTTRNRS>", kCardStatement},        {"<CCSTMTENDTRNRS>", kCardStatement},
                   {"<LOANSTMTTRNRS>", kLoanStatement},      {"<LOANSTMTENDTRNRS>", kLoanStatement},
                   {"<INVSTMTTRNRS>", kInvStatement},        {"<INVSTMTENDTRNRS>", kInvStatement}};
  std::ifstream in(path, std::ios::binary);
  std::string window;
  char chunk[65536];
  while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
    // Keep a tail of the last chunk so that a tag cut in two is still found.
    window.erase(0, window.size() > 32 ? window.size() - 32 : 0);
    window.append(chunk, static_cast<size_t>(in.gcount()));
    size_t first = std::string::npos;
    const StatementKind* kind = &kBankStatement;
    for (const auto& wrapper : kWrappers) {
      const size_t at = window.find(wrapper.tag);
      if (at < first) {
        first = at;
        kind = &wrapper.kind;
      }
    }
    if (first != std::string::npos) return *kind;
  }
  return kBankStatement;
}

// The library's code and text on standard error; exit status 1.
int Fail(const StatementKind& kind, void* st, const char* what) {
  std::fprintf(stderr, "orvelan-statement: %s failed: %d %s\n", what, kind.last_error_code(st), kind.last_error(st));
  return 1;
}

int Configure(const StatementKind& kind, void* st, const char* setting) {
  void* config[2] = {const_cast<char*>(setting), nullptr};
  int config_lengths[2] = {0, 0};
  if (kind.run(st, BANKSTATEMENT_METHOD_CONFIG, 2, config, config_lengths) != 0) return Fail(kind, st, "Config");
  return 0;
}

// The library reads host dates with the time of day; a bare date means midnight.
std::string WithTime(const std::string& date) {
  return date.find(' ') == std::string::npos ? date + " 00:00:00" : date;
}

// The three components share the method ids.
static_assert(CCSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  LOANSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  CCSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  LOANSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  CCSTATEMENT_METHOD_CONFIG == BANKSTATEMENT_METHOD_CONFIG &&
                  LOANSTATEMENT_METHOD_CONFIG == BANKSTATEMENT_METHOD_CONFIG &&
                  CCSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE &&
                  LOANSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE &&
                  INVSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  INVSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  INVSTATEMENT_METHOD_CONFIG == BANKSTATEMENT_METHOD_CONFIG &&
                  INVSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE,
              "statement method ids differ");

// OFX 1.x closing responses leave DTOPEN without an end tag, which the
// library's dictionary cannot close; 2.x reads them.
std::string DefaultVersion(const Options& options) { return options.closing ? "211" : "102"; }

int Download(const StatementKind& kind, void* st, const Options& options) {
  const struct {
    int id;
    const char* name;
    std::string value;
  } texts[] = {
      {kind.fi_url_id, "FIUrl", options.url},
      {kind.fi_organization_id, "FIOrganization", options.org},
      {kind.fi_id_id, "FIId", options.fid},
      {kind.ofx_user_id, "OFXUser", options.user},
      {kind.ofx_password_id, "OFXPassword", options.password},
      {kind.ofx_app_id_id, "OFXAppId", options.app_id},
      {kind.ofx_app_version_id, "OFXAppVersion", options.app_version},
      {kind.bank_id_id, &kind == &kInvStatement ? "BrokerId" : "BankId", options.bank_id},
      {kind.account.id, kind.account.label, options.account},
      {kind.start_date_id, "StartDate", options.from.empty() ? "" : WithTime(options.from)},
      {kind.end_date_id, "EndDate", options.to.empty() ? "" : WithTime(options.to)},
      {kind.ofx_version_id, "OFXVersion", options.ofx_version.empty() ? DefaultVersion(options) : options.ofx_version},
  };
  for (const auto& text : texts) {
    if (text.id != 0 && kind.set(st, text.id, 0, text.value.c_str(), static_cast<int>(text.value.size())) != 0) {
      return Fail(kind, st, text.name);
    }
  }
  if (int status = Configure(kind, st, kMaxTransferredData); status != 0) return status;
  if (kind.account_type_id != 0 &&
      kind.set(st, kind.account_type_id, 0, reinterpret_cast<void*>(static_cast<intptr_t>(options.account_type)), 0) != 0) {
    return Fail(kind, st, "AccountType");
  }
  if (options.timeout >= 0 &&
      kind.set(st, kind.timeout_id, 0, reinterpret_cast<void*>(static_cast<intptr_t>(options.timeout)), 0) != 0) {
    return Fail(kind, st, "Timeout");
  }
  if (!options.accept_cert.empty()) {
    std::ifstream in(options.accept_cert, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "orvelan-statement: cannot read %s\n", options.accept_cert.c_str());
      return 1;
    }
    std::string certificate((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (kind.set(st, kind.ssl_accept_server_cert_id, 0, certificate.c_str(), static_cast<int>(certificate.size())) != 0) {
      return Fail(kind, st, "SSLAcceptServerCertEncoded");
    }
  }
  if (options.closing) {
    if (kind.run(st, BANKSTATEMENT_METHOD_GETCLOSINGINFO, 0, nullptr, nullptr) != 0) return Fail(kind, st, "GetClosingInfo");
  } else if (kind.run(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr) != 0) {
    return Fail(kind, st, "GetStatement");
  }
  return 0;
}

int ReadFile(const StatementKind& kind, void* st, const std::string& file) {
  void* params[1] = {const_cast<char*>(file.c_str())};
  int lengths[1] = {0};
  if (kind.run(st, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
    return Fail(kind, st, "ReadOFXDataFile");
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
  const StatementKind& kind = options.kind != nullptr ? *options.kind : KindOfFile(options.file);
  void* st = kind.create(nullptr, nullptr, nullptr);
  if (st == nullptr) {
    std::fprintf(stderr, "orvelan-statement: cannot create a %s statement\n", kind.name);
    return 1;
  }
  int status = &kind == &kLoanStatement  ? Configure(kind, st, kLoanExtraTags)
               : &kind == &kInvStatement ? Configure(kind, st, kInvExtraTags)
                                         : 0;
  if (status == 0) status = options.file.empty() ? Download(kind, st, options) : ReadFile(kind, st, options.file);
  if (status == 0) StatementPrinter(kind, options.format).Print(st, stdout);
  kind.destroy(st);
  return status;
}
