#include "cli.h"

#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

const Component kAccountComponent = ORVELAN_COMPONENT(Account, ACCOUNT);
const Component kProfileComponent = ORVELAN_COMPONENT(FIProfile, FIPROFILE);
const Component kTransferComponent = ORVELAN_COMPONENT(BankTransfer, BANKTRANSFER);
const Component kPaymentComponent = ORVELAN_COMPONENT(BillPayment, BILLPAYMENT);
// The batch takes its OFX version through Config and has no access key.
const Component kBatchComponent = {ORVELAN_ENTRY_POINTS(OFXBatch), OFXBATCH_METHOD_CONFIG, OFXBATCH_PROP_FIURL,
                                   OFXBATCH_PROP_FIORGANIZATION, OFXBATCH_PROP_FIID, OFXBATCH_PROP_OFXUSER,
                                   OFXBATCH_PROP_OFXPASSWORD, OFXBATCH_PROP_OFXAPPID, OFXBATCH_PROP_OFXAPPVERSION,
                                   0, 0, OFXBATCH_PROP_TIMEOUT, OFXBATCH_PROP_SSLACCEPTSERVERCERTENCODED};

namespace {

const char kPasswordVariable[] = "ORVELAN_PASSWORD";
// Large enough for years of transactions, small enough that a broken or
// hostile server cannot fill the host's memory.
const char kMaxTransferredData[] = "MaxTransferredData=268435456";

const OptionSpec kCommonOptions[] = {
    {"--format", "format"},
    {"--institution", "institution"},
    {"--institutions", "institutions"},
    {"--url", "url"},
    {"--org", "org"},
    {"--fid", "fid"},
    {"--user", "user"},
    {"--app-id", "app-id"},
    {"--app-version", "app-version"},
    {"--ofx-version", "ofx-version"},
    {"--ca-file", "ca-file"},
    {"--accept-cert", "accept-cert"},
    {"--timeout", "timeout"},
    {"--access-key", "access-key"},
    {"--extra-tags", "extra-tags"},
    {"--config", "config", nullptr, true},
    {"--strict", "lenient-reading", "0"},
    {"--lenient", "lenient-reading", "1"},
    {"--strict-server-requests", "strict-server-requests", "1"},
    {"-v", "verbose", "1"},
    {"--verbose", "verbose", "1"},
};

// Institutions-file keys, compared lower-cased without '-', '_' and '.', and
// the option each one stands for. Booleans are marked.
const struct {
  const char* key;
  const char* option;
  bool boolean;
} kFileKeys[] = {
    {"url", "url", false},          {"fiurl", "url", false},
    {"org", "org", false},          {"fiorganization", "org", false},
    {"fid", "fid", false},          {"fiid", "fid", false},
    {"user", "user", false},        {"ofxuser", "user", false},
    {"appid", "app-id", false},     {"ofxappid", "app-id", false},
    {"appversion", "app-version", false}, {"ofxappversion", "app-version", false},
    {"ofxversion", "ofx-version", false}, {"cafile", "ca-file", false},
    {"opensslcafile", "ca-file", false},  {"acceptcert", "accept-cert", false},
    {"timeout", "timeout", false},  {"accesskey", "access-key", false},
    {"extratags", "extra-tags", false},   {"bankid", "bank-id", false},
    {"broker", "broker", false},    {"brokerid", "broker", false},
    {"strictserverrequests", "strict-server-requests", true},
    {"lenientreading", "lenient-reading", true},
    {"config", "config", false},
};

std::string Normalized(const std::string& key) {
  std::string out;
  for (unsigned char c : key) {
    if (c != '-' && c != '_' && c != '.') out += static_cast<char>(std::tolower(c));
  }
  return out;
}

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return std::string();
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// "1" or "0" for the spellings people write; "" for anything else.
std::string Boolean(const std::string& text) {
  const std::string t = Normalized(text);
  if (t == "1" || t == "true" || t == "yes" || t == "on") return "1";
  if (t == "0" || t == "false" || t == "no" || t == "off") return "0";
  return std::string();
}

std::string InstitutionsPath(const Args& args) {
  if (args.Has("institutions")) return args.Get("institutions");
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg != nullptr && *xdg != '\0') {
    return std::string(xdg) + "/orvelan/institutions.ini";
  }
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr ? home : "") + "/.config/orvelan/institutions.ini";
}

