// The statement subcommands (statement, card, loan, invest), several
// statements in one exchange (batch), and the file readers (read, aggregate).
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

const char kStatementUsage[] =
    "usage: orvelan statement|card|loan|invest FILE.ofx [--card | --loan] [--format table|csv|json]\n"
    "       orvelan statement|card|loan|invest SIGN-ON ACCOUNT [--closing] [--from MM/DD/YYYY] [--to MM/DD/YYYY]\n"
    "where SIGN-ON is --institution NAME, or --url URL --org ORG --fid FID --user U, and ACCOUNT one of\n"
    "  --bank-id B --account A [--type checking|savings|moneymrkt|creditline]   a bank account (statement)\n"
    "  --card NUMBER, or card --account NUMBER                                 a credit card\n"
    "  --loan ACCOUNT, or loan --account ACCOUNT [--loan-type auto|consumer|mortgage|commercial|\n"
    "                  student|military|smb|constr|homeequity]                 a loan\n"
    "  --broker BROKERID --account A, or invest ...                            a brokerage account\n"
    "A file's content tells which statement it holds; --card or --loan overrides that.\n"
    "--closing asks for the statement closing information instead of the transactions\n"
    "(over OFX 2.1.1 unless --ofx-version says otherwise). `orvelan --help` lists the common options.\n";

const char kBatchUsage[] =
    "usage: orvelan batch SIGN-ON [--bank-id B --account A]... [--type T] [--card NUMBER]...\n"
    "                     [--from MM/DD/YYYY] [--to MM/DD/YYYY]\n"
    "Downloads the statement of every --account and --card in one exchange and prints them in order.\n";

const char kReadUsage[] =
    "usage: orvelan read FILE [--format table|csv|json] [--strict]\n"
    "Prints every statement, account list and profile the file holds, in the order they come.\n";

const char kAggregateUsage[] =
    "usage: orvelan aggregate FILE PATH [--format table|csv|json]\n"
    "Prints the element at PATH (e.g. /OFX/SIGNONMSGSRSV1/SONRS/STATUS) with its children.\n";

// The loan aggregates the fixed OFX dictionary does not know.
const char kLoanExtraTags[] = "ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING";
// Likewise for investments, with the retirement-plan aggregates brokers add.
const char kInvExtraTags[] = "INVSTMTENDRS,INVCLOSING,SWITCHMF,INV401K,INV401KBAL";

// The three components share the method ids.
static_assert(CCSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  LOANSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  CCSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  LOANSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  CCSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE &&
                  LOANSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE &&
                  INVSTATEMENT_METHOD_GETSTATEMENT == BANKSTATEMENT_METHOD_GETSTATEMENT &&
                  INVSTATEMENT_METHOD_GETCLOSINGINFO == BANKSTATEMENT_METHOD_GETCLOSINGINFO &&
                  INVSTATEMENT_METHOD_READOFXDATAFILE == BANKSTATEMENT_METHOD_READOFXDATAFILE &&
                  CCSTATEMENT_PROP_OFXREQUEST == BANKSTATEMENT_PROP_OFXREQUEST &&
                  CCSTATEMENT_PROP_OFXRESPONSE == BANKSTATEMENT_PROP_OFXRESPONSE,
              "statement ids differ");

const char* ExtraTagsOf(const StatementKind& kind) {
  return &kind == &kLoanStatement ? kLoanExtraTags : &kind == &kInvStatement ? kInvExtraTags : "";
}

