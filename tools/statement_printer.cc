#include "statement_printer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

namespace {

using Field = StatementKind::Field;

std::string Text(const StatementKind& kind, void* st, int id, int index = 0) {
  if (id == 0) return std::string();
  int length = 0;
  const char* text = static_cast<const char*>(kind.component.get(st, id, index, &length));
  return text == nullptr ? std::string() : std::string(text);
}

long Integer(const StatementKind& kind, void* st, int id) {
  return static_cast<long>(reinterpret_cast<intptr_t>(kind.component.get(st, id, 0, nullptr)));
}

std::string Amount(const StatementKind& kind, void* st, int id, int index = 0) {
  std::string amount = Text(kind, st, id, index);
  size_t digits = amount.compare(0, 1, "-") == 0 ? 1 : 0;
  if (amount.size() > digits && amount[digits] == '.') amount.insert(digits, "0");
  if (amount.size() == digits) amount += "0";
  return amount;
}

std::string Value(const StatementKind& kind, void* st, const Field& field, int index = 0) {
  return field.amount ? Amount(kind, st, field.id, index) : Text(kind, st, field.id, index);
}

const char* AccountTypeName(const StatementKind& kind, void* st) {
  long type = Integer(kind, st, kind.account_type_id);
  return type >= 0 && type < kind.account_type_count ? kind.account_type_names[type] : "unknown";
}

// Rows of one indexed list, each cell in the order of `columns`.
using Rows = std::vector<std::vector<std::string>>;

size_t ColumnCount(const Field* columns) {
  size_t n = 0;
  while (columns[n].name != nullptr) ++n;
  return n;
}

Rows ReadRows(const StatementKind& kind, void* st, int count_id, const Field* columns) {
  Rows rows;
  const long count = Integer(kind, st, count_id);
  const size_t width = ColumnCount(columns);
  rows.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    rows.emplace_back();
    for (size_t c = 0; c < width; ++c) rows.back().push_back(Value(kind, st, columns[c], i));
  }
  return rows;
}

// A closing statement carries closing records and no transactions; it prints
// its records where a transaction statement prints its transactions.
bool HoldsClosingInfo(const StatementKind& kind, void* st) {
  return Integer(kind, st, kind.closing_count_id) > 0;
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

// Columns 0..5 of every kind: posted, type, amount, FITID, payee, memo. The
// payee column shows the memo too when there is one.
std::string Description(const std::vector<std::string>& row) {
  const std::string& payee = row[4];
  const std::string& memo = row[5];
  if (memo.empty() || memo == payee) return payee;
  if (payee.empty()) return memo;
  return payee + " / " + memo;
}

void PutJsonRecords(const Field* columns, const Rows& rows, std::FILE* out) {
  for (size_t i = 0; i < rows.size(); ++i) {
    std::fputs(i == 0 ? "\n    {" : ",\n    {", out);
    for (size_t c = 0; c < rows[i].size(); ++c) {
      std::fprintf(out, "%s\"%s\": ", c == 0 ? "" : ", ", columns[c].name);
      PutJsonString(rows[i][c], out);
    }
    std::fputc('}', out);
  }
  std::fputs(rows.empty() ? "]" : "\n  ]", out);
}

}  // namespace

void StatementPrinter::Print(void* statement, std::FILE* out, const char* json_kind) const {
  switch (format_) {
    case Format::kTable: PrintTable(statement, out); break;
    case Format::kCsv: PrintCsv(statement, out); break;
    case Format::kJson: PrintJson(statement, out, json_kind); break;
  }
}

