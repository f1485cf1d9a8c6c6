// A C++ host on the wrappers of orvelan.hpp: a bank statement read from an
// OFX file or downloaded, with event methods overridden to show the exchange.
//   orvelan-wrapper-example FILE.ofx
//   ORVELAN_PASSWORD=... orvelan-wrapper-example URL ORG USER BANKID ACCOUNTID [CAFILE]
#include <cstdio>
#include <cstdlib>
#include <string>

#include "orvelan.hpp"

namespace {

class ShowingStatement : public BankStatement {
 public:
  int FireConnectionStatus(BankStatementConnectionStatusEventParams* e) override {
    std::printf("  [%s] %s\n", e->ConnectionEvent, e->Description);
    return 0;
  }
  int FireError(BankStatementErrorEventParams* e) override {
    std::fprintf(stderr, "  warning %d: %s\n", e->ErrorCode, e->Description);
    return 0;
  }
  // The library's verdict stands (Accept is left as it came); the host only
  // says why a certificate is refused.
  int FireSSLServerAuthentication(BankStatementSSLServerAuthenticationEventParams* e) override {
    if (e->Accept == 0) std::fprintf(stderr, "  refusing %s: %s\n", e->CertSubject, e->Status);
    return 0;
  }
};

int Download(ShowingStatement& st, char** argv, int argc) {
  const char* password = std::getenv("ORVELAN_PASSWORD");
  st.SetFIUrl(argv[1]);
  st.SetFIOrganization(argv[2]);
  st.SetOFXUser(argv[3]);
  st.SetOFXPassword(password != nullptr ? password : "");
  st.SetBankId(argv[4]);
  st.SetAccountId(argv[5]);
  st.SetOFXAppId("QWIN");
  st.SetOFXAppVersion("2700");
  if (argc > 6) st.Config(("OpenSSLCAFile=" + std::string(argv[6])).c_str());
  return st.GetStatement();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 6 && argc != 7) {
    std::fprintf(stderr, "usage: %s FILE.ofx | URL ORG USER BANKID ACCOUNTID [CAFILE]\n", argv[0]);
    return 2;
  }
  ShowingStatement st;
  if ((argc == 2 ? st.ReadOFXDataFile(argv[1]) : Download(st, argv, argc)) != 0) {
    std::fprintf(stderr, "%s\n", st.GetLastError());
    return 1;
  }
  std::printf("Account %s, ledger balance %s\n", st.GetAccountId(), st.GetLedgerBalance());
  for (int i = 0; i < st.GetTxCount(); ++i) {
    std::printf("  %-19s %12s  %-10s %s\n", st.GetTxDatePosted(i), st.GetTxAmount(i), st.GetTxTypeDescription(i),
                st.GetTxPayeeName(i));
  }
  return 0;
}
