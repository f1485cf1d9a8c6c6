#include "statement_printer.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "orvelan.h"

namespace {

std::string Text(void* st, int id, int index = 0) {
  int length = 0;
  const char* text = static_cast<const char*>(BankStatement_Get(st, id, index, &length));
  return text == nullptr ? std::string() : std::string(text);
}

long Integer(void* st, int id, int index = 0) {
  return static_cast<long>(reinterpret_cast<intptr_t>(BankStatement_Get(st, id, index, nullptr)));
}

std::string Amount(void* st, int id, int index = 0) {
  std::string amount = Text(st, id, index);
  size_t digits = amount.compare(0, 1, "-") == 0 ? 1 : 0;
  if (amount.size() > digits && amount[digits] == '.') amount.insert(digits, "0");
  if (amount.size() == digits) amount += "0";
  return amount;
}

const char* AccountTypeName(long type) {
  static const char* const kNames[] = {"checking", "savings", "moneymrkt", "creditline"};
  return type >= 0 && type < 4 ? kNames[type] : "unknown";
}

struct Row {
  std::string date_posted, type, amount, fitid, payee, memo, check_number;
};

std::vector<Row> Rows(void* st) {
  std::vector<Row> rows;
  long count = Integer(st, BANKSTATEMENT_PROP_TXCOUNT);
  rows.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    rows.push_back({Text(st, BANKSTATEMENT_PROP_TXDATEPOSTED, i), Text(st, BANKSTATEMENT_PROP_TXTYPEDESCRIPTION, i),
                    Amount(st, BANKSTATEMENT_PROP_TXAMOUNT, i), Text(st, BANKSTATEMENT_PROP_TXFITID, i),
                    Text(st, BANKSTATEMENT_PROP_TXPAYEENAME, i), Text(st, BANKSTATEMENT_PROP_TXMEMO, i),
                    Text(st, BANKSTATEMENT_PROP_TXCHECKNUMBER, i)});
  }
  return rows;
}

// RFC 4180: quote a field that holds a separator, a quote or a line end.
void PutCsvField(const std::string& field, std::FILE* out) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) {
    std::fputs(field.c_str(), out);
    return;
  }
  std::fputc('"', out);
  for (char c : field) {
    if (c == '"') std::fputc('"', out);
    std::fputc(c, out);
  }
  std::fputc('"', out);
}

void PutJsonString(const std::string& text, std::FILE* out) {
  std::fputc('"', out);
  for (unsigned char c : text) {
    switch (c) {
      case '"': std::fputs("\\\"", out); break;
      case '\\': std::fputs("\\\\", out); break;
      case '\n': std::fputs("\\n", out); break;
      case '\r': std::fputs("\\r", out); break;
      case '\t': std::fputs("\\t", out); break;
      default:
        if (c < 0x20) {
          std::fprintf(out, "\\u%04x", c);
        } else {
          std::fputc(c, out);
        }
    }
  }
  std::fputc('"', out);
}

// The payee column shows the memo too when there is one.
std::string Description(const Row& row) {
  if (row.memo.empty() || row.memo == row.payee) return row.payee;
  if (row.payee.empty()) return row.memo;
  return row.payee + " / " + row.memo;
}

}  // namespace

