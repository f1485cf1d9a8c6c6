#include "support/proxy_servers.h"

#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "support/loopback_server.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

std::string SourceDir() {
  const char* dir = std::getenv("ORVELAN_SOURCE_DIR");
  if (dir != nullptr && *dir != '\0') return dir;
  std::string file = __FILE__;  // .../tests/support/proxy_servers.cc
  return file.substr(0, file.rfind("/tests/"));
}

}  // namespace

ProxyServer::~ProxyServer() {
  process_.reset();
  if (!dir_.empty()) RunQuietly("rm -rf '" + dir_ + "'");
}

bool ProxyServer::Prepare(const std::string& program) {
  program_ = FindProgram(program);
  if (program_.empty()) {
    why_ = "no " + program + " program";
    return false;
  }
  char templ[] = "/tmp/orvelan-proxy-XXXXXX";
  if (mkdtemp(templ) == nullptr) {
    why_ = "no temporary directory";
    return false;
  }
  dir_ = templ;
  port_ = UnusedPort();
  return true;
}

void ProxyServer::Run(const std::vector<std::string>& argv) {
  process_ = std::make_unique<PeerProcess>(argv, dir_ + "/out.log");
  if (!process_->Ready({port_})) why_ = argv[0] + " did not start: " + Log();
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
  std::unique_ptr<ProxyServer> s(new ProxyServer);
  if (!s->Prepare("danted")) return s;
  std::ofstream conf(s->dir_ + "/danted.conf");
  conf << "logoutput: " << s->dir_ << "/proxy.log\n"
       << "internal: 127.0.0.1 port = " << s->port_ << "\nexternal: 127.0.0.1\n"
       << "clientmethod: none\nsocksmethod: none\n"
       << "client pass { from: 127.0.0.0/8 to: 0.0.0.0/0 }\n"
       << "socks block { from: 0.0.0.0/0 to: 127.0.0.1/32 port = " << blocked_port << " }\n"
       << "socks pass { from: 127.0.0.0/8 to: 127.0.0.0/8 command: connect }\n";
  conf.close();
  s->Run({s->program_, "-f", s->dir_ + "/danted.conf", "-N", "1", "-p", s->dir_ + "/danted.pid"});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Microsocks(const std::string& user, const std::string& password) {
  std::unique_ptr<ProxyServer> s(new ProxyServer);
  if (!s->Prepare("microsocks")) return s;
  s->Run({s->program_, "-i", "127.0.0.1", "-p", std::to_string(s->port_), "-u", user, "-P", password});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Tinyproxy(bool basic_auth) {
  std::unique_ptr<ProxyServer> s(new ProxyServer);
  if (!s->Prepare("tinyproxy")) return s;
  std::ofstream conf(s->dir_ + "/tinyproxy.conf");
  if (geteuid() == 0) conf << "User nobody\nGroup nogroup\n";
  conf << "Port " << s->port_ << "\nListen 127.0.0.1\nTimeout 30\nLogFile \"" << s->dir_
       << "/proxy.log\"\nLogLevel Info\nMaxClients 20\nAllow 127.0.0.1\nDisableViaHeader Yes\n";
  if (basic_auth) conf << "BasicAuth proxyuser proxypass\n";
  conf.close();
  RunQuietly("chmod 777 '" + s->dir_ + "'");  // tinyproxy may drop to nobody before it logs
  s->Run({s->program_, "-d", "-c", s->dir_ + "/tinyproxy.conf"});
  return s;
}

std::unique_ptr<ProxyServer> ProxyServer::Scripted(const std::vector<std::string>& arguments) {
  std::unique_ptr<ProxyServer> s(new ProxyServer);
  if (!s->Prepare("python3")) return s;
  std::vector<std::string> argv = {s->program_, SourceDir() + "/tests/support/scripted_proxy.py", "--port",
                                   std::to_string(s->port_), "--log", s->dir_ + "/proxy.log"};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  s->Run(argv);
  return s;
}

}  // namespace orvelan
