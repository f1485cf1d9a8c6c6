#include "services/investment_records.h"

#include "base/error_codes.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

constexpr const char* kTransactionCodes[] = {
    "BUYDEBT", "BUYMF",          "BUYOPT",   "BUYOTHER", "BUYSTOCK", "CLOSUREOPT", "INCOME",
    "INVEXPENSE", "JRNLFUND",    "JRNLSEC",  "MARGININTEREST", "REINVEST", "RETOFCAP", "SELLDEBT",
    "SELLMF",  "SELLOPT",        "SELLOTHER", "SELLSTOCK", "SPLIT",   "TRANSFER",   "INVBANKTRAN"};
constexpr const char* kTransactionDescriptions[] = {
    "Buy debt security",
    "Buy mutual fund",
    "Buy option",
    "Buy other security type",
    "Buy stock",
    "Close a position for an option",
    "Investment income realized as cash into the investment account",
    "Misc. investment expense that is associated with a specific security",
    "Journaling cash holdings between sub-accounts",
    "Journaling security holdings between sub-accounts",
    "Margin interest expense",
    "Reinvestment of income",
    "Return of capital",
    "Sell debt security",
    "Sell mutual fund",
    "Sell option",
    "Sell other type of security",
    "Sell stock",
    "Stock or Mutual Fund Split",
    "Transfer holdings",
    "Banking transaction"};

constexpr const char* kPositionCodes[] = {"POSDEBT", "POSMF", "POSOPT", "POSOTHER", "POSSTOCK"};
constexpr const char* kPositionDescriptions[] = {"Debt", "Mutual Fund", "Option", "Other", "Stock"};

constexpr const char* kOrderCodes[] = {"OOBUYDEBT",  "OOBUYMF",  "OOBUYOPT",    "OOBUYOTHER",  "OOBUYSTOCK", "OOSELLDEBT",
                                       "OOSELLMF",   "OOSELLOPT", "OOSELLOTHER", "OOSELLSTOCK", "SWITCHMF"};
constexpr const char* kOrderDescriptions[] = {"Buy Debt",  "Buy Mutual Fund",  "Buy Option", "Buy Other",
                                              "Buy Stock", "Sell Debt",        "Sell Mutual Fund", "Sell Option",
                                              "Sell Other", "Sell Stock",      "Switch to Mutual Fund"};

constexpr const char* kBalanceCodes[] = {"DOLLAR", "PERCENT", "NUMBER"};
constexpr const char* kBalanceDescriptions[] = {"Dollar", "Percent", "Number"};

constexpr const char* kSecurityCodes[] = {"DEBTINFO", "MFINFO", "OPTINFO", "STOCKINFO"};
constexpr const char* kSecurityDescriptions[] = {"Debt information", "Mutual fund information", "Option information",
                                                 "Stock information"};

template <size_t N>
constexpr RecordTypeTable Table(const char* const (&codes)[N], const char* const (&descriptions)[N], const char* other,
                                const char* other_description) {
  return {codes, descriptions, static_cast<int32_t>(N), other, other_description};
}

// ReadField's failure for `name` below the cursor.
int Missing(OFXClient& client, const char* name) {
  ByteString unused;
  return client.ReadField(client.Document(), name, unused, true);
}

}  // namespace

const RecordTypeTable InvestmentTransaction::kTypes =
    Table(kTransactionCodes, kTransactionDescriptions, "OTHER", "Other");
const RecordTypeTable InvestmentPosition::kTypes = Table(kPositionCodes, kPositionDescriptions, "OTHER", "Other");
const RecordTypeTable OpenOrder::kTypes = Table(kOrderCodes, kOrderDescriptions, "OTHER", "Other");
const RecordTypeTable InvestmentBalance::kTypes = Table(kBalanceCodes, kBalanceDescriptions, "OTHER", "Other");
const RecordTypeTable SecurityInfo::kTypes =
    Table(kSecurityCodes, kSecurityDescriptions, "OTHERINFO", "Other information");

