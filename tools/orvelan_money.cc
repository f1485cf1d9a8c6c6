// orvelan-transfer and orvelan-pay: move money through an institution's OFX
// server and show what it answered, its ids and statuses first. Built twice
// from this file.
//
//   orvelan-transfer add | modify ID | cancel ID | sync  SIGN-ON [TRANSFER]
//     TRANSFER: --from-bank B --from-account A [--from-branch X] [--from-type T] [--from-key K]
//               --to-account A [--to-bank B] [--to-branch X] [--to-type T] [--to-key K]
//               --amount N [--due MM/DD/YYYY]
//   orvelan-pay pay | modify-payment ID | cancel ID | status ID | payments  SIGN-ON [PAYMENT]
//               add-payee | modify-payee LISTID | delete-payee LISTID | payees  SIGN-ON [PAYEE]
//     PAYMENT: --from-bank B --from-account A [--from-type T] --amount N [--due MM/DD/YYYY]
//              [--memo M] --payee-list-id L --payee-account A, and --payee-id ID or PAYEE
//     PAYEE:   [--payee-id ID] --name N --addr1 A [--addr2 A] [--addr3 A] --city C --state S
//              --postal-code P [--country C] --phone P [--payee-account A]
//   SIGN-ON: --url URL --org ORG --user U [--fid FID] [--ofx-version 102|211] [--ca-file PEM]
//            [--app-id ID] [--app-version V] [--format table|csv|json]
//   sync, payments and payees: [--token T | --refresh] (default: every change, token 0;
//   --refresh lists every record as it stands). sync covers the transfers from
//   --from-account, those to another bank when --to-bank differs from --from-bank.
//
// A payee named by --payee-id is one of the institution's own list. The
// password comes from ORVELAN_PASSWORD only. Exit status: 0 on success, 1 with
// the library's code and text (a lost synchronization asks for --refresh), 2
// for a bad command line.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "orvelan.h"