// The command line wins: a file value fills only what it left unset, and the
// file's Config settings go first so that the command line's override them.
int MergeInstitution(const Cli& cli, const char* usage, Args* args) {
  const std::string path = InstitutionsPath(*args);
  std::vector<std::pair<std::string, std::string>> settings;
  if (std::string problem = ReadInstitution(path, args->Get("institution"), &settings); !problem.empty()) {
    return cli.Usage(problem, usage);
  }
  std::vector<std::pair<std::string, std::string>> file_configs;
  for (const auto& [key, raw] : settings) {
    const auto* known = std::find_if(std::begin(kFileKeys), std::end(kFileKeys),
                                     [&key = key](const auto& entry) { return key == entry.key; });
    if (known == std::end(kFileKeys)) return cli.Usage(path + ": unknown key " + key, usage);
    std::string value = known->boolean ? Boolean(raw) : raw;
    if (value.empty() && known->boolean) return cli.Usage(path + ": " + key + " is true or false", usage);
    if (std::strcmp(known->option, "config") == 0) {
      file_configs.emplace_back("config", value);
    } else if (!args->Has(known->option)) {
      args->values[known->option] = value;
      args->from_file[known->option] = true;
    }
  }
  args->lists.insert(args->lists.begin(), file_configs.begin(), file_configs.end());
  return 0;
}

long long NowMs() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return static_cast<long long>(now.tv_sec) * 1000 + now.tv_usec / 1000;
}

// Bytes this process has read from descriptors, sockets included; the
// library reports no byte counts to its host, so progress is told from here.
long long BytesRead() {
  std::ifstream io("/proc/self/io");
  std::string name;
  long long value = 0;
  while (io >> name >> value) {
    if (name == "rchar:") return value;
  }
  return 0;
}

const char* EventText(void** params, int at) {
  const char* text = static_cast<const char*>(params[at]);
  return text != nullptr ? text : "";
}

}  // namespace

const std::string& Args::Get(const std::string& name) const {
  static const std::string kNone;
  const auto found = values.find(name);
  return found == values.end() ? kNone : found->second;
}

bool Args::IsOn(const std::string& name) const { return Boolean(Get(name)) == "1"; }

std::vector<std::string> Args::All(const std::string& name) const {
  std::vector<std::string> all;
  for (const auto& [key, value] : lists) {
    if (key == name) all.push_back(value);
  }
  return all;
}

int Cli::Usage(const std::string& problem, const char* usage) const {
  std::fprintf(stderr, "%s: %s\n", name.c_str(), problem.c_str());
  std::fputs(usage, stderr);
  return 2;
}

int ParseArgs(Cli& cli, int argc, char** argv, int first, const std::vector<OptionSpec>& own, const char* usage,
              Args* args) {
  for (int i = first; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fputs(usage, stdout);
      return -1;
    }
    if (arg.rfind("--password", 0) == 0) {
      return cli.Usage("the password comes from ORVELAN_PASSWORD, never the command line", usage);
    }
    if (arg.size() < 2 || arg[0] != '-') {
      args->words.push_back(arg);
      continue;
    }
    std::string inline_value;
    const size_t equals = arg.find('=');
    const bool has_inline = arg.rfind("--", 0) == 0 && equals != std::string::npos;
    if (has_inline) {
      inline_value = arg.substr(equals + 1);
      arg.resize(equals);
    }
    const OptionSpec* spec = nullptr;
    for (const OptionSpec& candidate : own) spec = arg == candidate.flag ? &candidate : spec;
    for (const OptionSpec& candidate : kCommonOptions) spec = arg == candidate.flag ? &candidate : spec;
    if (spec == nullptr) return cli.Usage("unknown option " + arg, usage);
    std::string value;
    if (spec->fixed != nullptr) {
      value = spec->fixed;
    } else if (has_inline) {
      value = inline_value;
    } else if (i + 1 < argc) {
      value = argv[++i];
    } else {
      return cli.Usage(arg + " needs a value", usage);
    }
    if (spec->repeatable) {
      args->lists.emplace_back(spec->key, value);
    } else {
      args->values[spec->key] = value;
    }
  }
  if (args->Has("institution")) {
    if (int status = MergeInstitution(cli, usage, args); status != 0) return status;
  }
  if (args->IsOn("verbose")) cli.verbosity = 1;
  cli.progress = cli.verbosity > 0 || isatty(STDERR_FILENO);
  Format format;
  if (!ParseFormat(args->Get("format").empty() ? "table" : args->Get("format"), &format)) {
    return cli.Usage("unknown format", usage);
  }
  if (args->Has("timeout")) {
    const std::string& timeout = args->Get("timeout");
    char* end = nullptr;
    std::strtol(timeout.c_str(), &end, 10);
    if (timeout.empty() || *end != '\0') return cli.Usage("the time-out is a number of seconds", usage);
  }
  return 0;
}

