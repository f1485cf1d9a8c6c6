#include "support/test_bank_server.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>


namespace orvelan {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TestBankServer::TestBankServer() {
  char templ[] = "/tmp/orvelan-bank-XXXXXX";
  if (mkdtemp(templ) == nullptr) {
    why_ = "no temporary directory";
    return;
  }
  dir_ = templ;
  log_path_ = dir_ + "/requests.log";
  port_ = Launch(bank_, "plain", {});
}

TestBankServer::~TestBankServer() {
  tls_bank_.reset();
  bank_.reset();
  if (!dir_.empty()) std::filesystem::remove_all(dir_);
}

int TestBankServer::Launch(std::unique_ptr<PeerProcess>& bank, const std::string& name,
                           const std::vector<std::string>& options) {
  const std::string python = FindProgram("python3");
  const std::string script = ORVELAN_TESTBANK;  // in the build tree, put there by CMake
  if (python.empty() || access(script.c_str(), R_OK) != 0) {
    why_ = python.empty() ? "no python3 program" : "no script at " + script;
    return 0;
  }
  const std::string port_file = dir_ + "/" + name + ".port", out = dir_ + "/" + name + ".out";
  std::vector<std::string> argv{python, "-u", script, "--port-file", port_file, "--log", log_path_};
  argv.insert(argv.end(), options.begin(), options.end());
  bank = std::make_unique<PeerProcess>(argv, out);
  // The script renames the port file into place, so a file that exists is whole.
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  int port = 0;
  while (port <= 0 && std::chrono::steady_clock::now() < end) {
    port = std::atoi(ReadFile(port_file).c_str());
    if (port <= 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (port <= 0 || !bank->Ready({port})) {
    why_ = "the test bank did not start: " + ReadFile(out);
    bank.reset();
    return 0;
  }
  return port;
}

std::string TestBankServer::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::string TestBankServer::TlsUrl(const std::string& path) const {
  return "https://127.0.0.1:" + std::to_string(tls_port_) + path;
}

// A second bank serves TLS itself with the test CA's server certificate and
// logs to the same file, so Requests() sees both in order.
bool TestBankServer::StartBehindTls(bool self_signed) {
  if (tls_tried_) return tls_port_ > 0;
  tls_tried_ = true;
  if (!ok()) return false;
  if (self_signed) {
    tls_port_ = Launch(tls_bank_, "tls", {"--tls"});
    return tls_port_ > 0;
  }
  const TestPki& pki = TestPki::Get();
  if (!pki.ok()) {
    why_ = "could not make test certificates with openssl";
    return false;
  }
  tls_port_ = Launch(tls_bank_, "tls", {"--cert", pki.Path("server.pem"), "--key", pki.Path("server.key")});
  return tls_port_ > 0;
}

std::vector<TestBankServer::Request> TestBankServer::Requests() const {
  const std::string log = ReadFile(log_path_);
  std::vector<Request> requests;
  for (size_t at = 0; at < log.size();) {
    Request r;
    size_t n = 0;
    int used = 0;
    if (std::sscanf(log.c_str() + at, "--- request %*d status=%d length=%zu%n", &r.status, &n, &used) != 2 ||
        log[at + used] != '\n' || at + used + 1 + n > log.size()) {
      break;  // the last one is still being written
    }
    r.body = log.substr(at + used + 1, n);
    requests.push_back(std::move(r));
    at += used + 1 + n + 1;
  }
  return requests;
}

}  // namespace orvelan