std::string ReadWholeFile(const std::string& path, bool* ok) {
  std::ifstream in(path, std::ios::binary);
  *ok = static_cast<bool>(in);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// What a file holds, judged by its transaction wrappers, in document order.
// `statement` is null for the account list and the profile.
struct Holding {
  const char* what;
  const StatementKind* statement;
  size_t at;
};
std::vector<Holding> HoldingsOf(const std::string& document) {
  static const struct {
    const char* tag;
    const char* what;
    const StatementKind* kind;
  } kWrappers[] = {{"<STMTTRNRS>", "bank", &kBankStatement},     {"<STMTENDTRNRS>", "bank", &kBankStatement},
                   {"<CCSTMTTRNRS>", "card", &kCardStatement},   {"<CCSTMTENDTRNRS>", "card", &kCardStatement},
                   {"<LOANSTMTTRNRS>", "loan", &kLoanStatement}, {"<LOANSTMTENDTRNRS>", "loan", &kLoanStatement},
                   {"<INVSTMTTRNRS>", "investment", &kInvStatement},
                   {"<INVSTMTENDTRNRS>", "investment", &kInvStatement},
                   {"<ACCTINFOTRNRS>", "accounts", nullptr},     {"<PROFTRNRS>", "profile", nullptr}};
  std::vector<Holding> found;
  for (const auto& wrapper : kWrappers) {
    const size_t at = document.find(wrapper.tag);
    if (at == std::string::npos) continue;
    bool seen = false;
    for (Holding& holding : found) {
      if (std::strcmp(holding.what, wrapper.what) == 0) {
        holding.at = std::min(holding.at, at);
        seen = true;
      }
    }
    if (!seen) found.push_back({wrapper.what, wrapper.kind, at});
  }
  std::sort(found.begin(), found.end(), [](const Holding& a, const Holding& b) { return a.at < b.at; });
  return found;
}

// A file whose content shows no wrapper is read as a bank statement, whose
// reader names what is missing.
const StatementKind& KindOfFile(const std::string& path) {
  bool ok = false;
  for (const Holding& holding : HoldingsOf(ReadWholeFile(path, &ok))) {
    if (holding.statement != nullptr) return *holding.statement;
  }
  return kBankStatement;
}

bool ParseAccountType(const StatementKind& kind, const std::string& name, int* type) {
  for (int i = 0; i < kind.account_type_count; ++i) {
    if (name == kind.account_type_names[i]) {
      *type = i;
      return true;
    }
  }
  return false;
}

int ReadFileInto(Session& session, const std::string& file) {
  void* params[1] = {const_cast<char*>(file.c_str())};
  int lengths[1] = {0};
  if (session.Run(BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths, false) != 0) {
    return session.Fail("ReadOFXDataFile");
  }
  return 0;
}

// The account, its type and the date range of a statement download.
int SetStatementInputs(Session& session, const StatementKind& kind, const Args& args, const std::string& account,
                       int account_type) {
  const struct {
    int id;
    const char* name;
    std::string value;
  } texts[] = {
      {kind.bank_id_id, &kind == &kInvStatement ? "BrokerId" : "BankId",
       args.Get(&kind == &kInvStatement ? "broker" : "bank-id")},
      {kind.account.id, kind.account.label, account},
      {kind.start_date_id, "StartDate", WithTime(args.Get("from"))},
      {kind.end_date_id, "EndDate", WithTime(args.Get("to"))},
  };
  for (const auto& text : texts) {
    if (int status = session.SetText(text.id, text.value, text.name); status != 0) return status;
  }
  if (kind.account_type_id != 0) return session.SetInteger(kind.account_type_id, account_type, "AccountType");
  return 0;
}

// Prints results one after another: a JSON array, or tables and CSV blocks
// with a blank line between them.
class Sequence {
 public:
  explicit Sequence(Format format) : format_(format) {}
  void Next() {
    if (format_ == Format::kJson) std::fputs(count_ == 0 ? "[\n" : ",\n", stdout);
    if (format_ != Format::kJson && count_ > 0) std::fputc('\n', stdout);
    ++count_;
  }
  void End() {
    if (format_ == Format::kJson) std::fputs(count_ == 0 ? "[]\n" : "]\n", stdout);
  }

 private:
  Format format_;
  int count_ = 0;
};

// OFX 1.x leaves a value's end tag out; the aggregate reader wants it, so it
// is written in after each value that lacks one.
std::string WithLeafEndTags(const std::string& sgml) {
  std::string out;
  out.reserve(sgml.size() + sgml.size() / 4);
  size_t at = 0;
  while (at < sgml.size()) {
    const size_t open = sgml.find('<', at);
    const size_t close = open == std::string::npos ? std::string::npos : sgml.find('>', open);
    if (close == std::string::npos) break;
    out.append(sgml, at, close + 1 - at);
    at = close + 1;
    const std::string name = sgml.substr(open + 1, close - open - 1);
    if (name.empty() || name[0] == '/' || name[0] == '?' || name[0] == '!') continue;
    const size_t next = sgml.find('<', at);
    const std::string text = sgml.substr(at, next == std::string::npos ? std::string::npos : next - at);
    const size_t end = text.find_last_not_of(" \t\r\n");
    if (end == std::string::npos || next == std::string::npos || sgml.compare(next, name.size() + 3, "</" + name + ">") == 0) continue;
    out.append(text, 0, end + 1).append("</" + name + ">").append(text, end + 1, std::string::npos);
    at += text.size();
  }
  out.append(sgml, std::min(at, sgml.size()), std::string::npos);
  return out;
}

Format FormatOf(const Args& args) {
  Format format = Format::kTable;
  ParseFormat(args.Get("format").empty() ? "table" : args.Get("format"), &format);
  return format;
}

}  // namespace