std::string ReadInstitution(const std::string& path, const std::string& name,
                            std::vector<std::pair<std::string, std::string>>* settings) {
  std::ifstream in(path);
  if (!in) return "cannot read the institutions file " + path;
  std::string line;
  bool inside = false, found = false;
  for (int number = 1; std::getline(in, line); ++number) {
    line = Trimmed(line);
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    if (line[0] == '[') {
      if (line.back() != ']') return path + ":" + std::to_string(number) + ": a section is [NAME]";
      inside = Normalized(Trimmed(line.substr(1, line.size() - 2))) == Normalized(name);
      found = found || inside;
      continue;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos) return path + ":" + std::to_string(number) + ": expected KEY = VALUE";
    if (!inside) continue;
    std::string value = Trimmed(line.substr(equals + 1));
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    settings->emplace_back(Normalized(Trimmed(line.substr(0, equals))), value);
  }
  if (!found) return "no institution [" + name + "] in " + path;
  return std::string();
}

int ReadPassword(const Cli& cli, const char* usage, std::string* password) {
  if (const char* from_environment = std::getenv(kPasswordVariable); from_environment != nullptr) {
    *password = from_environment;
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
    if (got) password->assign(line, std::strcspn(line, "\r\n"));
  }
  if (password->empty()) return cli.Usage("no password: set ORVELAN_PASSWORD or run on a terminal to be asked", usage);
  return 0;
}

