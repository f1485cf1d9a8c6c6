/* A C host built with plain cc against an installed library:
 *   cc host.c $(pkg-config --cflags --libs orvelan) -o host && ./host statement.ofx */
#include <stdint.h>
#include <stdio.h>

#include <orvelan.h>

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: host FILE.ofx\n");
    return 2;
  }
  void* statement = BankStatement_Create(NULL, NULL, NULL);
  void* params[1] = {argv[1]};
  int lengths[1] = {0};
  if (BankStatement_Do(statement, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
    fprintf(stderr, "%d %s\n", BankStatement_GetLastErrorCode(statement), BankStatement_GetLastError(statement));
    BankStatement_Destroy(statement);
    return 1;
  }
  const int count = (int)(intptr_t)BankStatement_Get(statement, BANKSTATEMENT_PROP_TXCOUNT, 0, NULL);
  printf("%d transactions, ledger balance %s\n", count,
         (const char*)BankStatement_Get(statement, BANKSTATEMENT_PROP_LEDGERBALANCE, 0, NULL));
  BankStatement_Destroy(statement);
  return 0;
}