int RunStatementCommand(Cli& cli, const std::string& command, int argc, char** argv, int first) {
  // A download names the card or loan after --card or --loan; reading a
  // file, they are bare hints.
  bool download = false;
  for (int i = first; i < argc; ++i) {
    download = download || std::strcmp(argv[i], "--url") == 0 || std::strcmp(argv[i], "--institution") == 0;
  }
  const std::vector<OptionSpec> own = {
      {"--bank-id", "bank-id"}, {"--account", "account"}, {"--from", "from"},   {"--to", "to"},
      {"--type", "type"},       {"--loan-type", "type"},  {"--broker", "broker"}, {"--closing", "closing", "1"},
      {"--card", "card", download ? nullptr : "1"},       {"--loan", "loan", download ? nullptr : "1"}};
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, own, kStatementUsage, &args); status != 0) {
    return status < 0 ? 0 : status;
  }
  const auto usage = [&cli](const std::string& problem) { return cli.Usage(problem, kStatementUsage); };
  const auto given = [&args](const char* key) { return args.Has(key) && args.from_file.count(key) == 0; };
  const StatementKind* kind = command == "card"   ? &kCardStatement
                              : command == "loan" ? &kLoanStatement
                              : command == "invest" ? &kInvStatement
                                                    : nullptr;
  const auto choose = [&kind](const StatementKind& wanted) {
    if (kind != nullptr && kind != &wanted) return false;
    kind = &wanted;
    return true;
  };
  if (args.Has("card") && args.Has("loan")) return usage("give only one of --card and --loan");
  if (args.Has("card") && !choose(kCardStatement)) return usage("--card does not fit this account");
  if (args.Has("loan") && !choose(kLoanStatement)) return usage("--loan does not fit this account");
  if (given("broker") && !choose(kInvStatement)) return usage("--broker is for brokerage accounts");
  if (args.words.size() > 1) return usage("only one file can be read at a time");
  const std::string file = args.words.empty() ? std::string() : args.words[0];
  if (file.empty() == args.Get("url").empty()) return usage("give either a file or --url");

  std::string password, account;
  int account_type = 0;
  if (!file.empty()) {
    if (args.Has("type") || args.Has("closing")) return usage("--type, --loan-type and --closing are for downloads");
    if (kind == nullptr) kind = &KindOfFile(file);
  } else {
    if (kind == nullptr) kind = &kBankStatement;
    const bool bank = kind == &kBankStatement;
    const bool by_account = bank || kind == &kInvStatement;
    account = args.Get("account");
    if (!by_account) {
      if (given("bank-id") || (given("account") && command == "statement")) {
        return usage("--bank-id and --account are for bank accounts");
      }
      const std::string& number = args.Get(kind == &kCardStatement ? "card" : "loan");
      if (!number.empty()) account = number;
    }
    if (args.Has("type")) {
      if (!bank && kind != &kLoanStatement) return usage("--type does not fit this account");
      if (!ParseAccountType(*kind, args.Get("type"), &account_type)) return usage("unknown account type");
    }
    const struct {
      const char* key;
      const char* flag;
    } required[] = {{"org", "--org"}, {"fid", "--fid"}, {"user", "--user"}};
    for (const auto& entry : required) {
      if (args.Get(entry.key).empty()) return usage(std::string(entry.flag) + " is required with --url");
    }
    if (account.empty()) {
      return usage(std::string(by_account ? "--account" : kind == &kCardStatement ? "--card" : "--loan") +
                   " is required with --url");
    }
    if (int status = ReadPassword(cli, kStatementUsage, &password); status != 0) return status;
  }

  Session session(cli, kind->component);
  if (session.handle() == nullptr) {
    std::fprintf(stderr, "%s: cannot create a %s statement\n", cli.name.c_str(), kind->name);
    return 1;
  }
  if (int status = session.ApplyReadSettings(args, ExtraTagsOf(*kind)); status != 0) return status;
  if (!file.empty()) {
    if (int status = ReadFileInto(session, file); status != 0) return status;
  } else {
    const bool closing = args.IsOn("closing");
    // OFX 1.x closing responses leave DTOPEN without an end tag, which the
    // dictionary cannot close; 2.x reads them.
    if (int status = session.SignOn(args, password, closing ? "211" : "102"); status != 0) return status;
    if (int status = SetStatementInputs(session, *kind, args, account, account_type); status != 0) return status;
    const int method = closing ? BANKSTATEMENT_METHOD_GETCLOSINGINFO : BANKSTATEMENT_METHOD_GETSTATEMENT;
    if (session.Run(method, 0, nullptr, nullptr, true) != 0) {
      return session.Fail(closing ? "GetClosingInfo" : "GetStatement");
    }
  }
  StatementPrinter(*kind, FormatOf(args)).Print(session.handle(), stdout);
  return 0;
}

