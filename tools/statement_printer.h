#pragma once
#include <cstdio>
#include <string>
#include <vector>

#include "component.h"

enum class Format { kTable, kCsv, kJson };

// What the printer needs to know of one statement component: its entry
// points and the ids of the properties it shows. The bank, card and loan
// statements differ only here, so one printer serves all three.
struct StatementKind {
  // A shown property; `amount` marks an amount in display form.
  struct Field {
    const char* label;  // the table's label
    const char* name;   // the CSV column and JSON member
    int id;
    bool amount;
  };

  const char* name;  // "bank", "card", "loan", "investment"
  Component component;

  // The account line: its id and, where the component has one, its type.
  Field account;
  int account_type_id;  // 0 when there is no account type
  const char* const* account_type_names;
  int account_type_count;

  int currency_id, start_date_id, end_date_id;
  // Balances with the date each is as of (date id 0: none); a balance whose
  // date is empty is left out of the table.
  struct Balance {
    Field amount;
    const char* date_name;
    int date_id;
  } balances[4];

  int tx_count_id;
  Field tx_columns[12];  // the first five: posted, type, amount, FITID, payee; then memo, ...
  int closing_count_id;
  Field closing_columns[16];

  int bank_id_id;  // the bank or broker id of a download; 0 for none

  // What an investment account holds besides its transactions; null for the
  // others. Each list's first column is the security id, which the table
  // shows by the ticker or name of the security list.
  struct Holdings {
    int pos_count_id;
    Field pos_columns[8];
    int sec_count_id;
    Field sec_columns[8];
  };
  const Holdings* holdings;
};

extern const StatementKind kBankStatement;
extern const StatementKind kCardStatement;
extern const StatementKind kLoanStatement;
extern const StatementKind kInvStatement;

// Prints the statement a component holds (balances, then one row per
// transaction, or one per closing record when it holds closing information)
// as a table, as CSV or as JSON. It reads everything through the public C
// interface, so it shows what any host would see.
//
//   StatementPrinter printer(kCardStatement, StatementPrinter::Format::kTable);
//   printer.Print(statement, stdout);
//
// Amounts are printed as the library hands them out, except that a bare
// fraction gains its leading zero (".50" prints as "0.50").
class StatementPrinter {
 public:
  using Format = ::Format;

  StatementPrinter(const StatementKind& kind, Format format) : kind_(kind), format_(format) {}

  // `statement` is a handle from `kind.component.create`. A `json_kind`
  // becomes the JSON object's first member, "kind".
  void Print(void* statement, std::FILE* out, const char* json_kind = nullptr) const;

 private:
  void PrintTable(void* statement, std::FILE* out) const;
  void PrintCsv(void* statement, std::FILE* out) const;
  void PrintJson(void* statement, std::FILE* out, const char* json_kind) const;
  void PrintHoldingsTable(void* statement, std::FILE* out) const;

  const StatementKind& kind_;
  Format format_;
};

// The other components' results, for the printer of record sections: a
// section is one row of plain properties or one row per item of an indexed
// list, each column a property.
struct Column {
  enum class Kind { kText, kInt, kAnswer };  // kAnswer: the method's answer, not a property
  const char* name;
  int id;
  Kind kind = Kind::kText;
};
struct Section {
  const char* name;
  int count_id;  // 0: one row of the plain properties
  std::vector<Column> columns;
};

// Prints the sections: in a table, "name value" lines; in CSV, a header and
// quoted fields per section; in JSON, one object with a member per section.
// `answer` fills the kAnswer columns.
void PrintSections(const Component& component, void* handle, const std::vector<Section>& sections,
                   const std::string& answer, Format format, std::FILE* out, const char* json_kind = nullptr);
