#include "support/test_bank_server.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/loopback_server.h"

namespace orvelan {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TestBankServer::TestBankServer() {
  const std::string python = FindProgram("python3");
  const std::string script = ORVELAN_TESTBANK;  // in the build tree, put there by CMake
  char templ[] = "/tmp/orvelan-bank-XXXXXX";
  if (python.empty() || access(script.c_str(), R_OK) != 0 || mkdtemp(templ) == nullptr) {
    why_ = python.empty() ? "no python3 program" : "no script at " + script + " or no temporary directory";
    return;
  }
  dir_ = templ;
  log_path_ = dir_ + "/requests.log";
  const std::string port_file = dir_ + "/port";
  bank_ = std::make_unique<PeerProcess>(
      std::vector<std::string>{python, "-u", script, "--port-file", port_file, "--log", log_path_},
      dir_ + "/bank.out");
  // The script renames the port file into place, so a file that exists is whole.
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  int port = 0;
  while (port <= 0 && std::chrono::steady_clock::now() < end) {
    port = std::atoi(ReadFile(port_file).c_str());
    if (port <= 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (port <= 0 || !bank_->Ready({port})) {
    why_ = "the test bank did not start: " + ReadFile(dir_ + "/bank.out");
    bank_.reset();
    return;
  }
  port_ = port;
}

TestBankServer::~TestBankServer() {
  proxy_.reset();
  bank_.reset();
  if (!dir_.empty()) RunQuietly("rm -rf '" + dir_ + "'");
}

std::string TestBankServer::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::string TestBankServer::TlsUrl(const std::string& path) const {
  return "https://127.0.0.1:" + std::to_string(tls_port_) + path;
}

bool TestBankServer::StartBehindTls() {
  if (tls_tried_) return tls_port_ > 0;
  tls_tried_ = true;
  if (!ok()) return false;
  const std::string nginx = FindProgram("nginx");
  if (nginx.empty()) {
    why_ = "no nginx program";
    return false;
  }
  const TestPki& pki = TestPki::Get();
  if (!pki.ok()) {
    why_ = "could not make test certificates with openssl";
    return false;
  }
  const std::string dir = dir_ + "/nginx";
  RunQuietly("mkdir -p '" + dir + "/tmp'");
  const int port = UnusedPort();
  std::ofstream conf(dir + "/nginx.conf");
  if (geteuid() == 0) conf << "user root;\n";
  conf << "daemon off;\nmaster_process off;\nworker_processes 1;\npid " << dir << "/nginx.pid;\nerror_log " << dir
       << "/error.log warn;\nevents { worker_connections 256; }\nhttp {\n  access_log off;\n"
       << "  client_body_temp_path " << dir << "/tmp/body;\n  proxy_temp_path " << dir << "/tmp/proxy;\n"
       << "  fastcgi_temp_path " << dir << "/tmp/fcgi;\n  uwsgi_temp_path " << dir << "/tmp/uwsgi;\n"
       << "  scgi_temp_path " << dir << "/tmp/scgi;\n  client_max_body_size 16m;\n"
       << "  server {\n    listen 127.0.0.1:" << port << " ssl;\n"
       << "    ssl_certificate " << pki.Path("server.pem") << ";\n"
       << "    ssl_certificate_key " << pki.Path("server.key") << ";\n"
       << "    location / {\n      proxy_pass http://127.0.0.1:" << port_ << ";\n"
       << "      proxy_http_version 1.1;\n      proxy_set_header Connection \"\";\n"
       << "      proxy_read_timeout 600s;\n    }\n  }\n}\n";
  conf.close();
  proxy_ = std::make_unique<PeerProcess>(
      std::vector<std::string>{nginx, "-p", dir, "-c", dir + "/nginx.conf", "-e", dir + "/error.log"},
      dir + "/nginx.out");
  if (!proxy_->Ready({port})) {
    why_ = "nginx did not start: " + ReadFile(dir + "/nginx.out") + ReadFile(dir + "/error.log");
    proxy_.reset();
    return false;
  }
  tls_port_ = port;
  return true;
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