int32_t RecordTypeTable::IndexOf(const char* code) const {
  if (code == nullptr) return kTypeOther;
  for (int32_t i = 0; i < count; ++i) {
    if (CompareNoCase(code, codes[i]) == 0) return i;
  }
  return kTypeOther;
}

const char* RecordTypeTable::Description(int32_t index) const {
  return index >= 0 && index < count ? descriptions[index] : other_description;
}

// ---- What every record shares ----

void InvestmentRecord::Begin(OFXClient& client) {
  MarkupDocument& doc = client.Document();
  engine = &client;
  record.Attach(&doc, doc.Tree().Cursor());
  detail = RecordSource();
  secid = RecordSource();
  type_index = RecordTypeTable::kTypeOther;
  reached = 0;
}

int InvestmentRecord::Move(OFXClient& client, const char* path) {
  MarkupDocument& doc = client.Document();
  if (int rc = doc.SelectPath(path); rc != kOk) return client.ReportError(rc, doc.GetLastError());
  return kOk;
}

int InvestmentRecord::Enter(OFXClient& client, const char* name, RecordSource& source) {
  if (int rc = Move(client, name); rc != kOk) return rc;
  source.Attach(&client.Document(), client.Document().Tree().Cursor());
  return kOk;
}

// A SECID whose UNIQUEID is missing keeps the "UNIQUEIDTYPE:" read before it.
int InvestmentRecord::RequireSecId(OFXClient& client) {
  if (int rc = Move(client, "SECID/UNIQUEIDTYPE"); rc != kOk) return rc;
  if (int rc = Enter(client, "..", secid); rc != kOk) return rc;
  if (int rc = Move(client, "UNIQUEID"); rc != kOk) return rc;
  return Move(client, "../..");
}

int InvestmentRecord::ReadSecId(OFXClient& client) {
  if (!detail.Has("SECID")) return kOk;
  RecordSource found;
  if (int rc = Enter(client, "SECID", found); rc != kOk) return rc;
  if (!found.Has("UNIQUEIDTYPE")) {
    if (int rc = Move(client, ".."); rc != kOk) return rc;
    return Missing(client, "SECID/UNIQUEIDTYPE");
  }
  secid = found;
  // Named as from inside the SECID, where the part is read.
  if (!secid.Has("UNIQUEID")) return Missing(client, "UNIQUEID");
  return Move(client, "..");
}

int InvestmentRecord::Read(OFXClient& client, const RecordSource& at, std::initializer_list<Step> steps) {
  for (const Step& step : steps) {
    if (step.required && !at.Has(step.name)) return Missing(client, step.name);
    reached |= static_cast<uint16_t>(1u << step.field);
  }
  return kOk;
}

const char* InvestmentRecord::SecurityId(ByteString& out) const {
  out.Clear();
  if (secid.IsAttached()) {
    out.Append(secid.Text("UNIQUEIDTYPE"));
    out.AppendChar(':');
    out.Append(secid.Text("UNIQUEID"));
  }
  return out.Data();
}

// ---- Transactions ----

