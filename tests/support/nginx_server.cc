#include "support/nginx_server.h"

#include <unistd.h>

#include <fstream>

#include "support/loopback_server.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

std::string& Why() {
  static std::string why;
  return why;
}

std::string Locations() {
  return "    location = /ofx { return 200 \"<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\\n\"; }\n"
         "    location = /post4k { error_page 405 =200 $uri; }\n"
         "    location /files/ { error_page 405 =200 $uri; }\n";
}

std::string TlsServer(int port, const std::string& dir, const std::string& cert) {
  return "  server {\n    listen 127.0.0.1:" + std::to_string(port) + " ssl;\n    root " + dir +
         "/www;\n    ssl_certificate " + dir + "/" + cert + ".pem;\n    ssl_certificate_key " + dir + "/" + cert +
         ".key;\n    ssl_client_certificate " + dir + "/ca.pem;\n    ssl_verify_client optional;\n" +
         "    location = /sni { return 200 \"$ssl_server_name\"; }\n" +
         "    location = /whoami { return 200 \"$ssl_client_s_dn\"; }\n" + Locations() + "  }\n";
}

}  // namespace

const std::string& NginxServer::why() { return Why(); }

NginxServer* NginxServer::Shared() {
  static std::unique_ptr<NginxServer> server = []() -> std::unique_ptr<NginxServer> {
    const std::string nginx = FindProgram("nginx");
    if (nginx.empty()) {
      Why() = "no nginx program";
      return nullptr;
    }
    const TestPki& pki = TestPki::Get();
    if (!pki.ok()) {
      Why() = "could not make test certificates with openssl";
      return nullptr;
    }
    auto s = std::make_unique<NginxServer>();
    const std::string dir = pki.dir();
    s->files_dir = dir + "/www/files";
    RunQuietly("mkdir -p '" + s->files_dir + "' '" + dir + "/tmp' && head -c 1048576 /dev/urandom > '" +
               s->files_dir + "/1m.bin' && head -c 4096 /dev/zero | tr '\\0' r > '" + dir + "/www/post4k'");
    s->http_port = UnusedPort();
    do s->https_port = UnusedPort(); while (s->https_port == s->http_port);
    do s->expired_port = UnusedPort(); while (s->expired_port == s->http_port || s->expired_port == s->https_port);
    do s->other_host_port = UnusedPort();
    while (s->other_host_port == s->http_port || s->other_host_port == s->https_port ||
           s->other_host_port == s->expired_port);
    std::ofstream conf(dir + "/nginx.conf");
    if (geteuid() == 0) conf << "user root;\n";
    conf << "daemon off;\nmaster_process off;\nworker_processes 1;\npid " << dir << "/nginx.pid;\nerror_log " << dir
         << "/error.log warn;\nevents { worker_connections 1024; }\nhttp {\n  access_log off;\n"
         << "  client_body_temp_path " << dir << "/tmp/body;\n  proxy_temp_path " << dir << "/tmp/proxy;\n"
         << "  fastcgi_temp_path " << dir << "/tmp/fcgi;\n  uwsgi_temp_path " << dir << "/tmp/uwsgi;\n"
         << "  scgi_temp_path " << dir << "/tmp/scgi;\n  default_type application/x-ofx;\n"
         << "  gzip on;\n  gzip_min_length 1;\n  gzip_types application/x-ofx;\n  keepalive_requests 100000;\n"
         << "  server {\n    listen 127.0.0.1:" << s->http_port << ";\n    root " << dir << "/www;\n"
         << Locations() << "  }\n"
         << TlsServer(s->https_port, dir, "server") << TlsServer(s->expired_port, dir, "expired")
         << TlsServer(s->other_host_port, dir, "other") << "}\n";
    conf.close();
    s->process_ = std::make_unique<PeerProcess>(
        std::vector<std::string>{nginx, "-p", dir, "-c", dir + "/nginx.conf", "-e", dir + "/error.log"},
        dir + "/nginx.out");
    if (!s->process_->Ready({s->http_port, s->https_port, s->expired_port, s->other_host_port})) {
      Why() = "nginx did not start: " + pki.Read("nginx.out") + pki.Read("error.log");
      return nullptr;
    }
    return s;
  }();
  return server.get();
}

}  // namespace orvelan
