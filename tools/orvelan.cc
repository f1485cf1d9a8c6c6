// orvelan: one command-line tool for every OFX service the library offers.
// Called by one of its older names (orvelan-statement, orvelan-profile,
// orvelan-accounts, orvelan-transfer, orvelan-pay: links to this program), it
// behaves as that tool did.
#include <cstdio>
#include <cstring>
#include <string>

#include "cli.h"

namespace {

const char kHelp[] =
    "usage: orvelan COMMAND [ARGUMENTS] [OPTIONS]\n"
    "commands (`orvelan COMMAND --help` tells each one's own options):\n"
    "  statement, card, loan, invest   a statement from a file or a server\n"
    "  accounts, profile               the user's accounts, the institution's profile\n"
    "  transfer, pay, payees           move money, pay bills, keep the payee list\n"
    "  batch                           several statements in one exchange\n"
    "  read FILE                       every statement, account list and profile in a file\n"
    "  aggregate FILE PATH             the element at PATH and its children\n"
    "common options:\n"
    "  --format table|csv|json   output format (table)\n"
    "  --institution NAME        take the settings below from the section [NAME] of the\n"
    "                            institutions file; the command line overrides them\n"
    "  --institutions FILE       that file (default $XDG_CONFIG_HOME/orvelan/institutions.ini,\n"
    "                            else ~/.config/orvelan/institutions.ini)\n"
    "  --url URL --org ORG --fid FID --user USER    the server and the user\n"
    "  --app-id ID --app-version V   the application the server sees (QWIN, 2700)\n"
    "  --ofx-version 102|211     (102; 211 for closing information)\n"
    "  --ca-file PEM             trust these certificate authorities too\n"
    "  --accept-cert PEM         accept exactly this server certificate\n"
    "  --timeout SECONDS         --access-key KEY\n"
    "  --extra-tags A,B          aggregates the OFX dictionary lacks\n"
    "  --strict                  refuse files that break the OFX rules (by default they are\n"
    "                            repaired, and each repair is shown as a warning)\n"
    "  --strict-server-requests  36-character TRNUIDs and an XML declaration, for strict servers\n"
    "  --config NAME=VALUE       any library setting (repeatable)\n"
    "  -v                        show connection, TLS and status events\n"
    "The password comes from ORVELAN_PASSWORD or, when that is unset and standard input is a\n"
    "terminal, a prompt without echo; never from the command line or the institutions file.\n"
    "Institutions file (INI; keys as the options above, without dashes):\n"
    "  [mybank]\n"
    "  url = https://ofx.mybank.example/ofx\n"
    "  org = MYBANK\n"
    "  fid = 1234\n"
    "  app-id = QWIN\n"
    "  app-version = 2700\n"
    "  ofx-version = 102\n"
    "  user = me\n"
    "  bank-id = 123456789\n"
    "  ca-file = /etc/ssl/mybank.pem\n"
    "  strict-server-requests = true\n"
    "  lenient-reading = true\n"
    "  extra-tags = INV401K,INV401KBAL\n"
    "  config = Timeout=120\n"
    "then: orvelan statement --institution mybank --account 1001\n"
    "Exit status: 0 on success, 1 when the library fails (its code and text on standard\n"
    "error), 2 for a bad command line.\n";

bool IsOneOf(const std::string& word, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (word == name) return true;
  }
  return false;
}

int Dispatch(Cli& cli, const std::string& command, bool legacy, int argc, char** argv, int first) {
  if (IsOneOf(command, {"statement", "card", "loan", "invest"})) {
    return RunStatementCommand(cli, command, argc, argv, first);
  }
  if (IsOneOf(command, {"profile", "accounts"})) return RunSetupCommand(cli, command, argc, argv, first);
  if (IsOneOf(command, {"transfer", "pay", "payees"})) return RunMoneyCommand(cli, command, legacy, argc, argv, first);
  if (command == "batch") return RunBatchCommand(cli, argc, argv, first);
  if (command == "read") return RunReadCommand(cli, argc, argv, first);
  if (command == "aggregate") return RunAggregateCommand(cli, argc, argv, first);
  return cli.Usage("unknown command " + command, kHelp);
}

}  // namespace

int main(int argc, char** argv) {
  Cli cli;
  const char* slash = std::strrchr(argv[0], '/');
  const std::string called = slash != nullptr ? slash + 1 : argv[0];
  static const struct {
    const char* name;
    const char* command;
  } kOlderNames[] = {{"orvelan-statement", "statement"}, {"orvelan-profile", "profile"},
                     {"orvelan-accounts", "accounts"},   {"orvelan-transfer", "transfer"},
                     {"orvelan-pay", "pay"}};
  for (const auto& older : kOlderNames) {
    if (called == older.name) {
      cli.name = called;
      return Dispatch(cli, older.command, true, argc, argv, 1);
    }
  }
  if (argc < 2) return cli.Usage("name a command", kHelp);
  const std::string command = argv[1];
  if (command == "--help" || command == "-h" || command == "help") {
    std::fputs(kHelp, stdout);
    return 0;
  }
  return Dispatch(cli, command, false, argc, argv, 2);
}