int InvestmentTransaction::Parse(OFXClient& client) {
  Begin(client);
  type_index = kTypes.IndexOf(client.Document().ElementName());
  tran = RecordSource();
  detail = record;
  kind = kPlain;
  const char* side = record.Has("INVBUY") ? "INVBUY" : record.Has("INVSELL") ? "INVSELL" : nullptr;
  // The trade's own dates and identity, in INVTRAN.
  const std::initializer_list<Step> trade = {
      {kFITID, "FITID", true}, {kDate, "DTTRADE", true}, {kDateSettle, "DTSETTLE", false}, {kMemo, "MEMO", false}};
  if (side != nullptr) {
    kind = kBuySell;
    if (int rc = Enter(client, side, detail); rc != kOk) return rc;
    if (int rc = ReadSecId(client); rc != kOk) return rc;
    if (int rc = Read(client, detail,
                      {{kUnits, "UNITS", true},
                       {kUnitPrice, "UNITPRICE", true},
                       {kTotal, "TOTAL", true},
                       {kSubAccountFund, "SUBACCTFUND", true},
                       {kSubAccountSec, "SUBACCTSEC", true}});
        rc != kOk) {
      return rc;
    }
    if (int rc = Enter(client, "INVTRAN", tran); rc != kOk) return rc;
    if (int rc = Read(client, tran, trade); rc != kOk) return rc;
    return Move(client, "../..");
  }
  const std::initializer_list<Step> amounts = {{kUnits, "UNITS", false},
                                               {kSubAccountSec, "SUBACCTSEC", false},
                                               {kTotal, "TOTAL", false},
                                               {kUnitPrice, "UNITPRICE", false},
                                               {kSubAccountFund, "SUBACCTFUND", false}};
  if (record.Has("INVTRAN")) {
    kind = kWithInvTran;
    if (int rc = Enter(client, "INVTRAN", tran); rc != kOk) return rc;
    if (int rc = Read(client, tran, trade); rc != kOk) return rc;
    if (int rc = Move(client, ".."); rc != kOk) return rc;
    Read(client, record, amounts);  // all optional: cannot fail
    return ReadSecId(client);
  }
  if (record.Has("STMTTRN")) {
    kind = kBanking;
    if (int rc = Enter(client, "STMTTRN", tran); rc != kOk) return rc;
    if (int rc = Read(client, tran,
                      {{kDate, "DTPOSTED", true},
                       {kFITID, "FITID", true},
                       {kMemo, "MEMO", false},
                       {kName, "NAME", false},
                       {kTotal, "TRNAMT", true}});
        rc != kOk) {
      return rc;
    }
    if (int rc = Move(client, ".."); rc != kOk) return rc;
    return Read(client, record, {{kSubAccountFund, "SUBACCTFUND", true}});
  }
  if (int rc = ReadSecId(client); rc != kOk) return rc;
  return Read(client, record, amounts);
}

const char* InvestmentTransaction::Text(Field field) const {
  if (!Reached(field)) return "";
  const bool banking = kind == kBanking;
  switch (field) {
    case kDate: return tran.Text(banking ? "DTPOSTED" : "DTTRADE");
    case kDateSettle: return banking ? "" : tran.Text("DTSETTLE");
    case kFITID: return tran.Text("FITID");
    case kMemo: return tran.Text("MEMO");
    case kName: return banking ? tran.Text("NAME") : "";
    case kSubAccountFund: return detail.Text("SUBACCTFUND");
    case kSubAccountSec: return banking ? "" : detail.Text("SUBACCTSEC");
    case kTotal: return banking ? tran.Text("TRNAMT") : detail.Text("TOTAL");
    case kUnitPrice: return banking ? "" : detail.Text("UNITPRICE");
    case kUnits: return banking ? "" : detail.Text("UNITS");
  }
  return "";
}

// ---- Positions, open orders, balances, securities ----

int InvestmentPosition::Parse(OFXClient& client) {
  Begin(client);
  type_index = kTypes.IndexOf(client.Document().ElementName());
  if (!record.Has("INVPOS")) return kOk;
  if (int rc = Enter(client, "INVPOS", detail); rc != kOk) return rc;
  if (int rc = Read(client, detail,
                    {{kAccountType, "HELDINACCT", true},
                     {kMarketValue, "MKTVAL", true},
                     {kPositionType, "POSTYPE", true},
                     {kUnitPrice, "UNITPRICE", true},
                     {kUnits, "UNITS", true},
                     {kDatePriceAsOf, "DTPRICEASOF", true},
                     {kMemo, "MEMO", false}});
      rc != kOk) {
    return rc;
  }
  if (int rc = RequireSecId(client); rc != kOk) return rc;
  return Move(client, "..");
}

const char* InvestmentPosition::Text(Field field) const {
  constexpr const char* kPaths[] = {"HELDINACCT", "DTPRICEASOF", "MKTVAL", "MEMO", "POSTYPE", "UNITPRICE", "UNITS"};
  return Reached(field) ? detail.Text(kPaths[field]) : "";
}

