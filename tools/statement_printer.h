#pragma once
#include <cstdio>
#include <string>

// Prints the statement a BankStatement component holds (balances, then one
// row per transaction) as a table, as CSV or as JSON. It reads everything
// through the public C interface, so it shows what any host would see.
//
//   StatementPrinter printer(StatementPrinter::Format::kTable);
//   printer.Print(statement, stdout);
//
// Amounts are printed as the library hands them out, except that a bare
// fraction gains its leading zero (".50" prints as "0.50").
class StatementPrinter {
 public:
  enum class Format { kTable, kCsv, kJson };

  explicit StatementPrinter(Format format) : format_(format) {}

  // Reads "table", "csv" or "json"; false for anything else.
  static bool ParseFormat(const char* name, Format* format);

  // `statement` is a handle from BankStatement_Create.
  void Print(void* statement, std::FILE* out) const;

 private:
  void PrintTable(void* statement, std::FILE* out) const;
  void PrintCsv(void* statement, std::FILE* out) const;
  void PrintJson(void* statement, std::FILE* out) const;

  Format format_;
};
