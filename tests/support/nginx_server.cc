#include "support/nginx_server.h"

#include <unistd.h>

#include <fstream>
#include <set>

#include "support/loopback_server.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

std::string why_not;

std::string Server(int port, const std::string& dir, const std::string& cert) {
  std::string conf = "  server {\n    listen 127.0.0.1:" + std::to_string(port) + (cert.empty() ? "" : " ssl") +
                     ";\n    root " + dir + "/www;\n";
  if (!cert.empty()) {
    conf += "    ssl_certificate " + dir + "/" + cert + ".pem;\n    ssl_certificate_key " + dir + "/" + cert +
            ".key;\n    ssl_client_certificate " + dir + "/ca.pem;\n    ssl_verify_client optional;\n" +
            "    location = /sni { return 200 \"$ssl_server_name\"; }\n" +
            "    location = /whoami { return 200 \"$ssl_client_s_dn\"; }\n";
  }
  return conf + "    location = /ofx { return 200 \"<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\\n\"; }\n"
                "    location = /post4k { error_page 405 =200 $uri; }\n"
                "    location /files/ { error_page 405 =200 $uri; }\n  }\n";
}

}  // namespace

const std::string& NginxServer::why() { return why_not; }

NginxServer* NginxServer::Shared() {
  static std::unique_ptr<NginxServer> server = []() -> std::unique_ptr<NginxServer> {
    const std::string nginx = FindProgram("nginx");
    const TestPki& pki = TestPki::Get();
    if (nginx.empty() || !pki.ok()) {
      why_not = nginx.empty() ? "no nginx program" : "could not make test certificates with openssl";
      return nullptr;
    }
    auto s = std::make_unique<NginxServer>();
    const std::string dir = pki.dir();
    RunQuietly("mkdir -p '" + dir + "/www/files' '" + dir + "/tmp' && head -c 1048576 /dev/urandom > '" + dir +
               "/www/files/1m.bin' && head -c 4096 /dev/zero | tr '\\0' r > '" + dir + "/www/post4k'");
    std::set<int> taken;
    for (int* port : {&s->http_port, &s->https_port, &s->expired_port, &s->other_host_port}) {
      do *port = UnusedPort(); while (!taken.insert(*port).second);
    }
    std::ofstream conf(dir + "/nginx.conf");
    if (geteuid() == 0) conf << "user root;\n";
    conf << "daemon off;\nmaster_process off;\nworker_processes 1;\npid " << dir << "/nginx.pid;\nerror_log " << dir
         << "/error.log warn;\nevents { worker_connections 1024; }\nhttp {\n  access_log off;\n";
    for (const char* temp : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"}) {
      conf << "  " << temp << "_temp_path " << dir << "/tmp/" << temp << ";\n";
    }
    conf << "  default_type application/x-ofx;\n  gzip on;\n  gzip_min_length 1;\n  gzip_types application/x-ofx;\n"
         << "  keepalive_requests 100000;\n"
         << Server(s->http_port, dir, "") << Server(s->https_port, dir, "server")
         << Server(s->expired_port, dir, "expired") << Server(s->other_host_port, dir, "other") << "}\n";
    conf.close();
    s->process_ = std::make_unique<PeerProcess>(
        std::vector<std::string>{nginx, "-p", dir, "-c", dir + "/nginx.conf", "-e", dir + "/error.log"},
        dir + "/nginx.out");
    if (!s->process_->Ready({s->http_port, s->https_port, s->expired_port, s->other_host_port})) {
      why_not = "nginx did not start: " + pki.Read("nginx.out") + pki.Read("error.log");
      return nullptr;
    }
    return s;
  }();
  return server.get();
}

}  // namespace orvelan
