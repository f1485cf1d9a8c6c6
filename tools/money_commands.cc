// transfer, pay and payees: move money through an institution's OFX server
// and show what it answered, its ids and statuses first.
//
// A payee named by --payee-id is one of the institution's own list. A
// synchronization starts from --token T (default 0, every change) or
// --refresh (every record as it stands) and prints the new token.
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "cli.h"

namespace {

const char kUsage[] =
    "usage: orvelan transfer add | modify ID | cancel ID | sync  SIGN-ON TRANSFER\n"
    "       orvelan pay bill | modify ID | cancel ID | status ID | sync  SIGN-ON PAYMENT\n"
    "       orvelan payees [add | modify LISTID | delete LISTID | sync]  SIGN-ON PAYEE\n"
    "  TRANSFER: --from-bank B --from-account A [--from-branch X] [--from-type T] [--from-key K]\n"
    "            --to-account A [--to-bank B] [--to-branch X] [--to-type T] [--to-key K]\n"
    "            --amount N [--due MM/DD/YYYY]\n"
    "  PAYMENT:  --from-bank B --from-account A [--from-type T] --amount N [--due MM/DD/YYYY] [--memo M]\n"
    "            --payee-list-id L --payee-account A, and --payee-id ID or PAYEE\n"
    "  PAYEE:    [--payee-id ID] --name N --addr1 A [--addr2 A] [--addr3 A] --city C --state S\n"
    "            --postal-code P [--country C] --phone P [--payee-account A]\n"
    "  sync: [--token T | --refresh]; --from-type/--to-type: checking, savings, moneymrkt, creditline\n"
    "SIGN-ON is --institution NAME, or --url URL --org ORG --user U [--fid FID];\n"
    "`orvelan --help` lists the common options.\n";

using K = Column::Kind;

// One action: its names, the method it runs and what it shows.
struct Command {
  const char* legacy;  // its name in orvelan-transfer or orvelan-pay
  const char* group;   // the orvelan subcommand: transfer, pay or payees
  const char* action;
  int method;
  bool takes_id;
  bool synchronizes;  // takes --token or --refresh and answers the new token
  std::vector<Section> sections;
};

// What differs between transfers and payments.
struct MoneyKind {
  const Component& component;
  std::vector<const char*> account_types;
  std::map<std::string, int> text_options;
  int from_type, to_type, lost_sync;
  std::vector<Command> commands;
};

MoneyKind TransferKind() {
#define P(name) BANKTRANSFER_PROP_##name
#define M(name) BANKTRANSFER_METHOD_##name
  const Section sync = {"sync", 0, {{"token", 0, K::kAnswer}, {"lost_sync", P(LOSTSYNC), K::kInt}}};
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
  return {kTransferComponent,
          {"checking", "savings", "moneymrkt", "creditline", "creditcard"},
          {{"--from-bank", P(TRANSFERFROMBANKID)},     {"--from-branch", P(TRANSFERFROMBRANCHID)},
           {"--from-account", P(TRANSFERFROMACCOUNTID)}, {"--from-key", P(TRANSFERFROMACCOUNTKEY)},
           {"--to-bank", P(TRANSFERTOBANKID)},         {"--to-branch", P(TRANSFERTOBRANCHID)},
           {"--to-account", P(TRANSFERTOACCOUNTID)},   {"--to-key", P(TRANSFERTOACCOUNTKEY)},
           {"--amount", P(TRANSFERAMOUNT)},            {"--due", P(TRANSFERDATEDUE)}},
          P(TRANSFERFROMACCOUNTTYPE),
          P(TRANSFERTOACCOUNTTYPE),
          P(LOSTSYNC),
          {{"add", "transfer", "add", M(TRANSFERFUNDS), false, false, {transfer}},
           {"modify", "transfer", "modify", M(MODIFYTRANSFER), true, false, {transfer}},
           {"cancel", "transfer", "cancel", M(CANCELTRANSFER), true, false, {transfer}},
           {"sync", "transfer", "sync", M(SYNCHRONIZETRANSFERS), false, true, {sync, synced}}}};
#undef P
#undef M
}

MoneyKind PaymentKind() {
#define P(name) BILLPAYMENT_PROP_##name
#define M(name) BILLPAYMENT_METHOD_##name
  const Section sync = {"sync", 0, {{"token", 0, K::kAnswer}, {"lost_sync", P(LOSTSYNC), K::kInt}}};
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
  return {kPaymentComponent,
          {"checking", "savings", "moneymrkt", "creditline"},
          {{"--from-bank", P(PAYMENTFROMBANKID)},   {"--from-account", P(PAYMENTFROMACCOUNTID)},
           {"--to-bank", P(PAYMENTTOBANKID)},       {"--to-account", P(PAYMENTTOACCOUNTID)},
           {"--amount", P(PAYMENTAMOUNT)},          {"--due", P(PAYMENTDATEDUE)},
           {"--memo", P(PAYMENTMEMO)},              {"--bill-ref", P(PAYMENTBILLREFINFO)},
           {"--payee-list-id", P(PAYEELISTID)},     {"--payee-id", P(PAYEEID)},
           {"--payee-account", P(PAYEEACCOUNT)},    {"--name", P(PAYEENAME)},
           {"--addr1", P(PAYEEADDR1)},              {"--addr2", P(PAYEEADDR2)},
           {"--addr3", P(PAYEEADDR3)},              {"--city", P(PAYEECITY)},
           {"--state", P(PAYEESTATE)},              {"--postal-code", P(PAYEEPOSTALCODE)},
           {"--country", P(PAYEECOUNTRY)},          {"--phone", P(PAYEEPHONE)}},
          P(PAYMENTFROMACCOUNTTYPE),
          P(PAYMENTTOACCOUNTTYPE),
          P(LOSTSYNC),
          {{"pay", "pay", "bill", M(PAYBILL), false, false, {payment}},
           {"modify-payment", "pay", "modify", M(MODIFYPAYMENT), true, false, {payment}},
           {"cancel", "pay", "cancel", M(CANCELPAYMENT), true, false, {payment}},
           {"status", "pay", "status", M(GETPAYMENTSTATUS), true, false, {payment}},
           {"payments", "pay", "sync", M(SYNCHRONIZEPAYMENTS), false, true, {sync, payments}},
           {"add-payee", "payees", "add", M(ADDPAYEE), false, false, {payee}},
           {"modify-payee", "payees", "modify", M(MODIFYPAYEE), true, false, {payee}},
           {"delete-payee", "payees", "delete", M(DELETEPAYEE), true, false, {payee}},
           {"payees", "payees", "sync", M(SYNCHRONIZEPAYEES), false, true, {sync, payees}}}};
#undef P
#undef M
}

}  // namespace

