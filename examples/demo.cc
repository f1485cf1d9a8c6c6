// The library's main job, end to end, through the public C interface only:
//   1. a bank statement downloaded over HTTPS from the scripted test bank,
//      started here on loopback with a certificate made on the fly, which this
//      host accepts through SSLAcceptServerCertEncoded;
//   2. the same statement view of an OFX file shipped beside this program.
// Run it with `make demo`; `orvelan-demo FILE.ofx` shows another file instead.
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>

#include "orvelan.h"
#include "statement_printer.h"

namespace {

template <typename T, void (*Free)(T*)>
struct Deleter {
  void operator()(T* p) const { Free(p); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using CertPtr = std::unique_ptr<X509, Deleter<X509, X509_free>>;

// A self-signed certificate for 127.0.0.1 and localhost, valid for a day.
bool MakeCertificate(const std::string& cert_path, const std::string& key_path) {
  KeyPtr key(EVP_RSA_gen(2048));
  CertPtr cert(X509_new());
  if (key == nullptr || cert == nullptr) return false;
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), static_cast<long>(std::time(nullptr)));
  X509_gmtime_adj(X509_getm_notBefore(cert.get()), -60);
  X509_gmtime_adj(X509_getm_notAfter(cert.get()), 86400);
  X509_set_pubkey(cert.get(), key.get());
  X509_NAME* name = X509_get_subject_name(cert.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("Orvelan Test Bank"), -1,
                             -1, 0);
  X509_set_issuer_name(cert.get(), name);
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, cert.get(), cert.get(), nullptr, nullptr, 0);
  X509_EXTENSION* san = X509V3_EXT_conf_nid(nullptr, &context, NID_subject_alt_name, "IP:127.0.0.1,DNS:localhost");
  if (san == nullptr) return false;
  X509_add_ext(cert.get(), san, -1);
  X509_EXTENSION_free(san);
  if (X509_sign(cert.get(), key.get(), EVP_sha256()) == 0) return false;
  std::FILE* out = std::fopen(cert_path.c_str(), "w");
  if (out == nullptr) return false;
  PEM_write_X509(out, cert.get());
  std::fclose(out);
  out = std::fopen(key_path.c_str(), "w");
  if (out == nullptr) return false;
  PEM_write_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  std::fclose(out);
  return true;
}

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The scripted test bank in a child process, stopped when this goes away.
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

  // Returns the port it listens on, or 0.
  int Start(const std::string& cert, const std::string& key) {
    const std::string port_file = dir_ + "/port";
    const std::string script = std::string(ORVELAN_SOURCE_DIR) + "/tests/support/test_bank.py";
    std::fflush(stdout);  // or the child writes our buffered output again
    pid_ = fork();
    if (pid_ == 0) {
      // The bank announces its port on stdout too; the port file is enough here.
      if (std::FILE* quiet = std::freopen("/dev/null", "w", stdout); quiet == nullptr) std::_Exit(127);
      execlp("python3", "python3", script.c_str(), "--port-file", port_file.c_str(), "--tls-cert", cert.c_str(),
             "--tls-key", key.c_str(), "--log", (dir_ + "/requests.log").c_str(), static_cast<char*>(nullptr));
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
  const std::string cert = dir + "/bank.pem", key = dir + "/bank.key";
  if (!MakeCertificate(cert, key)) {
    std::printf("could not make the test certificate\n");
    return 1;
  }
  TestBank bank(dir);
  const int port = bank.Start(cert, key);
  if (port == 0) {
    std::printf("could not start the test bank (python3 is needed)\n");
    return 1;
  }
  const std::string url = "https://127.0.0.1:" + std::to_string(port) + "/ofx";
  std::printf("== Downloading a statement from the test bank at %s (OFX 2.1.1 over TLS)\n\n", url.c_str());
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
  if (status == 0) StatementPrinter(StatementPrinter::Format::kTable).Print(st, stdout);
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
    StatementPrinter(StatementPrinter::Format::kTable).Print(st, stdout);
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
  std::system((std::string("rm -rf '") + dir + "'").c_str());
  const std::string file = argc > 1 ? argv[1] : std::string(ORVELAN_SOURCE_DIR) + "/examples/statement.ofx";
  status |= ReadFile(file);
  return status;
}
