#pragma once
// What every subcommand of `orvelan` shares: the component entry points, one
// command-line parser (with the institutions file behind it), the password,
// one sign-on setup and the events the user sees on standard error.
//
// Exit status everywhere: 0 on success, 1 when the library fails (its code
// and text on standard error), 2 for a bad command line.
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "statement_printer.h"

extern const Component kAccountComponent, kProfileComponent, kTransferComponent, kPaymentComponent,
    kBatchComponent;

// A parsed command line. Options are stored under their name without the
// dashes; a flag stores its fixed value ("--strict" stores lenient-reading=0).
struct Args {
  std::map<std::string, std::string> values;
  std::vector<std::pair<std::string, std::string>> lists;  // repeatable options, in order
  std::vector<std::string> words;                          // everything that is not an option
  std::map<std::string, bool> from_file;                   // values the institutions file gave

  const std::string& Get(const std::string& name) const;
  bool Has(const std::string& name) const { return values.count(name) != 0; }
  bool IsOn(const std::string& name) const;  // "1", "true", "yes" or "on"
  std::vector<std::string> All(const std::string& name) const;
};

// An option a subcommand accepts. `fixed` makes it a flag that stores that value.
struct OptionSpec {
  const char* flag;  // "--url"
  const char* key;   // where it is stored: "url"
  const char* fixed = nullptr;
  bool repeatable = false;
};

// The program as the user called it: its name for messages, its output
// format and how much it says on standard error.
struct Cli {
  std::string name = "orvelan";
  int verbosity = 0;
  bool progress = false;  // elapsed time and bytes on long downloads

  // Prints "NAME: problem" and the usage text; returns 2.
  int Usage(const std::string& problem, const char* usage) const;
};

// Parses argv[first..] against the options every command takes plus `own`;
// then, with --institution, fills what the command line left unset from the
// institutions file. Returns 0, or 2 after printing the problem.
int ParseArgs(Cli& cli, int argc, char** argv, int first, const std::vector<OptionSpec>& own, const char* usage,
              Args* args);

// Reads the section `name` of an INI file into `settings` (keys lower-cased,
// without '-' and '_'). Returns "" or the problem ("FILE:LINE: ...").
std::string ReadInstitution(const std::string& path, const std::string& name,
                            std::vector<std::pair<std::string, std::string>>* settings);

// The password from ORVELAN_PASSWORD or, when that is unset and standard input
// is a terminal, a prompt without echo. Returns 0, or 2 when there is none.
int ReadPassword(const Cli& cli, const char* usage, std::string* password);

// The output format named by --format; false for an unknown one.
bool ParseFormat(const std::string& name, Format* format);

// One component handle with the tool's event handler: warnings (the library's
// Error events: server messages, lenient-reading repairs) always, connection
// and TLS events with -v, progress while a download waits.
class Session {
 public:
  Session(const Cli& cli, const Component& component);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void* handle() const { return handle_; }
  const Component& component() const { return component_; }

  // "NAME: WHAT failed: CODE TEXT" on standard error; returns 1.
  int Fail(const char* what) const;
  int Config(const std::string& setting);
  int SetText(int id, const std::string& value, const char* what);
  int SetInteger(int id, long value, const char* what);
  std::string Text(int id, int index = 0) const;
  long Integer(int id, int index = 0) const;

  // The reading settings of Args: lenient reading (on unless --strict),
  // ExtraTags (the command's own `extra_tags` and the user's) and --config.
  int ApplyReadSettings(const Args& args, const std::string& extra_tags = "");
  // Everything a download needs besides the service's own inputs: the
  // institution, the user and password, the application, the OFX version,
  // TLS trust, the time-out and the request form.
  int SignOn(const Args& args, const std::string& password, const std::string& default_version);

  // Runs a method; a download (`network`) shows progress when asked to.
  // Returns the library's code.
  int Run(int method, int count, void** params, int* lengths, bool network);

 private:
  static int OnEvent(void* self, int event_id, int count, void** params, int* lengths);
  void ShowProgress();

  const Cli& cli_;
  const Component& component_;
  void* handle_;
  bool waiting_ = false;
  long long wait_started_ms_ = 0, last_shown_ms_ = 0, bytes_at_start_ = 0;
};

// The library reads host dates with the time of day; a bare date means midnight.
std::string WithTime(const std::string& date);

// What the profile and the account list show.
std::vector<Section> ProfileSections();
std::vector<Section> AccountSections();

// The subcommands.
int RunStatementCommand(Cli& cli, const std::string& command, int argc, char** argv, int first);
int RunBatchCommand(Cli& cli, int argc, char** argv, int first);
int RunReadCommand(Cli& cli, int argc, char** argv, int first);
int RunAggregateCommand(Cli& cli, int argc, char** argv, int first);
int RunSetupCommand(Cli& cli, const std::string& command, int argc, char** argv, int first);
// `command` is "transfer", "pay" or "payees"; `legacy` is true for the
// orvelan-transfer and orvelan-pay names, whose actions are named as before.
int RunMoneyCommand(Cli& cli, const std::string& command, bool legacy, int argc, char** argv, int first);
