#include "support/proxy_servers.h"

#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "support/loopback_server.h"
#include "support/test_pki.h"

namespace orvelan {

ProxyServer::ProxyServer(const std::string& program) : program_(FindProgram(program)) {
  char templ[] = "/tmp/orvelan-proxy-XXXXXX";
  if (program_.empty()) {
    why_ = "no " + program + " program";
  } else if (mkdtemp(templ) == nullptr) {
    why_ = "no temporary directory";
  } else {
    dir_ = templ;
    port_ = UnusedPort();
  }
}

ProxyServer::~ProxyServer() {
  process_.reset();
  if (!dir_.empty()) RunQuietly("rm -rf '" + dir_ + "'");
}

void ProxyServer::Run(std::vector<std::string> argv) {
  if (!ok()) return;
  argv.insert(argv.begin(), program_);
  process_ = std::make_unique<PeerProcess>(argv, dir_ + "/out.log");
  if (!process_->Ready({port_})) why_ = program_ + " did not start: " + Log();
}

std::string ProxyServer::Log() const {
  std::string text;
  for (const char* name : {"/out.log", "/proxy.log"}) {
    std::ifstream in(dir_ + name, std::ios::binary);
    text.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return text;
}

std::unique_ptr<ProxyServer> ProxyServer::Dante(int blocked_port) {
  std::unique_ptr<ProxyServer> s(new ProxyServer("danted"));
  if (!s->ok()) return s;
  std::ofstream(s->dir_ + "/danted.conf")
      << "logoutput: " << s->dir_ << "/proxy.log\n"
      << "internal: 127.0.0.1 port = " << s->port_ << "\nexternal: 127.0.0.1\n"
      << "clientmethod: none\nsocksmethod: none\n"
      << "client pass { from: 127.0.0.0/8 to: 0.0.0.0/0 }\n"
      << "socks block { from: 0.0.0.0/0 to: 127.0.0.1/32 port = " << blocked_port << " }\n"
      << "socks pass { from: 127.0.0.0/8 to: 127.0.0.0/8 command: connect }\n";
  s->Run({"-f", s->dir_ + "/danted.conf", "-N", "1", "-p", s->dir_ + "/danted.pid"});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Microsocks(const std::string& user, const std::string& password) {
  std::unique_ptr<ProxyServer> s(new ProxyServer("microsocks"));
  s->Run({"-i", "127.0.0.1", "-p", std::to_string(s->port_), "-u", user, "-P", password});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Tinyproxy(bool basic_auth) {
  std::unique_ptr<ProxyServer> s(new ProxyServer("tinyproxy"));
  if (!s->ok()) return s;
  std::ofstream(s->dir_ + "/tinyproxy.conf")
      << (geteuid() == 0 ? "User nobody\nGroup nogroup\n" : "") << "Port " << s->port_
      << "\nListen 127.0.0.1\nTimeout 30\nLogFile \"" << s->dir_
      << "/proxy.log\"\nLogLevel Info\nMaxClients 20\nAllow 127.0.0.1\nDisableViaHeader Yes\n"
      << (basic_auth ? "BasicAuth proxyuser proxypass\n" : "");
  RunQuietly("chmod 777 '" + s->dir_ + "'");  // tinyproxy may drop to nobody before it logs
  s->Run({"-d", "-c", s->dir_ + "/tinyproxy.conf"});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Scripted(const std::vector<std::string>& arguments) {
  std::unique_ptr<ProxyServer> s(new ProxyServer("python3"));
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  std::string script = source != nullptr && *source != '\0' ? source : __FILE__;  // .../tests/support/proxy_servers.cc
  script = script.substr(0, script.rfind("/tests/")) + "/tests/support/scripted_proxy.py";
  std::vector<std::string> argv = {script, "--port", std::to_string(s->port_), "--log", s->dir_ + "/proxy.log"};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  s->Run(argv);
  return s;
}

}  // namespace orvelan
