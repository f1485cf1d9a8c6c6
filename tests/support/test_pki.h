#pragma once
#include <string>

namespace orvelan {

// Test certificates made with the openssl command line in a fresh temporary
// directory: a CA, a server certificate for 127.0.0.1/localhost signed by it,
// an expired one, one for another host, a self-signed one, and a client certificate with its
// key as PEM and PKCS#12 (password "secret"). Made once per process; the
// directory is removed at exit. ok() is false when openssl is missing.
class TestPki {
 public:
  static const TestPki& Get();

  bool ok() const { return ok_; }
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  const std::string& dir() const { return dir_; }
  // The file's contents.
  std::string Read(const std::string& name) const;

 private:
  TestPki();
  std::string dir_;
  bool ok_ = false;
};

// Runs `command` through the shell; true on exit status 0.
bool RunQuietly(const std::string& command);

// Whether tests that need a peer program must fail instead of skipping.
bool PeersRequired();

}  // namespace orvelan
