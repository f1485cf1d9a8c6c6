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
  const std::string d = "cd '" + dir_ + "' && ";
  const std::string key = "openssl req -newkey rsa:2048 -nodes -keyout ";
  ok_ = RunQuietly(d + "openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -days 30 "
                       "-subj '/CN=Orvelan Test CA'") &&
        RunQuietly(d + "printf 'subjectAltName=IP:127.0.0.1,IP:::1,DNS:localhost\\n' > good.ext && "
                       "printf 'subjectAltName=DNS:other.example\\n' > other.ext") &&
        RunQuietly(d + key + "server.key -out server.csr -subj '/CN=localhost' && "
                       "openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 30 "
                       "-extfile good.ext -out server.pem") &&
        RunQuietly(d + key + "other.key -out other.csr -subj '/CN=other.example' && "
                       "openssl x509 -req -in other.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 30 "
                       "-extfile other.ext -out other.pem") &&
        // Negative days: the certificate ended a day before it began, so it has expired.
        RunQuietly(d + key + "expired.key -out expired.csr -subj '/CN=localhost' && "
                       "openssl x509 -req -in expired.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days -1 "
                       "-extfile good.ext -out expired.pem") &&
        RunQuietly(d + key + "client.key -out client.csr -subj '/CN=Orvelan Client' && "
                       "openssl x509 -req -in client.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 30 "
                       "-out client.pem && cat client.key client.pem > client_both.pem && "
                       "openssl pkcs12 -export -inkey client.key -in client.pem -passout pass:secret -out client.p12");
}

}  // namespace orvelan