void StatementPrinter::PrintTable(void* st, std::FILE* out) const {
  const StatementKind& k = kind_;
  std::fprintf(out, "%-19s%s", k.account.label, Text(k, st, k.account.id).c_str());
  if (k.account_type_id != 0) std::fprintf(out, " (%s)", AccountTypeName(k, st));
  std::fprintf(out, "\nCurrency           %s\n", Text(k, st, k.currency_id).c_str());
  std::string start = Text(k, st, k.start_date_id), end = Text(k, st, k.end_date_id);
  if (!start.empty() || !end.empty()) std::fprintf(out, "Period             %s - %s\n", start.c_str(), end.c_str());
  for (const StatementKind::Balance& balance : k.balances) {
    if (balance.amount.name == nullptr) break;
    if (balance.date_id == 0) {
      if (Text(k, st, balance.amount.id).empty()) continue;
      std::fprintf(out, "%-19s%14s\n", balance.amount.label, Amount(k, st, balance.amount.id).c_str());
      continue;
    }
    std::string date = Text(k, st, balance.date_id);
    if (date.empty()) continue;
    std::fprintf(out, "%-19s%14s  as of %s\n", balance.amount.label, Amount(k, st, balance.amount.id).c_str(),
                 date.c_str());
  }
  if (HoldsClosingInfo(k, st)) {
    const Rows rows = ReadRows(k, st, k.closing_count_id, k.closing_columns);
    for (size_t i = 0; i < rows.size(); ++i) {
      std::fprintf(out, "\nClosing %zu\n", i + 1);
      for (size_t c = 0; c < rows[i].size(); ++c) {
        if (!rows[i][c].empty()) std::fprintf(out, "  %-19s%s\n", k.closing_columns[c].label, rows[i][c].c_str());
      }
    }
    std::fprintf(out, "%zu closing record%s\n", rows.size(), rows.size() == 1 ? "" : "s");
    return;
  }
  const Rows rows = ReadRows(k, st, k.tx_count_id, k.tx_columns);
  std::fprintf(out, "\n%-19s  %-15s  %12s  %-26s  %s\n", "Posted", "Type", "Amount", "FITID", "Payee / memo");
  std::fprintf(out, "%s\n", std::string(106, '-').c_str());
  for (const auto& row : rows) {
    std::fprintf(out, "%-19s  %-15.15s  %12s  %-26s  %s\n", row[0].c_str(), row[1].c_str(), row[2].c_str(),
                 row[3].c_str(), Description(row).c_str());
  }
  std::fprintf(out, "%zu transaction%s\n", rows.size(), rows.size() == 1 ? "" : "s");
  if (k.holdings != nullptr) PrintHoldingsTable(st, out);
}

// Positions by the ticker (else the name) their security has in the list.
void StatementPrinter::PrintHoldingsTable(void* st, std::FILE* out) const {
  const StatementKind::Holdings& h = *kind_.holdings;
  const Rows securities = ReadRows(kind_, st, h.sec_count_id, h.sec_columns);
  std::map<std::string, std::string> shown;
  for (const auto& row : securities) shown.emplace(row[0], row[2].empty() ? row[3] : row[2]);
  const Rows positions = ReadRows(kind_, st, h.pos_count_id, h.pos_columns);
  std::fprintf(out, "\n%-28s  %-12s  %12s  %12s  %14s\n", "Position", "Kind", "Units", "Price", "Value");
  std::fprintf(out, "%s\n", std::string(86, '-').c_str());
  for (const auto& row : positions) {
    const auto security = shown.find(row[0]);
    std::fprintf(out, "%-28.28s  %-12.12s  %12s  %12s  %14s\n",
                 (security != shown.end() ? security->second : row[0]).c_str(), row[1].c_str(), row[2].c_str(),
                 row[3].c_str(), row[4].c_str());
  }
  std::fprintf(out, "%zu position%s\n\n%-28s  %-24s  %-8s  %s\n", positions.size(), positions.size() == 1 ? "" : "s",
               "Security", "Kind", "Ticker", "Name");
  std::fprintf(out, "%s\n", std::string(86, '-').c_str());
  for (const auto& row : securities) {
    std::fprintf(out, "%-28s  %-24.24s  %-8s  %s\n", row[0].c_str(), row[1].c_str(), row[2].c_str(), row[3].c_str());
  }
  std::fprintf(out, "%zu securit%s\n", securities.size(), securities.size() == 1 ? "y" : "ies");
}

void StatementPrinter::PrintCsv(void* st, std::FILE* out) const {
  // One table after another, a blank line between them.
  auto table = [this, st, out](int count_id, const Field* columns) {
    for (size_t c = 0; columns[c].name != nullptr; ++c) {
      if (c > 0) std::fputc(',', out);
      std::fputs(columns[c].name, out);
    }
    std::fputc('\n', out);
    for (const auto& row : ReadRows(kind_, st, count_id, columns)) {
      for (size_t c = 0; c < row.size(); ++c) {
        if (c > 0) std::fputc(',', out);
        PutCsvField(row[c], out);
      }
      std::fputc('\n', out);
    }
  };
  const bool closing = HoldsClosingInfo(kind_, st);
  table(closing ? kind_.closing_count_id : kind_.tx_count_id, closing ? kind_.closing_columns : kind_.tx_columns);
  if (kind_.holdings == nullptr || closing) return;
  std::fputc('\n', out);
  table(kind_.holdings->pos_count_id, kind_.holdings->pos_columns);
  std::fputc('\n', out);
  table(kind_.holdings->sec_count_id, kind_.holdings->sec_columns);
}