namespace {

#ifdef ORVELAN_TRANSFER_TOOL
const char kName[] = "orvelan-transfer";
#define C(op) BankTransfer_##op
#define P(name) BANKTRANSFER_PROP_##name
#define M(name) BANKTRANSFER_METHOD_##name
#else
const char kName[] = "orvelan-pay";
#define C(op) BillPayment_##op
#define P(name) BILLPAYMENT_PROP_##name
#define M(name) BILLPAYMENT_METHOD_##name
#endif

enum class Format { kTable, kCsv, kJson };
enum class Kind { kText, kInt, kAnswer };  // kAnswer: the method's answer, not a property
struct Column {
  const char* name;
  int id;
  Kind kind = Kind::kText;
};
struct Section {
  const char* name;
  int count_id;  // 0: one row of the plain properties
  std::vector<Column> columns;
};

// What each command runs and shows.
struct Command {
  const char* name;
  int method;
  bool takes_id;
  bool synchronizes;  // takes --token or --refresh and answers the new token
  std::vector<Section> sections;
};

const Section kSync = {"sync", 0, {{"token", 0, Kind::kAnswer}, {"lost_sync", P(LOSTSYNC), Kind::kInt}}};

#ifdef ORVELAN_TRANSFER_TOOL
const char* const kAccountTypes[] = {"checking", "savings", "moneymrkt", "creditline", "creditcard"};
const std::map<std::string, int> kTextOptions = {
    {"--from-bank", P(TRANSFERFROMBANKID)},     {"--from-branch", P(TRANSFERFROMBRANCHID)},
    {"--from-account", P(TRANSFERFROMACCOUNTID)}, {"--from-key", P(TRANSFERFROMACCOUNTKEY)},
    {"--to-bank", P(TRANSFERTOBANKID)},         {"--to-branch", P(TRANSFERTOBRANCHID)},
    {"--to-account", P(TRANSFERTOACCOUNTID)},   {"--to-key", P(TRANSFERTOACCOUNTKEY)},
    {"--amount", P(TRANSFERAMOUNT)},            {"--due", P(TRANSFERDATEDUE)}};
const int kFromType = P(TRANSFERFROMACCOUNTTYPE), kToType = P(TRANSFERTOACCOUNTTYPE);

std::vector<Command> Commands() {
  const Section transfer = {"transfer", 0,
                            {{"id", P(TRANSFERID)}, {"status", P(TRANSFERSTATUS)}, {"amount", P(TRANSFERAMOUNT)},
                             {"currency", P(TRANSFERCURRENCY)}, {"from_account", P(TRANSFERFROMACCOUNTID)},
                             {"to_bank", P(TRANSFERTOBANKID)}, {"to_account", P(TRANSFERTOACCOUNTID)},
                             {"due", P(TRANSFERDATEDUE)}, {"posted", P(TRANSFERDATEPOSTED)},
                             {"processed", P(TRANSFERDATEPROCESSED)}}};
  const Section synced = {"transfers", P(SYNCTRANSFERCOUNT),
                          {{"type", P(SYNCTRANSFERTYPE)}, {"id", P(SYNCTRANSFERID)},
                           {"status", P(SYNCTRANSFERSTATUS)}, {"amount", P(SYNCTRANSFERAMOUNT)},
                           {"from_account", P(SYNCTRANSFERFROMACCOUNTID)}, {"to_account", P(SYNCTRANSFERTOACCOUNTID)},
                           {"due", P(SYNCTRANSFERDATEDUE)}, {"posted", P(SYNCTRANSFERDATEPOSTED)},
                           {"projected", P(SYNCTRANSFERDATEPROJECTED)}, {"processed", P(SYNCTRANSFERDATEPROCESSED)}}};
  return {{"add", M(TRANSFERFUNDS), false, false, {transfer}},
          {"modify", M(MODIFYTRANSFER), true, false, {transfer}},
          {"cancel", M(CANCELTRANSFER), true, false, {transfer}},
          {"sync", M(SYNCHRONIZETRANSFERS), false, true, {kSync, synced}}};
}
#else
const char* const kAccountTypes[] = {"checking", "savings", "moneymrkt", "creditline"};
const std::map<std::string, int> kTextOptions = {
    {"--from-bank", P(PAYMENTFROMBANKID)},   {"--from-account", P(PAYMENTFROMACCOUNTID)},
    {"--to-bank", P(PAYMENTTOBANKID)},       {"--to-account", P(PAYMENTTOACCOUNTID)},
    {"--amount", P(PAYMENTAMOUNT)},          {"--due", P(PAYMENTDATEDUE)},
    {"--memo", P(PAYMENTMEMO)},              {"--bill-ref", P(PAYMENTBILLREFINFO)},
    {"--payee-list-id", P(PAYEELISTID)},     {"--payee-id", P(PAYEEID)},
    {"--payee-account", P(PAYEEACCOUNT)},    {"--name", P(PAYEENAME)},
    {"--addr1", P(PAYEEADDR1)},              {"--addr2", P(PAYEEADDR2)},
    {"--addr3", P(PAYEEADDR3)},              {"--city", P(PAYEECITY)},
    {"--state", P(PAYEESTATE)},              {"--postal-code", P(PAYEEPOSTALCODE)},
    {"--country", P(PAYEECOUNTRY)},          {"--phone", P(PAYEEPHONE)}};
const int kFromType = P(PAYMENTFROMACCOUNTTYPE), kToType = P(PAYMENTTOACCOUNTTYPE);

std::vector<Command> Commands() {
  const Section payment = {"payment", 0,
                           {{"id", P(PAYMENTID)}, {"type", P(PAYMENTTYPE)}, {"status", P(PAYMENTSTATUS)},
                            {"amount", P(PAYMENTAMOUNT)}, {"currency", P(PAYMENTCURRENCY)},
                            {"payee_list_id", P(PAYMENTPAYEELISTID)}, {"payee_id", P(PAYMENTPAYEEID)},
                            {"payee_account", P(PAYMENTPAYEEACCOUNT)}, {"due", P(PAYMENTDATEDUE)},
                            {"processed", P(PAYMENTDATEPROCESSED)}, {"check_number", P(PAYMENTCHECKNUMBER)}}};
  const Section payee = {"payee", 0,
                         {{"list_id", P(PAYEELISTID)}, {"id", P(PAYEEID)}, {"name", P(PAYEENAME)},
                          {"addr1", P(PAYEEADDR1)}, {"city", P(PAYEECITY)}, {"state", P(PAYEESTATE)},
                          {"postal_code", P(PAYEEPOSTALCODE)}, {"phone", P(PAYEEPHONE)},
                          {"account", P(PAYEEACCOUNT)}, {"days_to_pay", P(PAYEEDAYSTOPAY)}}};
  const Section payments = {"payments", P(SYNCPAYMENTCOUNT),
                            {{"type", P(SYNCPAYMENTTYPE)}, {"id", P(SYNCPAYMENTID)}, {"status", P(SYNCPAYMENTSTATUS)},
                             {"amount", P(SYNCPAYMENTAMOUNT)}, {"payee_list_id", P(SYNCPAYMENTPAYEELISTID)},
                             {"payee_id", P(SYNCPAYMENTPAYEEID)}, {"payee_account", P(SYNCPAYMENTPAYEEACCOUNT)},
                             {"due", P(SYNCPAYMENTDATEDUE)}, {"processed", P(SYNCPAYMENTDATEPROCESSED)},
                             {"check_number", P(SYNCPAYMENTCHECKNUMBER)}, {"memo", P(SYNCPAYMENTMEMO)}}};
  const Section payees = {"payees", P(SYNCPAYEECOUNT),
                          {{"type", P(SYNCPAYEETYPE)}, {"list_id", P(SYNCPAYEELISTID)}, {"id", P(SYNCPAYEEID)},
                           {"name", P(SYNCPAYEENAME)}, {"addr1", P(SYNCPAYEEADDR1)}, {"city", P(SYNCPAYEECITY)},
                           {"state", P(SYNCPAYEESTATE)}, {"postal_code", P(SYNCPAYEEPOSTALCODE)},
                           {"phone", P(SYNCPAYEEPHONE)}, {"account", P(SYNCPAYEEACCOUNT)},
                           {"days_to_pay", P(SYNCPAYEEDAYSTOPAY)}}};
  return {{"pay", M(PAYBILL), false, false, {payment}},
          {"modify-payment", M(MODIFYPAYMENT), true, false, {payment}},
          {"cancel", M(CANCELPAYMENT), true, false, {payment}},
          {"status", M(GETPAYMENTSTATUS), true, false, {payment}},
          {"payments", M(SYNCHRONIZEPAYMENTS), false, true, {kSync, payments}},
          {"add-payee", M(ADDPAYEE), false, false, {payee}},
          {"modify-payee", M(MODIFYPAYEE), true, false, {payee}},
          {"delete-payee", M(DELETEPAYEE), true, false, {payee}},
          {"payees", M(SYNCHRONIZEPAYEES), false, true, {kSync, payees}}};
}
#endif

std::string Quoted(const std::string& text, bool json) {
  std::string out = "\"";
  for (char ch : text) {
    if (ch == '"' || (json && ch == '\\')) out += json ? '\\' : '"';
    if (json && static_cast<unsigned char>(ch) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", ch);
      out += escaped;
      continue;
    }
    out += ch;
  }
  return out + '"';
}

void Print(void* c, const std::vector<Section>& sections, const std::string& answer, Format format) {
  const auto value = [&](const Column& column, int row) -> std::string {
    if (column.kind == Kind::kAnswer) return answer;
    void* v = C(Get)(c, column.id, row, nullptr);
    if (column.kind == Kind::kInt) return std::to_string(static_cast<long>(reinterpret_cast<intptr_t>(v)));
    return v == nullptr ? "" : static_cast<const char*>(v);
  };
  if (format == Format::kJson) std::printf("{");
  for (size_t s = 0; s < sections.size(); ++s) {
    const Section& section = sections[s];
    const bool list = section.count_id != 0;
    const int rows = list ? static_cast<int>(reinterpret_cast<intptr_t>(C(Get)(c, section.count_id, 0, nullptr))) : 1;
    if (format == Format::kJson) {
      std::printf("%s\n  \"%s\": %s", s == 0 ? "" : ",", section.name, list ? "[" : "");
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
        const std::string text = value(column, row);
        if (format == Format::kTable) {
          std::printf("  %-14s %s\n", column.name, text.c_str());
        } else if (format == Format::kCsv) {
          std::printf("%s%s", i ? "," : "", Quoted(text, false).c_str());
        } else {
          std::printf("%s\"%s\": %s", i ? ", " : "", column.name,
                      column.kind == Kind::kInt ? text.c_str() : Quoted(text, true).c_str());
        }
      }
      if (format == Format::kJson) std::printf("}");
      if (format == Format::kCsv) std::printf("\n");
      if (format == Format::kTable && row + 1 < rows) std::printf("  --\n");
    }
    if (format == Format::kJson && list) std::printf("]");
  }
  std::printf(format == Format::kJson ? "\n}\n" : "\n");
}

