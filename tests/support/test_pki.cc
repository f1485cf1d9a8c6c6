#include "support/test_pki.h"

#include <stdlib.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace orvelan {

bool RunQuietly(const std::string& command) { return std::system(("(" + command + ") >/dev/null 2>&1").c_str()) == 0; }

bool PeersRequired() {
  const char* value = std::getenv("ORVELAN_REQUIRE_PEERS");
  return value != nullptr && std::string(value) == "1";
}

std::string TestPki::Read(const std::string& name) const {
  std::ifstream in(Path(name), std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

const TestPki& TestPki::Get() {
  static const TestPki pki;
  return pki;
}

TestPki::TestPki() {
  char templ[] = "/tmp/orvelan-pki-XXXXXX";
  if (mkdtemp(templ) == nullptr) return;
  dir_ = templ;
  static std::string to_remove;
  to_remove = dir_;
  std::atexit([] { RunQuietly("rm -rf '" + to_remove + "'"); });
  std::string script = "cd '" + dir_ + "' && openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem "
                       "-days 30 -subj '/CN=Orvelan Test CA' && "
                       "printf 'subjectAltName=IP:127.0.0.1,IP:::1,DNS:localhost\\n' > good.ext && "
                       "printf 'subjectAltName=DNS:other.example\\n' > other.ext";
  // Negative days: the certificate ended a day before it began, so it has expired.
  const struct { std::string name, subject, ext, days; } certs[] = {{"server", "localhost", "good", "30"},
                                                                    {"other", "other.example", "other", "30"},
                                                                    {"expired", "localhost", "good", "-1"},
                                                                    {"client", "Orvelan Client", "", "30"}};
  for (const auto& c : certs) {
    script += " && openssl req -newkey rsa:2048 -nodes -keyout " + c.name + ".key -out " + c.name +
              ".csr -subj '/CN=" + c.subject + "' && openssl x509 -req -in " + c.name +
              ".csr -CA ca.pem -CAkey ca.key -CAcreateserial -days " + c.days +
              (c.ext.empty() ? "" : " -extfile " + c.ext + ".ext") + " -out " + c.name + ".pem";
  }
  script += " && openssl req -x509 -newkey rsa:2048 -nodes -keyout selfsigned.key -out selfsigned.pem -days 30 "
            "-subj '/CN=localhost' -addext 'subjectAltName=IP:127.0.0.1'";
  ok_ = RunQuietly(script + " && cat client.key client.pem > client_both.pem && openssl pkcs12 -export "
                            "-inkey client.key -in client.pem -passout pass:secret -out client.p12");
}

}  // namespace orvelan
