// The library's main job, end to end, through the public C interface only:
//   1. a bank statement downloaded over HTTPS from the sandbox bank
//      (orvelan-testbank), started here on loopback with a certificate it
//      makes on the spot, which this host accepts through
//      SSLAcceptServerCertEncoded;
//   2. the same statement view of an OFX file shipped beside this program.
// Run it with `make demo`; `orvelan-demo FILE.ofx` shows another file instead.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "orvelan.h"
#include "statement_printer.h"

namespace {

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The sandbox bank in a child process, stopped when this goes away.
class TestBank {
 public:
  explicit TestBank(const std::string& dir) : dir_(dir) {}
  TestBank(const TestBank&) = delete;
  TestBank& operator=(const TestBank&) = delete;
  ~TestBank() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      waitpid(pid_, nullptr, 0);
    }
  }

  // Serves HTTPS with a new certificate, copied to `cert`. Returns the port
  // it listens on, or 0.
  int Start(const std::string& cert) {
    const std::string port_file = dir_ + "/port";
    std::fflush(stdout);  // or the child writes our buffered output again
    pid_ = fork();
    if (pid_ == 0) {
      // The bank reports each request on stdout; the port file is enough here.
      if (std::FILE* quiet = std::freopen("/dev/null", "w", stdout); quiet == nullptr) std::_Exit(127);
      execl(ORVELAN_TESTBANK, ORVELAN_TESTBANK, "--tls", "--cert-out", cert.c_str(), "--port-file", port_file.c_str(),
            static_cast<char*>(nullptr));
      std::_Exit(127);
    }
    for (int waited = 0; pid_ > 0 && waited < 100; ++waited) {
      const std::string port = Slurp(port_file);
      if (!port.empty() && port.back() == '\n') return std::atoi(port.c_str());
      if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
        pid_ = 0;
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return 0;
  }

 private:
  std::string dir_;
  pid_t pid_ = 0;
};

int OnEvent(void* /*user_data*/, int event_id, int /*count*/, void** params, int* /*lengths*/) {
  if (event_id == ORVELAN_EVENT_ERROR) {
    std::printf("  (server notice %d: %s)\n", static_cast<int>(reinterpret_cast<intptr_t>(params[0])),
                static_cast<const char*>(params[1]));
  }
  return 0;
}

int Report(void* st, const char* what) {
  std::printf("%s failed: %d %s\n", what, BankStatement_GetLastErrorCode(st), BankStatement_GetLastError(st));
  return 1;
}

int SetText(void* st, int id, const std::string& value) {
  return BankStatement_Set(st, id, 0, value.c_str(), static_cast<int>(value.size()));
}

int Download(const std::string& dir) {
  const std::string cert = dir + "/bank.pem";
  TestBank bank(dir);
  const int port = bank.Start(cert);
  if (port == 0) {
    std::printf("could not start %s (python3 and openssl are needed)\n", ORVELAN_TESTBANK);
    return 1;
  }
  const std::string url = "https://127.0.0.1:" + std::to_string(port) + "/ofx";
  std::printf("== Downloading a statement from orvelan-testbank at %s (OFX 2.1.1 over TLS)\n\n", url.c_str());
  void* st = BankStatement_Create(OnEvent, nullptr, nullptr);
  const struct {
    int id;
    std::string value;
  } settings[] = {
      {BANKSTATEMENT_PROP_FIURL, url},
      {BANKSTATEMENT_PROP_FIORGANIZATION, "Orvelan Test Bank"},
      {BANKSTATEMENT_PROP_FIID, "9999"},
      {BANKSTATEMENT_PROP_OFXUSER, "user"},
      {BANKSTATEMENT_PROP_OFXPASSWORD, "secret"},
      {BANKSTATEMENT_PROP_OFXAPPID, "QWIN"},
      {BANKSTATEMENT_PROP_OFXAPPVERSION, "2700"},
      {BANKSTATEMENT_PROP_OFXVERSION, "211"},
      {BANKSTATEMENT_PROP_BANKID, "121000248"},
      {BANKSTATEMENT_PROP_ACCOUNTID, "4412345678"},
      {BANKSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00"},
      {BANKSTATEMENT_PROP_ENDDATE, "01/31/2026 00:00:00"},
      {BANKSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED, Slurp(cert)},
  };
  int status = 0;
  for (const auto& setting : settings) {
    if (SetText(st, setting.id, setting.value) != 0) status = Report(st, "setting a property");
  }
  if (status == 0 && BankStatement_Do(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr) != 0) {
    status = Report(st, "GetStatement");
  }
  if (status == 0) StatementPrinter(kBankStatement, StatementPrinter::Format::kTable).Print(st, stdout);
  BankStatement_Destroy(st);
  return status;
}

int ReadFile(const std::string& path) {
  std::printf("\n== Reading %s\n\n", path.c_str());
  void* st = BankStatement_Create(nullptr, nullptr, nullptr);
  void* params[1] = {const_cast<char*>(path.c_str())};
  int lengths[1] = {0};
  int status = 0;
  if (BankStatement_Do(st, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
    status = Report(st, "ReadOFXDataFile");
  } else {
    StatementPrinter(kBankStatement, StatementPrinter::Format::kTable).Print(st, stdout);
  }
  BankStatement_Destroy(st);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  void* probe = BankStatement_Create(nullptr, nullptr, nullptr);
  std::printf("Library: %s\n\n", static_cast<const char*>(BankStatement_Get(probe, ORVELAN_PROP_VERSION, 0, nullptr)));
  BankStatement_Destroy(probe);

  char dir_template[] = "/tmp/orvelan-demo-XXXXXX";
  const char* dir = mkdtemp(dir_template);
  if (dir == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  int status = Download(dir);
  std::error_code ignored;
  std::filesystem::remove_all(dir, ignored);
  const std::string file = argc > 1 ? argv[1] : std::string(ORVELAN_SOURCE_DIR) + "/examples/statement.ofx";
  status |= ReadFile(file);
  return status;
}