int OpenOrder::Parse(OFXClient& client) {
  Begin(client);
  type_index = kTypes.IndexOf(client.Document().ElementName());
  // All optional: cannot fail.
  Read(client, record, {{kBuyType, "BUYTYPE", false}, {kSellType, "SELLTYPE", false}, {kUnitType, "UNITTYPE", false}});
  if (int rc = Enter(client, "OO", detail); rc != kOk) return rc;
  if (int rc = Read(client, detail,
                    {{kDatePlaced, "DTPLACED", true},
                     {kDuration, "DURATION", true},
                     {kFITID, "FITID", true},
                     {kRestriction, "RESTRICTION", true},
                     {kSubAccount, "SUBACCT", true},
                     {kUnits, "UNITS", true},
                     {kMemo, "MEMO", false}});
      rc != kOk) {
    return rc;
  }
  if (int rc = RequireSecId(client); rc != kOk) return rc;
  return Move(client, "..");
}

const char* OpenOrder::Text(Field field) const {
  if (!Reached(field)) return "";
  switch (field) {
    case kBuyType: return record.Text("BUYTYPE");
    case kSellType: return record.Text("SELLTYPE");
    case kUnitType: return record.Text("UNITTYPE");
    case kDatePlaced: return detail.Text("DTPLACED");
    case kDuration: return detail.Text("DURATION");
    case kFITID: return detail.Text("FITID");
    case kMemo: return detail.Text("MEMO");
    case kRestriction: return detail.Text("RESTRICTION");
    case kSubAccount: return detail.Text("SUBACCT");
    case kUnits: return detail.Text("UNITS");
  }
  return "";
}

int InvestmentBalance::Parse(OFXClient& client) {
  Begin(client);
  if (int rc = Read(client, record, {{kName, "NAME", true}, {kDescription, "DESC", true}, {kValue, "VALUE", true}});
      rc != kOk) {
    return rc;
  }
  if (!record.Has("BALTYPE")) return Missing(client, "BALTYPE");
  type_index = kTypes.IndexOf(record.Text("BALTYPE"));
  return kOk;
}

const char* InvestmentBalance::Text(Field field) const {
  constexpr const char* kPaths[] = {"DESC", "NAME", "VALUE"};
  return Reached(field) ? record.Text(kPaths[field]) : "";
}

int SecurityInfo::Parse(OFXClient& client) {
  Begin(client);
  engine = nullptr;  // every field reads as received
  type_index = kTypes.IndexOf(client.Document().ElementName());
  if (int rc = Enter(client, "SECINFO", detail); rc != kOk) return rc;
  if (int rc = Read(client, detail,
                    {{kFIId, "FIID", false},
                     {kMemo, "MEMO", false},
                     {kTicker, "TICKER", false},
                     {kUnitPrice, "UNITPRICE", false},
                     {kName, "SECNAME", true}});
      rc != kOk) {
    return rc;
  }
  if (int rc = RequireSecId(client); rc != kOk) return rc;
  reached |= (1u << kAssetClass) | (1u << kYield);
  return Move(client, "..");
}

const char* SecurityInfo::Text(Field field) const {
  // The asset class and yield belong to the security's own aggregate, beside
  // SECINFO; a fund names the class of its first portion.
  const auto first = [this](const char* path, const char* fallback) {
    const char* text = record.Text(path);
    return *text != '\0' ? text : record.Text(fallback);
  };
  if (!Reached(field)) return "";
  switch (field) {
    case kAssetClass: return first("ASSETCLASS", "MFASSETCLASS/PORTION/ASSETCLASS");
    case kYield: return first("YIELD", "YIELDTOMAT");
    case kFIId: return detail.Text("FIID");
    case kMemo: return detail.Text("MEMO");
    case kName: return detail.Text("SECNAME");
    case kTicker: return detail.Text("TICKER");
    case kUnitPrice: return detail.Text("UNITPRICE");
  }
  return "";
}

}  // namespace orvelan
