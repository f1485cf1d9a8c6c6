// A host program that drives a BankStatement through the public C interface
// only: it prepares a statement request, reads the settings back, talks to the
// Config method, and shows how failures and events reach the host.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "orvelan.h"

namespace {

int OnEvent(void* /*user_data*/, int event_id, int /*count*/, void** params, int* /*lengths*/) {
  switch (event_id) {
    case ORVELAN_EVENT_ERROR:
      std::printf("  event Error: %d %s\n", static_cast<int>(reinterpret_cast<intptr_t>(params[0])),
                  static_cast<const char*>(params[1]));
      break;
    case ORVELAN_EVENT_CONNECTION_STATUS:
      std::printf("  event ConnectionStatus: %s (%d) %s\n", static_cast<const char*>(params[0]),
                  static_cast<int>(reinterpret_cast<intptr_t>(params[1])), static_cast<const char*>(params[2]));
      break;
    default:
      std::printf("  event %d\n", event_id);
      break;
  }
  return 0;
}

const char* Text(void* st, int id, int index = 0) {
  const char* text = static_cast<const char*>(BankStatement_Get(st, id, index, nullptr));
  return text == nullptr ? "" : text;
}

long Integer(void* st, int id) { return static_cast<long>(reinterpret_cast<intptr_t>(BankStatement_Get(st, id, 0, nullptr))); }

const char* Config(void* st, const char* setting, int* rc) {
  void* params[2] = {const_cast<char*>(setting), nullptr};
  int lengths[2] = {0, 0};
  *rc = BankStatement_Do(st, BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths);
  return params[1] == nullptr ? "" : static_cast<const char*>(params[1]);
}

void Report(void* st, const char* what, int rc) {
  std::printf("  %-38s -> %d", what, rc);
  if (rc == -1) {
    std::printf("  (unknown or read-only id: the last error is left as it was)");
  } else if (rc != 0) {
    std::printf("  [%d] \"%s\"", BankStatement_GetLastErrorCode(st), BankStatement_GetLastError(st));
  }
  std::printf("\n");
}

}  // namespace

int main() {
  void* st = BankStatement_Create(OnEvent, nullptr, nullptr);
  if (st == nullptr) {
    std::fprintf(stderr, "BankStatement_Create failed\n");
    return 1;
  }
  std::printf("Library: %s\n", Text(st, ORVELAN_PROP_VERSION));

  std::printf("\nDefaults of a new BankStatement:\n");
  int length = 0;
  const char* store = static_cast<const char*>(BankStatement_Get(st, BANKSTATEMENT_PROP_SSLCERTSTORE, 0, &length));
  std::printf("  OFXVersion \"%s\", Timeout %ld s, SSLCertStore \"%.*s\" (%d bytes), TxCount %ld\n",
              Text(st, BANKSTATEMENT_PROP_OFXVERSION), Integer(st, BANKSTATEMENT_PROP_TIMEOUT), length, store, length,
              Integer(st, BANKSTATEMENT_PROP_TXCOUNT));

  std::printf("\nPreparing a statement request:\n");
  struct {
    int id;
    const char* name;
    const char* value;
  } const texts[] = {
      {BANKSTATEMENT_PROP_FIURL, "FIUrl", "https://ofx.example-bank.test/ofx"},
      {BANKSTATEMENT_PROP_FIORGANIZATION, "FIOrganization", "Example Bank"},
      {BANKSTATEMENT_PROP_FIID, "FIId", "1001"},
      {BANKSTATEMENT_PROP_OFXUSER, "OFXUser", "demo-user"},
      {BANKSTATEMENT_PROP_OFXPASSWORD, "OFXPassword", "demo-pass"},
      {BANKSTATEMENT_PROP_OFXAPPID, "OFXAppId", "ORVELAN"},
      {BANKSTATEMENT_PROP_OFXAPPVERSION, "OFXAppVersion", "0300"},
      {BANKSTATEMENT_PROP_BANKID, "BankId", "021000021"},
      {BANKSTATEMENT_PROP_ACCOUNTID, "AccountId", "000123456789"},
      {BANKSTATEMENT_PROP_OFXVERSION, "OFXVersion", "211"},
  };
  for (const auto& t : texts) {
    Report(st, t.name, BankStatement_Set(st, t.id, 0, t.value, 0));
  }
  Report(st, "AccountType = 1 (savings)",
         BankStatement_Set(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(intptr_t{1}), 0));
  Report(st, "FirewallType = 3 (SOCKS 5)",
         BankStatement_Set(st, BANKSTATEMENT_PROP_FIREWALLTYPE, 0, reinterpret_cast<void*>(intptr_t{3}), 0));
  std::printf("  FirewallPort now reads %ld\n", Integer(st, BANKSTATEMENT_PROP_FIREWALLPORT));
  for (const auto& t : texts) std::printf("  %-16s = \"%s\"\n", t.name, Text(st, t.id));

  std::printf("\nWhat the library refuses:\n");
  Report(st, "AccountType = 7",
         BankStatement_Set(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(intptr_t{7}), 0));
  Report(st, "SSLCertStore = (empty)", BankStatement_Set(st, BANKSTATEMENT_PROP_SSLCERTSTORE, 0, "", 0));
  Report(st, "OFXRequest (read-only)", BankStatement_Set(st, BANKSTATEMENT_PROP_OFXREQUEST, 0, "x", 0));
  BankStatement_Get(st, BANKSTATEMENT_PROP_TXAMOUNT, 0, nullptr);
  Report(st, "TxAmount[0] of an empty statement", BankStatement_GetLastErrorCode(st));
  Report(st, "CheckIndex(TxAmount, 0)", BankStatement_CheckIndex(st, BANKSTATEMENT_PROP_TXAMOUNT, 0));

  std::printf("\nConfig:\n");
  const char* const settings[] = {"CodePage", "CodePage=65001", "CodePage", "CharsetMode=300", "CharsetMode",
                                  "BankIdPresent", "BankIdPresent=false", "BankIdPresent", "NoSuchSetting"};
  for (const char* setting : settings) {
    int rc = 0;
    const char* answer = Config(st, setting, &rc);
    std::printf("  %-22s -> %2d  \"%s\"", setting, rc, answer);
    if (rc != 0) std::printf("  (%s)", BankStatement_GetLastError(st));
    std::printf("\n");
  }

  std::printf("\nDownloading needs the OFX engine, which this build does not have yet:\n");
  Report(st, "GetStatement", BankStatement_Do(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr));

  BankStatement_Destroy(st);
  std::printf("\nDone.\n");
  return 0;
}
