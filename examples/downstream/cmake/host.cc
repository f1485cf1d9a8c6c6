// A C++ host found through find_package(Orvelan): reads a statement file and
// prints each transaction.
#include <cstdint>
#include <cstdio>

#include <orvelan.h>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: host FILE.ofx\n");
    return 2;
  }
  void* statement = BankStatement_Create(nullptr, nullptr, nullptr);
  void* params[1] = {argv[1]};
  int lengths[1] = {0};
  int rc = BankStatement_Do(statement, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths);
  if (rc != 0) {
    std::fprintf(stderr, "%d %s\n", rc, BankStatement_GetLastError(statement));
  } else {
    const auto text = [statement](int id, int index) {
      return static_cast<const char*>(BankStatement_Get(statement, id, index, nullptr));
    };
    const int count =
        static_cast<int>(reinterpret_cast<intptr_t>(BankStatement_Get(statement, BANKSTATEMENT_PROP_TXCOUNT, 0, nullptr)));
    for (int i = 0; i < count; ++i) {
      std::printf("%s %s %s\n", text(BANKSTATEMENT_PROP_TXDATEPOSTED, i), text(BANKSTATEMENT_PROP_TXAMOUNT, i),
                  text(BANKSTATEMENT_PROP_TXPAYEENAME, i));
    }
  }
  BankStatement_Destroy(statement);
  return rc == 0 ? 0 : 1;
}