bool ParseFormat(const std::string& name, Format* format) {
  static const struct {
    const char* name;
    Format format;
  } kFormats[] = {{"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};
  for (const auto& entry : kFormats) {
    if (name == entry.name) {
      *format = entry.format;
      return true;
    }
  }
  return false;
}

std::string WithTime(const std::string& date) {
  return date.empty() || date.find(' ') != std::string::npos ? date : date + " 00:00:00";
}

Session::Session(const Cli& cli, const Component& component)
    : cli_(cli), component_(component), handle_(component.create(&Session::OnEvent, this, nullptr)) {}

Session::~Session() {
  if (handle_ != nullptr) component_.destroy(handle_);
}

int Session::Fail(const char* what) const {
  std::fprintf(stderr, "%s: %s failed: %d %s\n", cli_.name.c_str(), what, component_.last_error_code(handle_),
               component_.last_error(handle_));
  return 1;
}

int Session::Config(const std::string& setting) {
  void* params[2] = {const_cast<char*>(setting.c_str()), nullptr};
  int lengths[2] = {0, 0};
  if (component_.run(handle_, component_.config_method, 2, params, lengths) != 0) return Fail("Config");
  return 0;
}

int Session::SetText(int id, const std::string& value, const char* what) {
  if (id == 0) return 0;
  if (component_.set(handle_, id, 0, value.c_str(), static_cast<int>(value.size())) != 0) return Fail(what);
  return 0;
}

int Session::SetInteger(int id, long value, const char* what) {
  if (component_.set(handle_, id, 0, reinterpret_cast<void*>(static_cast<intptr_t>(value)), 0) != 0) {
    return Fail(what);
  }
  return 0;
}

std::string Session::Text(int id, int index) const {
  if (id == 0) return std::string();
  const char* text = static_cast<const char*>(component_.get(handle_, id, index, nullptr));
  return text == nullptr ? std::string() : std::string(text);
}

long Session::Integer(int id, int index) const {
  return static_cast<long>(reinterpret_cast<intptr_t>(component_.get(handle_, id, index, nullptr)));
}

int Session::ApplyReadSettings(const Args& args, const std::string& extra_tags) {
  if (!args.Has("lenient-reading") || args.IsOn("lenient-reading")) {
    if (int status = Config("LenientReading=True"); status != 0) return status;
  }
  std::string tags = extra_tags;
  if (!args.Get("extra-tags").empty()) tags += (tags.empty() ? "" : ",") + args.Get("extra-tags");
  if (!tags.empty()) {
    if (int status = Config("ExtraTags=" + tags); status != 0) return status;
  }
  for (const std::string& setting : args.All("config")) {
    if (int status = Config(setting); status != 0) return status;
  }
  return 0;
}

int Session::SignOn(const Args& args, const std::string& password, const std::string& default_version) {
  const Component& c = component_;
  const auto or_default = [&args](const char* name, const char* fallback) {
    return args.Has(name) ? args.Get(name) : std::string(fallback);
  };
  const std::string version = or_default("ofx-version", default_version.c_str());
  const struct {
    int id;
    const char* name;
    std::string value;
  } texts[] = {
      {c.fi_url, "FIUrl", args.Get("url")},
      {c.fi_organization, "FIOrganization", args.Get("org")},
      {c.fi_id, "FIId", args.Get("fid")},
      {c.ofx_user, "OFXUser", args.Get("user")},
      {c.ofx_password, "OFXPassword", password},
      {c.ofx_app_id, "OFXAppId", or_default("app-id", "QWIN")},
      {c.ofx_app_version, "OFXAppVersion", or_default("app-version", "2700")},
      {c.ofx_version, "OFXVersion", version},
      {args.Has("access-key") ? c.ofx_access_key : 0, "OFXAccessKey", args.Get("access-key")},
  };
  for (const auto& text : texts) {
    if (int status = SetText(text.id, text.value, text.name); status != 0) return status;
  }
  if (c.ofx_version == 0) {
    if (int status = Config("OFXVersion=" + version); status != 0) return status;
  }
  if (int status = Config(kMaxTransferredData); status != 0) return status;
  if (args.Has("timeout")) {
    if (int status = SetInteger(c.timeout, std::strtol(args.Get("timeout").c_str(), nullptr, 10), "Timeout");
        status != 0) {
      return status;
    }
  }
  if (args.Has("ca-file")) {
    if (int status = Config("OpenSSLCAFile=" + args.Get("ca-file")); status != 0) return status;
  }
  if (args.IsOn("strict-server-requests")) {
    if (int status = Config("StrictServerRequests=True"); status != 0) return status;
  }
  if (cli_.verbosity > 0) {
    if (int status = Config("DebugTrace=True"); status != 0) return status;
    std::fprintf(stderr, "%s: %s to %s\n", cli_.name.c_str(), c.name, args.Get("url").c_str());
  }
  if (args.Has("accept-cert")) {
    std::ifstream in(args.Get("accept-cert"), std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "%s: cannot read %s\n", cli_.name.c_str(), args.Get("accept-cert").c_str());
      return 1;
    }
    const std::string certificate((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (int status = SetText(c.ssl_accept_server_cert, certificate, "SSLAcceptServerCertEncoded"); status != 0) {
      return status;
    }
  }
  return 0;
}

int Session::Run(int method, int count, void** params, int* lengths, bool network) {
  // The library calls its host once per wait cycle only in external-loop
  // mode; it still waits on its socket itself, so nothing else changes.
  const bool show = network && cli_.progress &&
                    component_.run(handle_, ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_ON, 0, nullptr, nullptr) == 0;
  if (show) {
    waiting_ = true;
    wait_started_ms_ = NowMs();
    last_shown_ms_ = 0;
    bytes_at_start_ = BytesRead();
  }
  const int rc = component_.run(handle_, method, count, params, lengths);
  if (show && last_shown_ms_ != 0) std::fputs(isatty(STDERR_FILENO) ? "\r\033[K" : "", stderr);
  waiting_ = false;
  return rc;
}

void Session::ShowProgress() {
  const long long now = NowMs();
  const bool terminal = isatty(STDERR_FILENO);
  // Quiet for short exchanges; a terminal line is redrawn, a log gets a line a second.
  if (now - wait_started_ms_ < 1000 || now - last_shown_ms_ < (terminal ? 250 : 1000)) return;
  last_shown_ms_ = now;
  const double megabytes = static_cast<double>(BytesRead() - bytes_at_start_) / 1e6;
  std::fprintf(stderr, "%s%s: waiting %.1f s, %.2f MB received%s", terminal ? "\r" : "", cli_.name.c_str(),
               static_cast<double>(now - wait_started_ms_) / 1000, megabytes, terminal ? "" : "\n");
}

int Session::OnEvent(void* self, int event_id, int count, void** params, int* lengths) {
  Session& session = *static_cast<Session*>(self);
  const char* name = session.cli_.name.c_str();
  const bool verbose = session.cli_.verbosity > 0;
  switch (event_id) {
    case ORVELAN_EVENT_ERROR:
      if (count >= 2) {
        std::fprintf(stderr, "%s: warning: %ld %s\n", name, static_cast<long>(reinterpret_cast<intptr_t>(params[0])),
                     EventText(params, 1));
      }
      break;
    case ORVELAN_EVENT_CONNECTION_STATUS:
      // The description is the whole exchange, password included: its size only.
      if (verbose && count >= 3) {
        const long status = static_cast<long>(reinterpret_cast<intptr_t>(params[1]));
        const size_t bytes = std::strlen(EventText(params, 2));
        std::fprintf(stderr, "%s: connection: %s", name, EventText(params, 0));
        if (status != 0) std::fprintf(stderr, " (status %ld)", status);
        std::fprintf(stderr, bytes != 0 ? " (%zu bytes)\n" : "\n", bytes);
      }
      break;
    case ORVELAN_EVENT_SSL_STATUS:
      if (verbose && count >= 1) std::fprintf(stderr, "%s: tls: %s\n", name, EventText(params, 0));
      break;
    case ORVELAN_EVENT_SSL_SERVER_AUTHENTICATION:
      if (verbose && count >= 4) {
        std::fprintf(stderr, "%s: tls: server certificate \"%s\" issued by \"%s\": %s\n", name, EventText(params, 1),
                     EventText(params, 2), EventText(params, 3));
      }
      break;
    case ORVELAN_EVENT_WAIT_FOR_EVENTS:
      if (session.waiting_) session.ShowProgress();
      break;
    default:
      break;
  }
  (void)lengths;
  return 0;
}