bool StatementPrinter::ParseFormat(const char* name, Format* format) {
  static const struct {
    const char* name;
    Format format;
  } kFormats[] = {{"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};
  for (const auto& entry : kFormats) {
    if (std::strcmp(name, entry.name) == 0) {
      *format = entry.format;
      return true;
    }
  }
  return false;
}

void StatementPrinter::Print(void* statement, std::FILE* out) const {
  switch (format_) {
    case Format::kTable: PrintTable(statement, out); break;
    case Format::kCsv: PrintCsv(statement, out); break;
    case Format::kJson: PrintJson(statement, out); break;
  }
}

void StatementPrinter::PrintTable(void* st, std::FILE* out) const {
  std::fprintf(out, "Account            %s (%s)\n", Text(st, BANKSTATEMENT_PROP_ACCOUNTID).c_str(),
               AccountTypeName(Integer(st, BANKSTATEMENT_PROP_ACCOUNTTYPE)));
  std::fprintf(out, "Currency           %s\n", Text(st, BANKSTATEMENT_PROP_CURRENCYCODE).c_str());
  std::string start = Text(st, BANKSTATEMENT_PROP_STARTDATE), end = Text(st, BANKSTATEMENT_PROP_ENDDATE);
  if (!start.empty() || !end.empty()) std::fprintf(out, "Period             %s - %s\n", start.c_str(), end.c_str());
  std::fprintf(out, "Ledger balance     %14s  as of %s\n", Amount(st, BANKSTATEMENT_PROP_LEDGERBALANCE).c_str(),
               Text(st, BANKSTATEMENT_PROP_LEDGERBALANCEDATE).c_str());
  std::string available_date = Text(st, BANKSTATEMENT_PROP_AVAILABLEBALANCEDATE);
  if (!available_date.empty()) {
    std::fprintf(out, "Available balance  %14s  as of %s\n", Amount(st, BANKSTATEMENT_PROP_AVAILABLEBALANCE).c_str(),
                 available_date.c_str());
  }
  std::vector<Row> rows = Rows(st);
  std::fprintf(out, "\n%-19s  %-15s  %12s  %-26s  %s\n", "Posted", "Type", "Amount", "FITID", "Payee / memo");
  std::fprintf(out, "%s\n", std::string(106, '-').c_str());
  for (const Row& row : rows) {
    std::fprintf(out, "%-19s  %-15.15s  %12s  %-26s  %s\n", row.date_posted.c_str(), row.type.c_str(),
                 row.amount.c_str(), row.fitid.c_str(), Description(row).c_str());
  }
  std::fprintf(out, "%zu transaction%s\n", rows.size(), rows.size() == 1 ? "" : "s");
}

void StatementPrinter::PrintCsv(void* st, std::FILE* out) const {
  std::fputs("date_posted,type,amount,fitid,payee,memo,check_number\n", out);
  for (const Row& row : Rows(st)) {
    const std::string* fields[] = {&row.date_posted, &row.type,  &row.amount,      &row.fitid,
                                   &row.payee,       &row.memo, &row.check_number};
    for (size_t i = 0; i < sizeof fields / sizeof fields[0]; ++i) {
      if (i > 0) std::fputc(',', out);
      PutCsvField(*fields[i], out);
    }
    std::fputc('\n', out);
  }
}

void StatementPrinter::PrintJson(void* st, std::FILE* out) const {
  auto member = [out](const char* name, const std::string& value, bool last = false) {
    std::fprintf(out, "  \"%s\": ", name);
    PutJsonString(value, out);
    std::fputs(last ? "\n" : ",\n", out);
  };
  std::fputs("{\n", out);
  member("account_id", Text(st, BANKSTATEMENT_PROP_ACCOUNTID));
  member("account_type", AccountTypeName(Integer(st, BANKSTATEMENT_PROP_ACCOUNTTYPE)));
  member("currency", Text(st, BANKSTATEMENT_PROP_CURRENCYCODE));
  member("start_date", Text(st, BANKSTATEMENT_PROP_STARTDATE));
  member("end_date", Text(st, BANKSTATEMENT_PROP_ENDDATE));
  member("ledger_balance", Amount(st, BANKSTATEMENT_PROP_LEDGERBALANCE));
  member("ledger_balance_date", Text(st, BANKSTATEMENT_PROP_LEDGERBALANCEDATE));
  member("available_balance", Amount(st, BANKSTATEMENT_PROP_AVAILABLEBALANCE));
  member("available_balance_date", Text(st, BANKSTATEMENT_PROP_AVAILABLEBALANCEDATE));
  std::fputs("  \"transactions\": [", out);
  std::vector<Row> rows = Rows(st);
  for (size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    std::fputs(i == 0 ? "\n    {" : ",\n    {", out);
    const struct {
      const char* name;
      const std::string& value;
    } fields[] = {{"date_posted", row.date_posted}, {"type", row.type},   {"amount", row.amount},
                  {"fitid", row.fitid},             {"payee", row.payee}, {"memo", row.memo},
                  {"check_number", row.check_number}};
    for (size_t f = 0; f < sizeof fields / sizeof fields[0]; ++f) {
      std::fprintf(out, "%s\"%s\": ", f == 0 ? "" : ", ", fields[f].name);
      PutJsonString(fields[f].value, out);
    }
    std::fputc('}', out);
  }
  std::fputs(rows.empty() ? "]\n}\n" : "\n  ]\n}\n", out);
}