int Fail(void* c, const char* what) {
  std::fprintf(stderr, "%s: %s failed: %d %s\n", kName, what, C(GetLastErrorCode)(c), C(GetLastError)(c));
  return 1;
}

int Usage(const char* why) {
  std::fprintf(stderr, "%s: %s\n", kName, why);
#ifdef ORVELAN_TRANSFER_TOOL
  std::fputs("usage: orvelan-transfer add | modify ID | cancel ID | sync  --url URL --org ORG --user U\n"
             "         --from-bank B --from-account A [--from-type T] --to-account A [--to-bank B] [--to-type T]\n"
             "         --amount N [--due MM/DD/YYYY] [--token T | --refresh]\n",
             stderr);
#else
  std::fputs("usage: orvelan-pay pay | modify-payment ID | cancel ID | status ID | payments\n"
             "                  | add-payee | modify-payee LISTID | delete-payee LISTID | payees\n"
             "         --url URL --org ORG --user U  --from-bank B --from-account A --amount N [--due MM/DD/YYYY]\n"
             "         --payee-list-id L --payee-account A [--payee-id ID | --name N --addr1 A --city C --state S\n"
             "         --postal-code P --phone P] [--token T | --refresh]\n",
             stderr);
#endif
  std::fputs("common: [--fid FID] [--format table|csv|json] [--ofx-version 102|211] [--ca-file PEM]\n"
             "        [--app-id ID] [--app-version V]; --from-type/--to-type: checking, savings, ...\n"
             "The password comes from ORVELAN_PASSWORD.\n",
             stderr);
  return 2;
}

