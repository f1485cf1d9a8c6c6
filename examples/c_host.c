/* Downloads a bank statement over HTTPS and prints its transactions.
 *   ORVELAN_PASSWORD=secret c_host https://127.0.0.1:8443/ofx bank.pem */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <orvelan.h>

static int on_event(void* user_data, int event_id, int count, void** params, int* lengths) {
  (void)user_data, (void)count, (void)lengths;
  if (event_id == ORVELAN_EVENT_ERROR) /* INFO and WARN statuses from the server */
    fprintf(stderr, "notice %d: %s\n", (int)(intptr_t)params[0], (const char*)params[1]);
  return 0;
}

static const char* text(void* st, int property, int index) {
  return (const char*)BankStatement_Get(st, property, index, NULL);
}

int main(int argc, char** argv) {
  const char* password = getenv("ORVELAN_PASSWORD");
  if (argc != 3 || password == NULL) {
    fprintf(stderr, "usage: ORVELAN_PASSWORD=... c_host URL CAFILE\n");
    return 2;
  }
  const struct { int id; const char* value; } settings[] = {
      {BANKSTATEMENT_PROP_FIURL, argv[1]},       {BANKSTATEMENT_PROP_FIORGANIZATION, "Orvelan Test Bank"},
      {BANKSTATEMENT_PROP_FIID, "9999"},         {BANKSTATEMENT_PROP_OFXVERSION, "211"},
      {BANKSTATEMENT_PROP_OFXAPPID, "QWIN"},     {BANKSTATEMENT_PROP_OFXAPPVERSION, "2700"},
      {BANKSTATEMENT_PROP_OFXUSER, "user"},      {BANKSTATEMENT_PROP_OFXPASSWORD, password},
      {BANKSTATEMENT_PROP_BANKID, "121000248"},  {BANKSTATEMENT_PROP_ACCOUNTID, "4412345678"},
      {BANKSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00"},
  };
  void* st = BankStatement_Create(on_event, NULL, NULL);
  int status = 0;
  for (size_t i = 0; i < sizeof settings / sizeof settings[0] && status == 0; ++i)
    status = BankStatement_Set(st, settings[i].id, 0, settings[i].value, 0);

  char trust[1024]; /* the bank's self-signed certificate, beside the system's roots */
  snprintf(trust, sizeof trust, "OpenSSLCAFile=%s", argv[2]);
  void* config[2] = {trust, NULL};
  int config_lengths[2] = {0, 0};
  if (status == 0) status = BankStatement_Do(st, BANKSTATEMENT_METHOD_CONFIG, 2, config, config_lengths);
  if (status == 0) status = BankStatement_Do(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, NULL, NULL);

  if (status != 0) {
    fprintf(stderr, "error %d: %s\n", BankStatement_GetLastErrorCode(st), BankStatement_GetLastError(st));
  } else {
    printf("Account %s, ledger balance %s\n", text(st, BANKSTATEMENT_PROP_ACCOUNTID, 0),
           text(st, BANKSTATEMENT_PROP_LEDGERBALANCE, 0));
    const int count = (int)(intptr_t)BankStatement_Get(st, BANKSTATEMENT_PROP_TXCOUNT, 0, NULL);
    for (int i = 0; i < count; ++i)
      printf("  %s %12s  %s\n", text(st, BANKSTATEMENT_PROP_TXDATEPOSTED, i), text(st, BANKSTATEMENT_PROP_TXAMOUNT, i),
             text(st, BANKSTATEMENT_PROP_TXPAYEENAME, i));
  }
  BankStatement_Destroy(st);
  return status == 0 ? 0 : 1;
}
