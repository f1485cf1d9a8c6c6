// Reads a bank statement from a file, or downloads one over HTTPS, through the
// C++ wrappers, with event methods overridden to show the exchange.
//   cpp_host FILE.ofx
//   ORVELAN_PASSWORD=secret cpp_host https://127.0.0.1:8443/ofx bank.pem
#include <cstdio>
#include <cstdlib>
#include <string>

#include <orvelan.hpp>

class ShowingStatement : public BankStatement {
 public:
  int FireConnectionStatus(BankStatementConnectionStatusEventParams* e) override {
    std::printf("  [%s] %s\n", e->ConnectionEvent, e->Description);
    return 0;
  }
  int FireError(BankStatementErrorEventParams* e) override {
    std::fprintf(stderr, "  notice %d: %s\n", e->ErrorCode, e->Description);
    return 0;
  }
  // The library's verdict (e->Accept) stands; this only says why it refuses.
  int FireSSLServerAuthentication(BankStatementSSLServerAuthenticationEventParams* e) override {
    if (e->Accept == 0) std::fprintf(stderr, "  refusing %s: %s\n", e->CertSubject, e->Status);
    return 0;
  }
};

int Download(ShowingStatement& st, const char* url, const char* ca_file) {
  const char* password = std::getenv("ORVELAN_PASSWORD");
  st.SetFIUrl(url);
  st.SetFIOrganization("Orvelan Test Bank");
  st.SetFIId("9999");
  st.SetOFXVersion("211");
  st.SetOFXAppId("QWIN");
  st.SetOFXAppVersion("2700");
  st.SetOFXUser("user");
  st.SetOFXPassword(password != nullptr ? password : "");
  st.SetBankId("121000248");
  st.SetAccountId("4412345678");
  st.SetStartDate("01/01/2026 00:00:00");
  st.Config(("OpenSSLCAFile=" + std::string(ca_file)).c_str());
  return st.GetStatement();
}

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::fprintf(stderr, "usage: cpp_host FILE.ofx | cpp_host URL CAFILE\n");
    return 2;
  }
  ShowingStatement st;
  if ((argc == 2 ? st.ReadOFXDataFile(argv[1]) : Download(st, argv[1], argv[2])) != 0) {
    std::fprintf(stderr, "error: %s\n", st.GetLastError());
    return 1;
  }
  std::printf("Account %s, ledger balance %s\n", st.GetAccountId(), st.GetLedgerBalance());
  for (int i = 0; i < st.GetTxCount(); ++i) {
    std::printf("  %s %12s  %-10s %s\n", st.GetTxDatePosted(i), st.GetTxAmount(i), st.GetTxTypeDescription(i),
                st.GetTxPayeeName(i));
  }
  return 0;
}