// The library reads host dates with the time of day; a bare date means midnight.
std::string WithTime(const std::string& date) {
  return date.empty() || date.find(' ') != std::string::npos ? date : date + " 00:00:00";
}

}  // namespace

int main(int argc, char** argv) {
  std::map<std::string, std::string> options = {{"--format", "table"}, {"--app-id", "QWIN"}, {"--app-version", "2700"},
                                                {"--ofx-version", "102"}, {"--token", "0"}};
  std::map<int, std::string> texts;
  std::map<int, int> types;
  std::vector<std::string> words;
  bool refresh = false;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") return Usage("moves money through an OFX server"), 0;
    if (arg.rfind("--", 0) != 0) {
      words.push_back(arg);
      continue;
    }
    if (arg.rfind("--password", 0) == 0) {
      return Usage("the password comes from ORVELAN_PASSWORD, never the command line");
    }
    if (arg == "--refresh") {
      refresh = true;
      continue;
    }
    if (i + 1 >= argc) return Usage(("missing value for " + arg).c_str());
    const std::string value = argv[++i];
    if (const auto text = kTextOptions.find(arg); text != kTextOptions.end()) {
      texts[text->second] = arg == "--due" ? WithTime(value) : value;
    } else if (arg == "--from-type" || arg == "--to-type") {
      int type = 0;
      const int count = static_cast<int>(sizeof kAccountTypes / sizeof kAccountTypes[0]);
      while (type < count && value != kAccountTypes[type]) ++type;
      if (type == count) return Usage(("unknown account type " + value).c_str());
      types[arg == "--from-type" ? kFromType : kToType] = type;
    } else if (arg == "--url" || arg == "--org" || arg == "--user" || arg == "--fid" || arg == "--format" ||
               arg == "--ofx-version" || arg == "--ca-file" || arg == "--app-id" || arg == "--app-version" ||
               arg == "--token") {
      options[arg] = value;
    } else {
      return Usage(("unknown option " + arg).c_str());
    }
  }
  const std::string& f = options["--format"];
  const Format format = f == "csv" ? Format::kCsv : f == "json" ? Format::kJson : Format::kTable;
  if (f != "table" && f != "csv" && f != "json") return Usage("--format is table, csv or json");
  if (words.empty()) return Usage("name a command");
  const std::vector<Command> commands = Commands();
  const Command* command = nullptr;
  for (const Command& candidate : commands) {
    if (words[0] == candidate.name) command = &candidate;
  }
  if (command == nullptr) return Usage(("unknown command " + words[0]).c_str());
  if (words.size() != (command->takes_id ? 2u : 1u)) {
    return Usage(command->takes_id ? "the command takes one server id" : "the command takes no server id");
  }
  if ((refresh || options["--token"] != "0") && !command->synchronizes) {
    return Usage("--token and --refresh are for synchronizing");
  }
  if (options["--url"].empty() || options["--org"].empty() || options["--user"].empty()) {
    return Usage("--url, --org and --user are required");
  }
  const char* password = std::getenv("ORVELAN_PASSWORD");
  if (password == nullptr || *password == '\0') return Usage("no password: set ORVELAN_PASSWORD");

  void* c = C(Create)(nullptr, nullptr, nullptr);
  const auto set = [c](int id, const std::string& value) { return C(Set)(c, id, 0, value.c_str(), 0); };
  int rc = 0;
  for (const auto& [id, value] : std::map<int, std::string>{
           {P(FIURL), options["--url"]}, {P(FIORGANIZATION), options["--org"]}, {P(FIID), options["--fid"]},
           {P(OFXUSER), options["--user"]}, {P(OFXPASSWORD), password}, {P(OFXAPPID), options["--app-id"]},
           {P(OFXAPPVERSION), options["--app-version"]}, {P(OFXVERSION), options["--ofx-version"]}}) {
    rc = rc != 0 ? rc : set(id, value);
  }
  for (const auto& [id, value] : texts) rc = rc != 0 ? rc : set(id, value);
  for (const auto& [id, type] : types) {
    rc = rc != 0 ? rc : C(Set)(c, id, 0, reinterpret_cast<void*>(static_cast<intptr_t>(type)), 0);
  }
  if (rc == 0 && !options["--ca-file"].empty()) {
    const std::string setting = "OpenSSLCAFile=" + options["--ca-file"];
    void* params[2] = {const_cast<char*>(setting.c_str()), nullptr};
    int lengths[2] = {0, 0};
    rc = C(Do)(c, M(CONFIG), 2, params, lengths);
  }
  if (rc != 0) return Fail(c, "setting up");

  const std::string token = refresh ? "REFRESH" : options["--token"];
  const std::string argument = command->takes_id ? words[1] : token;
  void* params[2] = {const_cast<char*>(argument.c_str()), nullptr};
  int lengths[2] = {0, 0};
  const int count = command->takes_id ? 1 : command->synchronizes ? 2 : 0;
  rc = C(Do)(c, command->method, count, params, lengths);
  const std::string answer = params[1] != nullptr ? static_cast<const char*>(params[1]) : "";
  if (rc == 1 && command->synchronizes && reinterpret_cast<intptr_t>(C(Get)(c, P(LOSTSYNC), 0, nullptr)) != 0) {
    std::fprintf(stderr, "%s: the server lost the synchronization; run again with --refresh\n", kName);
    C(Destroy)(c);
    return 1;
  }
  if (rc != 0) {
    Fail(c, command->name);
    C(Destroy)(c);
    return 1;
  }
  Print(c, command->sections, answer, format);
  C(Destroy)(c);
  return 0;
}