int RunBatchCommand(Cli& cli, int argc, char** argv, int first) {
  const std::vector<OptionSpec> own = {{"--bank-id", "bank-id"}, {"--account", "account", nullptr, true},
                                       {"--card", "card", nullptr, true}, {"--type", "type"},
                                       {"--from", "from"}, {"--to", "to"}};
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, own, kBatchUsage, &args); status != 0) {
    return status < 0 ? 0 : status;
  }
  const auto usage = [&cli](const std::string& problem) { return cli.Usage(problem, kBatchUsage); };
  struct Item {
    const StatementKind* kind;
    std::string account;
    std::unique_ptr<Session> session;
  };
  std::vector<Item> items;
  for (const auto& [key, value] : args.lists) {
    if (key == "account" || key == "card") items.push_back({key == "card" ? &kCardStatement : &kBankStatement, value, nullptr});
  }
  if (items.empty()) return usage("name at least one --account or --card");
  if (!args.words.empty()) return usage("unexpected " + args.words[0]);
  for (const char* flag : {"url", "org", "fid", "user"}) {
    if (args.Get(flag).empty()) return usage(std::string("--") + flag + " is required");
  }
  int account_type = 0;
  if (args.Has("type") && !ParseAccountType(kBankStatement, args.Get("type"), &account_type)) {
    return usage("unknown account type");
  }
  std::string password;
  if (int status = ReadPassword(cli, kBatchUsage, &password); status != 0) return status;

  Session batch(cli, kBatchComponent);
  if (int status = batch.SignOn(args, password, "102"); status != 0) return status;
  if (int status = batch.ApplyReadSettings(args); status != 0) return status;
  if (int status = batch.SetInteger(OFXBATCH_PROP_OFXBATCHITEMCOUNT, static_cast<long>(items.size()), "OFXBatchItemCount");
      status != 0) {
    return status;
  }
  for (size_t i = 0; i < items.size(); ++i) {
    Item& item = items[i];
    item.session = std::make_unique<Session>(cli, item.kind->component);
    Session& session = *item.session;
    if (int status = session.ApplyReadSettings(args); status != 0) return status;
    if (int status = session.SignOn(args, password, "102"); status != 0) return status;
    if (int status = SetStatementInputs(session, *item.kind, args, item.account, account_type); status != 0) return status;
    const std::string request = session.Text(BANKSTATEMENT_PROP_OFXREQUEST);
    if (request.empty()) return session.Fail("OFXRequest");
    if (batch.component().set(batch.handle(), OFXBATCH_PROP_OFXBATCHITEMREQUEST, static_cast<int>(i), request.c_str(),
                              static_cast<int>(request.size())) != 0) {
      return batch.Fail("OFXBatchItemRequest");
    }
  }
  if (batch.Run(OFXBATCH_METHOD_POSTBATCH, 0, nullptr, nullptr, true) != 0) return batch.Fail("PostBatch");
  // Each item reads its own response; one that fails does not hide the others.
  int status = 0;
  Sequence sequence(FormatOf(args));
  for (size_t i = 0; i < items.size(); ++i) {
    Session& session = *items[i].session;
    const std::string response = batch.Text(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, static_cast<int>(i));
    if (session.SetText(BANKSTATEMENT_PROP_OFXRESPONSE, response, ("statement of " + items[i].account).c_str()) != 0) {
      status = 1;
      continue;
    }
    sequence.Next();
    StatementPrinter(*items[i].kind, FormatOf(args)).Print(session.handle(), stdout);
  }
  sequence.End();
  return status;
}