void StatementPrinter::PrintJson(void* st, std::FILE* out, const char* json_kind) const {
  const StatementKind& k = kind_;
  auto member = [out](const char* name, const std::string& value) {
    std::fprintf(out, "  \"%s\": ", name);
    PutJsonString(value, out);
    std::fputs(",\n", out);
  };
  std::fputs("{\n", out);
  if (json_kind != nullptr) member("kind", json_kind);
  member(k.account.name, Text(k, st, k.account.id));
  if (k.account_type_id != 0) member("account_type", AccountTypeName(k, st));
  member("currency", Text(k, st, k.currency_id));
  member("start_date", Text(k, st, k.start_date_id));
  member("end_date", Text(k, st, k.end_date_id));
  for (const StatementKind::Balance& balance : k.balances) {
    if (balance.amount.name == nullptr) break;
    member(balance.amount.name, Amount(k, st, balance.amount.id));
    if (balance.date_id != 0) member(balance.date_name, Text(k, st, balance.date_id));
  }
  std::fputs("  \"transactions\": [", out);
  PutJsonRecords(k.tx_columns, ReadRows(k, st, k.tx_count_id, k.tx_columns), out);
  std::fputs(",\n  \"closing_info\": [", out);
  PutJsonRecords(k.closing_columns, ReadRows(k, st, k.closing_count_id, k.closing_columns), out);
  if (k.holdings != nullptr) {
    std::fputs(",\n  \"positions\": [", out);
    PutJsonRecords(k.holdings->pos_columns, ReadRows(k, st, k.holdings->pos_count_id, k.holdings->pos_columns), out);
    std::fputs(",\n  \"securities\": [", out);
    PutJsonRecords(k.holdings->sec_columns, ReadRows(k, st, k.holdings->sec_count_id, k.holdings->sec_columns), out);
  }
  std::fputs("\n}\n", out);
}

void PrintSections(const Component& component, void* handle, const std::vector<Section>& sections,
                   const std::string& answer, Format format, std::FILE* out, const char* json_kind) {
  const auto value = [&](const Column& column, int row) -> std::string {
    if (column.kind == Column::Kind::kAnswer) return answer;
    void* v = component.get(handle, column.id, row, nullptr);
    if (column.kind == Column::Kind::kInt) return std::to_string(static_cast<long>(reinterpret_cast<intptr_t>(v)));
    return v == nullptr ? "" : static_cast<const char*>(v);
  };
  // CSV quotes every field, so that a spreadsheet keeps ids such as "00012" as text.
  const auto put_quoted = [out](const std::string& text, bool json) {
    if (json) return PutJsonString(text, out);
    std::fputc('"', out);
    for (char c : text) {
      if (c == '"') std::fputc('"', out);
      std::fputc(c, out);
    }
    std::fputc('"', out);
  };
  size_t width = 0;
  for (const Section& section : sections) {
    for (const Column& column : section.columns) width = std::max(width, std::strlen(column.name) + 1);
  }
  if (format == Format::kJson) {
    std::fputc('{', out);
    if (json_kind != nullptr) std::fprintf(out, "\n  \"kind\": \"%s\",", json_kind);
  }
  for (size_t s = 0; s < sections.size(); ++s) {
    const Section& section = sections[s];
    const bool list = section.count_id != 0;
    const int rows = list ? static_cast<int>(reinterpret_cast<intptr_t>(component.get(handle, section.count_id, 0, nullptr))) : 1;
    if (format == Format::kJson) {
      std::fprintf(out, "%s\n  \"%s\": %s", s == 0 ? "" : ",", section.name, list ? "[" : "");
    } else {
      std::fprintf(out, "%s%s\n", s == 0 ? "" : "\n", section.name);
    }
    if (format == Format::kCsv) {
      for (size_t i = 0; i < section.columns.size(); ++i) std::fprintf(out, "%s%s", i ? "," : "", section.columns[i].name);
      std::fputc('\n', out);
    }
    for (int row = 0; row < rows; ++row) {
      if (format == Format::kJson) std::fputs(row == 0 ? "{" : ", {", out);
      for (size_t i = 0; i < section.columns.size(); ++i) {
        const Column& column = section.columns[i];
        const std::string text = value(column, row);
        if (format == Format::kTable) {
          std::fprintf(out, "  %-*s %s\n", static_cast<int>(width), column.name, text.c_str());
        } else if (format == Format::kCsv) {
          if (i > 0) std::fputc(',', out);
          put_quoted(text, false);
        } else {
          std::fprintf(out, "%s\"%s\": ", i ? ", " : "", column.name);
          if (column.kind == Column::Kind::kInt) {
            std::fputs(text.c_str(), out);
          } else {
            put_quoted(text, true);
          }
        }
      }
      if (format == Format::kJson) std::fputc('}', out);
      if (format == Format::kCsv) std::fputc('\n', out);
      if (format == Format::kTable && row + 1 < rows) std::fputs("  --\n", out);
    }
    if (format == Format::kJson && list) std::fputc(']', out);
  }
  std::fputs(format == Format::kJson ? "\n}\n" : "\n", out);
}
