/* A host written in C that sees only the public header: create, set, get,
 * config and destroy a BankStatement, and check what it reads back. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "orvelan.h"

static int failures = 0;
static int checks = 0;

#define CHECK(cond)                                               \
  do {                                                            \
    ++checks;                                                     \
    if (!(cond)) {                                                \
      ++failures;                                                 \
      fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
    }                                                             \
  } while (0)

static int CheckText(void* obj, int id, const char* expected) {
  const char* got = (const char*)BankStatement_Get(obj, id, 0, NULL);
  return got != NULL && strcmp(got, expected) == 0;
}

static int events_seen = 0;
static int OnEvent(void* user_data, int event_id, int count, void** params, int* lengths) {
  (void)event_id, (void)count, (void)params, (void)lengths;
  ++*(int*)user_data;
  return 0;
}

int main(void) {
  CHECK(BankStatement_StaticInit(NULL) == 0);
  void* st = BankStatement_Create(OnEvent, &events_seen, NULL);
  CHECK(st != NULL);
  if (st == NULL) return 1;

  /* Text and integers both ways, a refused value, and Config through the
   * method table; the C++ ABI tests go through the rest. */
  CHECK(CheckText(st, ORVELAN_PROP_VERSION, ORVELAN_VERSION_BANNER));
  CHECK((intptr_t)BankStatement_Get(st, BANKSTATEMENT_PROP_TIMEOUT, 0, NULL) == 60);
  CHECK(BankStatement_Set(st, BANKSTATEMENT_PROP_FIURL, 0, "https://bank.example/ofx", 0) == 0);
  CHECK(CheckText(st, BANKSTATEMENT_PROP_FIURL, "https://bank.example/ofx"));
  CHECK(BankStatement_Set(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, (void*)(intptr_t)2, 0) == 0);
  CHECK((intptr_t)BankStatement_Get(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, NULL) == 2);
  CHECK(BankStatement_Set(st, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, (void*)(intptr_t)9, 0) == 202);
  CHECK(strcmp(BankStatement_GetLastError(st), "AccountType is invalid.") == 0);
  void* params[2] = {(void*)"codepage=65001", NULL};
  int lengths[2] = {0, 0};
  CHECK(BankStatement_Do(st, BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths) == 0);
  params[0] = (void*)"CodePage";
  CHECK(BankStatement_Do(st, BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths) == 0);
  CHECK(params[1] != NULL && strcmp((const char*)params[1], "65001") == 0);

  CHECK(BankStatement_Destroy(st) == 0);
  CHECK(BankStatement_Destroy(NULL) == 0);
  CHECK(BankStatement_StaticDestroy() == 0);
  CHECK(events_seen == 0);

  printf("%d passed, %d failed\n", checks - failures, failures);
  return failures == 0 ? 0 : 1;
}
