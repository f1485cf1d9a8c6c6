// The statement components as the printer and the tool see them.
#include "statement_printer.h"

namespace {

const char* const kBankTypes[] = {"checking", "savings", "moneymrkt", "creditline"};
const char* const kLoanTypes[] = {"auto",     "consumer", "mortgage", "commercial", "student",
                                  "military", "smb",      "constr",   "homeequity"};

}  // namespace

// The columns every kind shares first: the table prints these five and the memo.
#define ORVELAN_TX_COLUMNS(P)                                                                               \
  {"Posted", "date_posted", P##_PROP_TXDATEPOSTED, false}, {"Type", "type", P##_PROP_TXTYPEDESCRIPTION, false}, \
      {"Amount", "amount", P##_PROP_TXAMOUNT, true}, {"FITID", "fitid", P##_PROP_TXFITID, false},               \
      {"Payee", "payee", P##_PROP_TXPAYEENAME, false}, {"Memo", "memo", P##_PROP_TXMEMO, false}

#define ORVELAN_CLOSING_DATES(P)                                                                           \
  {"FITID", "fitid", P##_PROP_CLOSINGINFOFITID, false},                                                    \
      {"Opened", "date_open", P##_PROP_CLOSINGINFODATEOPEN, false},                                        \
      {"Closed", "date_close", P##_PROP_CLOSINGINFODATECLOSE, false},                                      \
      {"Period start", "date_start", P##_PROP_CLOSINGINFODATESTART, false},                                \
      {"Period end", "date_end", P##_PROP_CLOSINGINFODATEEND, false}

#define ORVELAN_BALANCE(P, LABEL, NAME, ID) \
  { {LABEL, NAME, P##_PROP_##ID, true}, NAME "_date", P##_PROP_##ID##DATE }

const StatementKind kBankStatement = {
    "bank",
    ORVELAN_COMPONENT(BankStatement, BANKSTATEMENT),
    {"Account", "account_id", BANKSTATEMENT_PROP_ACCOUNTID, false},
    BANKSTATEMENT_PROP_ACCOUNTTYPE,
    kBankTypes,
    4,
    BANKSTATEMENT_PROP_CURRENCYCODE,
    BANKSTATEMENT_PROP_STARTDATE,
    BANKSTATEMENT_PROP_ENDDATE,
    {ORVELAN_BALANCE(BANKSTATEMENT, "Ledger balance", "ledger_balance", LEDGERBALANCE),
     ORVELAN_BALANCE(BANKSTATEMENT, "Available balance", "available_balance", AVAILABLEBALANCE)},
    BANKSTATEMENT_PROP_TXCOUNT,
    {ORVELAN_TX_COLUMNS(BANKSTATEMENT), {"Check number", "check_number", BANKSTATEMENT_PROP_TXCHECKNUMBER, false}},
    BANKSTATEMENT_PROP_CLOSINGINFOCOUNT,
    {ORVELAN_CLOSING_DATES(BANKSTATEMENT),
     {"Opening balance", "balance_open", BANKSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, true},
     {"Closing balance", "balance_close", BANKSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE, true},
     {"Total credits", "total_credits", BANKSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS, true},
     {"Total debits", "total_debits", BANKSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS, true},
     {"Total fees", "total_fees", BANKSTATEMENT_PROP_CLOSINGINFOTOTALFEES, true},
     {"Total interest", "total_interest", BANKSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, true}},
    BANKSTATEMENT_PROP_BANKID,
    nullptr,
};

const StatementKind kCardStatement = {
    "card",
    ORVELAN_COMPONENT(CCStatement, CCSTATEMENT),
    {"Card", "card_number", CCSTATEMENT_PROP_CARDNUMBER, false},
    0,
    nullptr,
    0,
    CCSTATEMENT_PROP_CURRENCYCODE,
    CCSTATEMENT_PROP_STARTDATE,
    CCSTATEMENT_PROP_ENDDATE,
    {ORVELAN_BALANCE(CCSTATEMENT, "Ledger balance", "ledger_balance", LEDGERBALANCE),
     ORVELAN_BALANCE(CCSTATEMENT, "Available balance", "available_balance", AVAILABLEBALANCE)},
    CCSTATEMENT_PROP_TXCOUNT,
    {ORVELAN_TX_COLUMNS(CCSTATEMENT)},
    CCSTATEMENT_PROP_CLOSINGINFOCOUNT,
    {ORVELAN_CLOSING_DATES(CCSTATEMENT),
     {"Payment due date", "date_due", CCSTATEMENT_PROP_CLOSINGINFODATEDUE, false},
     {"Opening balance", "balance_open", CCSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, true},
     {"Closing balance", "balance_close", CCSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE, true},
     {"Credit limit", "credit_limit", CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, true},
     {"Minimum payment", "payment_due", CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, true},
     {"Total credits", "total_credits", CCSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS, true},
     {"Total debits", "total_debits", CCSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS, true},
     {"Total fees", "total_fees", CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES, true}},
    0,
    nullptr,
};

const StatementKind kLoanStatement = {
    "loan",
    ORVELAN_COMPONENT(LoanStatement, LOANSTATEMENT),
    {"Account", "account_id", LOANSTATEMENT_PROP_ACCOUNTID, false},
    LOANSTATEMENT_PROP_ACCOUNTTYPE,
    kLoanTypes,
    9,
    LOANSTATEMENT_PROP_CURRENCYCODE,
    LOANSTATEMENT_PROP_STARTDATE,
    LOANSTATEMENT_PROP_ENDDATE,
    {ORVELAN_BALANCE(LOANSTATEMENT, "Principal balance", "principal_balance", PRINCIPALBALANCE),
     ORVELAN_BALANCE(LOANSTATEMENT, "Available balance", "available_balance", AVAILABLEBALANCE),
     {{"Principal YTD", "total_principal_ytd", LOANSTATEMENT_PROP_TOTALPRINCIPALYTD, true}, nullptr, 0},
     {{"Principal LTD", "total_principal_ltd", LOANSTATEMENT_PROP_TOTALPRINCIPALLTD, true}, nullptr, 0}},
    LOANSTATEMENT_PROP_TXCOUNT,
    {ORVELAN_TX_COLUMNS(LOANSTATEMENT),
     {"Check number", "check_number", LOANSTATEMENT_PROP_TXCHECKNUMBER, false},
     {"Principal", "principal", LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, true},
     {"Interest", "interest", LOANSTATEMENT_PROP_TXINTERESTAMOUNT, true},
     {"Escrow", "escrow", LOANSTATEMENT_PROP_TXESCROWTOTAL, true}},
    LOANSTATEMENT_PROP_CLOSINGINFOCOUNT,
    {ORVELAN_CLOSING_DATES(LOANSTATEMENT),
     {"Payment due date", "date_due", LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, false},
     {"Opening balance", "balance_open", LOANSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, true},
     {"Payment due", "payment_due", LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, true},
     {"Total interest", "total_interest", LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, true}},
    0,
    nullptr,
};

namespace {

const StatementKind::Holdings kInvHoldings = {
    INVSTATEMENT_PROP_POSCOUNT,
    {{"Security", "security_id", INVSTATEMENT_PROP_POSSECURITYID, false},
     {"Kind", "kind", INVSTATEMENT_PROP_POSTYPEDESCRIPTION, false},
     {"Units", "units", INVSTATEMENT_PROP_POSUNITS, false},
     {"Price", "unit_price", INVSTATEMENT_PROP_POSUNITPRICE, false},
     {"Value", "market_value", INVSTATEMENT_PROP_POSMARKETVALUE, true},
     {"Priced", "date_price_as_of", INVSTATEMENT_PROP_POSDATEPRICEASOF, false},
     {"Held in", "held_in", INVSTATEMENT_PROP_POSACCOUNTTYPE, false}},
    INVSTATEMENT_PROP_SECCOUNT,
    {{"Security", "security_id", INVSTATEMENT_PROP_SECSECURITYID, false},
     {"Kind", "kind", INVSTATEMENT_PROP_SECTYPEDESCRIPTION, false},
     {"Ticker", "ticker", INVSTATEMENT_PROP_SECTICKER, false},
     {"Name", "name", INVSTATEMENT_PROP_SECNAME, false},
     {"Price", "unit_price", INVSTATEMENT_PROP_SECUNITPRICE, false},
     {"Asset class", "asset_class", INVSTATEMENT_PROP_SECASSETCLASS, false},
     {"Yield", "yield", INVSTATEMENT_PROP_SECYIELD, false}},
};

}  // namespace

// The payee column holds a banking transaction's name; a trade names its
// security instead.
const StatementKind kInvStatement = {
    "investment",
    ORVELAN_COMPONENT(InvStatement, INVSTATEMENT),
    {"Account", "account_id", INVSTATEMENT_PROP_ACCOUNTID, false},
    0,
    nullptr,
    0,
    INVSTATEMENT_PROP_CURRENCYCODE,
    INVSTATEMENT_PROP_STARTDATE,
    INVSTATEMENT_PROP_ENDDATE,
    {{{"Available cash", "available_cash", INVSTATEMENT_PROP_AVAILABLECASH, true}, nullptr, 0},
     {{"Margin balance", "margin_balance", INVSTATEMENT_PROP_MARGINBALANCE, true}, nullptr, 0},
     {{"Short balance", "short_balance", INVSTATEMENT_PROP_SHORTBALANCE, true}, nullptr, 0},
     {{"Buying power", "buying_power", INVSTATEMENT_PROP_BUYINGPOWER, true}, nullptr, 0}},
    INVSTATEMENT_PROP_TXCOUNT,
    {{"Date", "date", INVSTATEMENT_PROP_TXDATE, false},
     {"Type", "type", INVSTATEMENT_PROP_TXTYPEDESCRIPTION, false},
     {"Total", "total", INVSTATEMENT_PROP_TXTOTAL, true},
     {"FITID", "fitid", INVSTATEMENT_PROP_TXFITID, false},
     {"Name", "name", INVSTATEMENT_PROP_TXNAME, false},
     {"Memo", "memo", INVSTATEMENT_PROP_TXMEMO, false},
     {"Security", "security_id", INVSTATEMENT_PROP_TXSECURITYID, false},
     {"Units", "units", INVSTATEMENT_PROP_TXUNITS, false},
     {"Price", "unit_price", INVSTATEMENT_PROP_TXUNITPRICE, false},
     {"Settled", "date_settle", INVSTATEMENT_PROP_TXDATESETTLE, false}},
    INVSTATEMENT_PROP_CLOSINGINFOCOUNT,
    {{"FITID", "fitid", INVSTATEMENT_PROP_CLOSINGINFOFITID, false},
     {"Image", "image_ref", INVSTATEMENT_PROP_CLOSINGINFOIMAGEREF, false}},
    INVSTATEMENT_PROP_BROKERID,
    &kInvHoldings,
};