int RunMoneyCommand(Cli& cli, const std::string& group, bool legacy, int argc, char** argv, int first) {
  const MoneyKind kind = group == "transfer" ? TransferKind() : PaymentKind();
  std::vector<OptionSpec> own = {{"--from-type", "from-type"}, {"--to-type", "to-type"}, {"--token", "token"},
                                 {"--refresh", "refresh", "1"}};
  for (const auto& option : kind.text_options) own.push_back({option.first.c_str(), option.first.c_str() + 2});
  Args args;
  if (int status = ParseArgs(cli, argc, argv, first, own, kUsage, &args); status != 0) return status < 0 ? 0 : status;
  const auto usage = [&cli](const std::string& problem) { return cli.Usage(problem, kUsage); };

  std::vector<std::string> words = args.words;
  if (words.empty() && !legacy && group == "payees") words.push_back("sync");
  if (words.empty()) return usage("name a command");
  const Command* command = nullptr;
  for (const Command& candidate : kind.commands) {
    const bool named = legacy ? words[0] == candidate.legacy : group == candidate.group && words[0] == candidate.action;
    if (named) command = &candidate;
  }
  if (command == nullptr) return usage("unknown command " + words[0]);
  if (words.size() != (command->takes_id ? 2u : 1u)) {
    return usage(command->takes_id ? "the command takes one server id" : "the command takes no server id");
  }
  if ((args.IsOn("refresh") || args.Has("token")) && !command->synchronizes) {
    return usage("--token and --refresh are for synchronizing");
  }
  std::map<int, int> types;
  for (const auto& [flag, id] : {std::pair<const char*, int>{"from-type", kind.from_type}, {"to-type", kind.to_type}}) {
    if (!args.Has(flag)) continue;
    size_t type = 0;
    while (type < kind.account_types.size() && args.Get(flag) != kind.account_types[type]) ++type;
    if (type == kind.account_types.size()) return usage("unknown account type " + args.Get(flag));
    types[id] = static_cast<int>(type);
  }
  if (args.Get("url").empty() || args.Get("org").empty() || args.Get("user").empty()) {
    return usage("--url, --org and --user are required");
  }
  std::string password;
  if (int status = ReadPassword(cli, kUsage, &password); status != 0) return status;

  Session session(cli, kind.component);
  int rc = session.SignOn(args, password, "102");
  if (rc == 0) rc = session.ApplyReadSettings(args);
  for (const auto& [flag, id] : kind.text_options) {
    const std::string key = flag.substr(2);
    if (rc == 0 && args.Has(key)) rc = session.SetText(id, key == "due" ? WithTime(args.Get(key)) : args.Get(key), flag.c_str());
  }
  for (const auto& [id, type] : types) rc = rc != 0 ? rc : session.SetInteger(id, type, "account type");
  if (rc != 0) return rc;

  const std::string token = args.IsOn("refresh") ? "REFRESH" : args.Has("token") ? args.Get("token") : "0";
  const std::string argument = command->takes_id ? words[1] : token;
  void* params[2] = {const_cast<char*>(argument.c_str()), nullptr};
  int lengths[2] = {0, 0};
  const int count = command->takes_id ? 1 : command->synchronizes ? 2 : 0;
  rc = session.Run(command->method, count, params, lengths, true);
  const std::string answer = params[1] != nullptr ? static_cast<const char*>(params[1]) : "";
  if (rc == 1 && command->synchronizes && session.Integer(kind.lost_sync) != 0) {
    std::fprintf(stderr, "%s: the server lost the synchronization; run again with --refresh\n", cli.name.c_str());
    return 1;
  }
  if (rc != 0) return session.Fail(legacy ? command->legacy : command->action);
  Format format = Format::kTable;
  ParseFormat(args.Get("format").empty() ? "table" : args.Get("format"), &format);
  PrintSections(kind.component, session.handle(), command->sections, answer, format, stdout);
  return 0;
}