int RunReadCommand(Cli& cli, int argc, char** argv, int first) {
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, {}, kReadUsage, &args); status != 0) return status < 0 ? 0 : status;
  if (args.words.size() != 1) return cli.Usage("name one file", kReadUsage);
  const std::string& file = args.words[0];
  bool readable = false;
  std::vector<Holding> holdings = HoldingsOf(ReadWholeFile(file, &readable));
  // Without a wrapper the file is read as a bank statement all the same, so
  // that a failed sign-on or a broken document is still reported.
  const bool bare = holdings.empty();
  if (bare) holdings.push_back({"bank", &kBankStatement, 0});
  std::vector<std::unique_ptr<Session>> sessions;
  for (const Holding& holding : holdings) {
    const Component& component = holding.statement != nullptr          ? holding.statement->component
                                 : std::strcmp(holding.what, "profile") == 0 ? kProfileComponent
                                                                             : kAccountComponent;
    sessions.push_back(std::make_unique<Session>(cli, component));
    Session& session = *sessions.back();
    const bool profile = std::strcmp(holding.what, "profile") == 0;
    std::string extra_tags = holding.statement != nullptr ? ExtraTagsOf(*holding.statement) : "LOANMSGSETV1";
    if (int status = session.ApplyReadSettings(args, extra_tags); status != 0) return status;
    const int method = holding.statement != nullptr ? BANKSTATEMENT_METHOD_READOFXDATAFILE
                       : profile                    ? FIPROFILE_METHOD_READOFXDATAFILE
                                                    : ACCOUNT_METHOD_READOFXDATAFILE;
    void* params[1] = {const_cast<char*>(file.c_str())};
    int lengths[1] = {0};
    if (session.Run(method, 1, params, lengths, false) == 0) continue;
    // 208: the document parsed and holds no statement at all.
    if (bare && component.last_error_code(session.handle()) == 208) {
      std::fprintf(stderr, "%s: %s holds no statement, account list or profile\n", cli.name.c_str(), file.c_str());
      Sequence(FormatOf(args)).End();
      return 0;
    }
    return session.Fail("ReadOFXDataFile");
  }
  const Format format = FormatOf(args);
  Sequence sequence(format);
  for (size_t i = 0; i < holdings.size(); ++i) {
    sequence.Next();
    const Holding& holding = holdings[i];
    if (holding.statement != nullptr) {
      StatementPrinter(*holding.statement, format).Print(sessions[i]->handle(), stdout, holding.what);
    } else {
      const bool profile = std::strcmp(holding.what, "profile") == 0;
      PrintSections(sessions[i]->component(), sessions[i]->handle(), profile ? ProfileSections() : AccountSections(),
                    "", format, stdout, holding.what);
    }
  }
  sequence.End();
  return 0;
}

int RunAggregateCommand(Cli& cli, int argc, char** argv, int first) {
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, {}, kAggregateUsage, &args); status != 0) {
    return status < 0 ? 0 : status;
  }
  if (args.words.size() != 2) return cli.Usage("name a file and a path", kAggregateUsage);
  bool ok = false;
  std::string document = ReadWholeFile(args.words[0], &ok);
  if (!ok) {
    std::fprintf(stderr, "%s: cannot read %s\n", cli.name.c_str(), args.words[0].c_str());
    return 1;
  }
  // The aggregate is the markup alone, without the header before it.
  if (const size_t body = document.find("<OFX>"); body != std::string::npos) document.erase(0, body);
  document = WithLeafEndTags(document);
  static const Component kAggregate = {ORVELAN_ENTRY_POINTS(OFXAggregate), OFXAGGREGATE_METHOD_CONFIG};
  Session session(cli, kAggregate);
  if (session.SetText(OFXAGGREGATE_PROP_AGGREGATE, document, "Aggregate") != 0) return 1;
  if (session.SetText(OFXAGGREGATE_PROP_ELEMENTPATH, args.words[1], "ElementPath") != 0) return 1;
  const std::vector<Section> sections = {
      {"element",
       0,
       {{"name", OFXAGGREGATE_PROP_ELEMENTNAME}, {"parent", OFXAGGREGATE_PROP_ELEMENTPARENT},
        {"text", OFXAGGREGATE_PROP_ELEMENTTEXT}}},
      {"children", OFXAGGREGATE_PROP_CHILDCOUNT, {{"name", OFXAGGREGATE_PROP_CHILDNAME}, {"text", OFXAGGREGATE_PROP_CHILDTEXT}}}};
  PrintSections(kAggregate, session.handle(), sections, "", FormatOf(args), stdout);
  return 0;
}
