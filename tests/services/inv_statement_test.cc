// The investment statement over canned responses: the request, the walk of
// every list, the security join, the type tables and the failures.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "services/inv_statement_component.h"
#include "support/component_host.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

constexpr char kSecId[] = "<SECID><UNIQUEID>123<UNIQUEIDTYPE>CUSIP</SECID>";
constexpr char kFundId[] = "<SECID><UNIQUEID>922908108<UNIQUEIDTYPE>CUSIP</SECID>";

const std::string kStatementBody =
    std::string("<INVSTMTRS><DTASOF>20260131<CURDEF>USD<INVACCTFROM><BROKERID>broker.example<ACCTID>A-1</INVACCTFROM>"
                "<INVTRANLIST><DTSTART>20260101<DTEND>20260131"
                "<BUYSTOCK><INVBUY><INVTRAN><FITID>T1<DTTRADE>20260105<DTSETTLE>20260107<MEMO>buy</INVTRAN>") +
    kSecId +
    "<UNITS>10<UNITPRICE>50.5<COMMISSION>1<TOTAL>-506<SUBACCTSEC>CASH<SUBACCTFUND>CASH</INVBUY>"
    "<BUYTYPE>BUY</BUYSTOCK>"
    "<INCOME><INVTRAN><FITID>T2<DTTRADE>20260110</INVTRAN>" +
    kFundId +
    "<INCOMETYPE>DIV<TOTAL>12.34<SUBACCTSEC>CASH<SUBACCTFUND>CASH</INCOME>"
    "<INVBANKTRAN><STMTTRN><TRNTYPE>CREDIT<DTPOSTED>20260120<TRNAMT>1000<FITID>T3<NAME>Deposit</STMTTRN>"
    "<SUBACCTFUND>CASH</INVBANKTRAN></INVTRANLIST>"
    "<INVPOSLIST><POSSTOCK><INVPOS>" +
    kSecId +
    "<HELDINACCT>CASH<POSTYPE>LONG<UNITS>10<UNITPRICE>51<MKTVAL>510<DTPRICEASOF>20260131</INVPOS></POSSTOCK>"
    "<POSMF><INVPOS>" +
    kFundId +
    "<HELDINACCT>CASH<POSTYPE>LONG<UNITS>3.5<UNITPRICE>100<MKTVAL>350<DTPRICEASOF>20260131<MEMO>fund</INVPOS>"
    "</POSMF></INVPOSLIST>"
    "<INVBAL><AVAILCASH>200.5<MARGINBALANCE>-50<SHORTBALANCE>0<BALLIST>"
    "<BAL><NAME>Cash<DESC>Settled cash<BALTYPE>DOLLAR<VALUE>+001234.5</BAL>"
    "<BAL><NAME>Yield<DESC>Current yield<BALTYPE>percent<VALUE>+01.25</BAL></BALLIST></INVBAL>"
    "<INVOOLIST><OOSELLSTOCK><OO><FITID>O1" +
    kSecId +
    "<DTPLACED>20260125<UNITS>5<SUBACCT>CASH<DURATION>GOODTILCANCEL<RESTRICTION>NONE<LIMITPRICE>60</OO>"
    "<SELLTYPE>SELL</OOSELLSTOCK></INVOOLIST><MKTGINFO>Trade more</INVSTMTRS>";
const std::string kSecList =
    std::string("<SECLISTMSGSRSV1><SECLIST><STOCKINFO><SECINFO>") + kSecId +
    "<SECNAME>Acme Corp<TICKER>ACME<UNITPRICE>51</SECINFO><YIELD>1.5<ASSETCLASS>DOMESTICEQUITY</STOCKINFO>"
    "<MFINFO><SECINFO>" +
    kFundId +
    "<SECNAME>Index Fund<FIID>F9</SECINFO><MFASSETCLASS><PORTION><ASSETCLASS>LARGESTOCK<PERCENT>80</PORTION>"
    "</MFASSETCLASS></MFINFO></SECLIST></SECLISTMSGSRSV1>";
const std::string kWrapped = "<INVSTMTTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>" + kStatementBody +
                             "</INVSTMTTRNRS>";
const std::string kStatement = OfxResponse("<INVSTMTMSGSRSV1>" + kWrapped + "</INVSTMTMSGSRSV1>" + kSecList);
const std::string kClosing = OfxResponse(
    "INVSTMTMSGSRSV1", "INVSTMTENDTRNRS",
    "<INVSTMTENDRS><CURDEF>CAD<INVACCTFROM><BROKERID>b<ACCTID>a</INVACCTFROM><INVCLOSING><FITID>C1<DTCLOSE>20260131"
    "</INVCLOSING><INVCLOSING><FITID>C2</INVCLOSING></INVSTMTENDRS>");

struct Inv : ComponentHost<InvStatementComponent> {
  Inv() : ComponentHost("INVSTMTENDRS,INVCLOSING,OTHER,VENDORTRAN") {}
};
TEST(InvStatementTest, Requests) {
  Inv inv;
  inv.service().SetBrokerId("broker.example");
  inv.service().SetAccountId("A-1");
  // Version, type, includes/as-of/images changed?, the request.
  const std::tuple<const char*, int, bool, const char*> cases[] = {
      {"102", 0, false,
       "<INVSTMTTRNRQ>\r\n<TRNUID>T\r\n<INVSTMTRQ>\r\n<INVACCTFROM>\r\n<BROKERID>broker.example\r\n<ACCTID>A-1\r\n"
       "</INVACCTFROM>\r\n<INCTRAN>\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n<INCOO>Y\r\n<INCPOS>\r\n<INCLUDE>Y\r\n</INCPOS>\r\n"
       "<INCBAL>Y\r\n</INVSTMTRQ>\r\n</INVSTMTTRNRQ>\r\n"},
      {"211", 0, true,
       "<INVSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<INVSTMTRQ>\r\n<INVACCTFROM>\r\n<BROKERID>broker.example</BROKERID>\r\n"
       "<ACCTID>A-1</ACCTID>\r\n</INVACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n<INCLUDE>N</INCLUDE>\r\n"
       "</INCTRAN>\r\n<INCOO>N</INCOO>\r\n<INCPOS>\r\n<DTASOF>S</DTASOF>\r\n<INCLUDE>N</INCLUDE>\r\n</INCPOS>\r\n"
       "<INCBAL>N</INCBAL>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</INVSTMTRQ>\r\n</INVSTMTTRNRQ>\r\n"},
      {"211", 1, true,
       "<INVSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<INVSTMTENDRQ>\r\n<INVACCTFROM>\r\n"
       "<BROKERID>broker.example</BROKERID>\r\n<ACCTID>A-1</ACCTID>\r\n</INVACCTFROM>\r\n<DTSTART>S</DTSTART>\r\n"
       "<INCSTMTIMG>Y</INCSTMTIMG>\r\n</INVSTMTENDRQ>\r\n</INVSTMTENDTRNRQ>\r\n"},
  };
  for (const auto& [version, type, changed, expected] : cases) {
    SCOPED_TRACE(std::string(version) + " type " + std::to_string(type));
    InvStatementService& s = inv.service();
    s.SetOFXVersion(version);
    ASSERT_EQ(s.SetStatementType(type), 0);
    for (int id : {INVSTATEMENT_PROP_INCLUDEBALANCES, INVSTATEMENT_PROP_INCLUDEOPENORDERS,
                   INVSTATEMENT_PROP_INCLUDEPOSITIONS, INVSTATEMENT_PROP_INCLUDETRANSACTIONS}) {
      ASSERT_EQ(inv.Set(id, 0, reinterpret_cast<void*>(changed ? 0 : 7), 0), 0);
    }
    ASSERT_EQ(s.SetStartDate(changed ? "01/02/2026 00:00:00" : ""), 0);
    ASSERT_EQ(s.SetAsOfDate(changed ? "01/02/2026 00:00:00" : ""), 0);
    s.SetIncludeImages(changed);
    std::string want = Replace(expected, "<DTSTART>S", std::string("<DTSTART>") + s.StartDateOFX());
    want = Replace(want, "<DTASOF>S", std::string("<DTASOF>") + s.StartDateOFX());
    const std::string sent = inv.Text(INVSTATEMENT_PROP_OFXREQUEST);
    EXPECT_EQ(Replace(sent, s.TransactionId(), "T"), want);
  }
}

TEST(InvStatementTest, StatementListsAndSecurityJoin) {
  Inv inv;
  ASSERT_EQ(inv.Respond(kStatement), 0) << inv.GetLastError();
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_BROKERID) + " " + inv.Text(INVSTATEMENT_PROP_ACCOUNTID), "broker.example A-1");
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_STATEMENTDATE) + inv.Text(INVSTATEMENT_PROP_MARKETINGINFO),
            "01/31/2026 00:00:00Trade more");
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_AVAILABLECASH) + " " + inv.Text(INVSTATEMENT_PROP_MARGINBALANCE) + " " +
                inv.Text(INVSTATEMENT_PROP_BUYINGPOWER),
            "200.5 -50 0.00");

  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT), 3);
  const auto tx = [&inv](int i) {
    std::string row = std::to_string(inv.Int(INVSTATEMENT_PROP_TXTYPE, i));
    for (int id : {INVSTATEMENT_PROP_TXDATE, INVSTATEMENT_PROP_TXTOTAL, INVSTATEMENT_PROP_TXUNITS,
                   INVSTATEMENT_PROP_TXSECURITYID, INVSTATEMENT_PROP_TXFITID, INVSTATEMENT_PROP_TXNAME,
                   INVSTATEMENT_PROP_TXSUBACCOUNTFUND}) {
      row += "|" + inv.Text(id, i);
    }
    return row;
  };
  EXPECT_EQ(tx(0), "4|01/05/2026 00:00:00|-506|10|CUSIP:123|T1||CASH");
  EXPECT_EQ(tx(1), "6|01/10/2026 00:00:00|12.34||CUSIP:922908108|T2||CASH");
  EXPECT_EQ(tx(2), "20|01/20/2026 00:00:00|1000|||T3|Deposit|CASH");
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_TXDATESETTLE) + inv.Text(INVSTATEMENT_PROP_TXUNITPRICE) +
                inv.Text(INVSTATEMENT_PROP_TXMEMO) + inv.Text(INVSTATEMENT_PROP_TXSUBACCOUNTSEC),
            "01/07/2026 00:00:0050.5buyCASH");

  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_POSCOUNT), 2);
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_POSTYPEDESCRIPTION, 1), "Mutual Fund");
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_POSMARKETVALUE, 1) + " " + inv.Text(INVSTATEMENT_PROP_POSUNITS, 1) + " " +
                inv.Text(INVSTATEMENT_PROP_POSMEMO, 1) + " " + inv.Text(INVSTATEMENT_PROP_POSPOSITIONTYPE, 1) + " " +
                inv.Text(INVSTATEMENT_PROP_POSACCOUNTTYPE, 1),
            "350 3.5 fund LONG CASH");

  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_BALCOUNT), 2);
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_BALAMOUNT, 0), "1234.5");  // DOLLAR: amount display
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_BALAMOUNT, 1), "+01.25");  // PERCENT: as received
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_BALNAME, 1) + "/" + inv.Text(INVSTATEMENT_PROP_BALDESCRIPTION, 1),
            "Yield/Current yield");

  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_OOCOUNT), 1);
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_OOORDERTYPE), 9);
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_OOSELLTYPE) + inv.Text(INVSTATEMENT_PROP_OOBUYTYPE) + " " +
                inv.Text(INVSTATEMENT_PROP_OODURATION) + " " + inv.Text(INVSTATEMENT_PROP_OOSECURITYID) + " " +
                inv.Text(INVSTATEMENT_PROP_OODATEPLACED),
            "SELL GOODTILCANCEL CUSIP:123 01/25/2026 00:00:00");

  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_SECCOUNT), 2);
  // Asset class and yield come from the security's own aggregate.
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_SECASSETCLASS, 0) + " " + inv.Text(INVSTATEMENT_PROP_SECYIELD, 0),
            "DOMESTICEQUITY 1.5");
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_SECASSETCLASS, 1) + " " + inv.Text(INVSTATEMENT_PROP_SECFIID, 1) + " " +
                inv.Text(INVSTATEMENT_PROP_SECTYPEDESCRIPTION, 1),
            "LARGESTOCK F9 Mutual fund information");
  // Every security id of the statement finds its security.
  InvStatementService& s = inv.service();
  EXPECT_EQ(s.FindSecurity(inv.Text(INVSTATEMENT_PROP_TXSECURITYID, 1)), 1);
  EXPECT_EQ(s.FindSecurity(inv.Text(INVSTATEMENT_PROP_POSSECURITYID, 0)), 0);
  EXPECT_EQ(s.FindSecurity("CUSIP:999"), -1);
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_SECTICKER, s.FindSecurity("CUSIP:123")), "ACME");
}

TEST(InvStatementTest, ShapesOfTheResponse) {
  Inv inv;
  // No envelope: the status is the root's own.
  ASSERT_EQ(inv.Respond(kWrapped), 0) << inv.GetLastError();
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT) * 10 + inv.Int(INVSTATEMENT_PROP_SECCOUNT), 30);
  ASSERT_EQ(inv.Respond(Replace(kWrapped, "<CODE>0<SEVERITY>INFO", "<CODE>2000<SEVERITY>ERROR")), 2001);
  // No INVSTMTTRNRS: no status to check.
  ASSERT_EQ(inv.Respond(OfxResponse("<INVSTMTMSGSRSV1>" + kStatementBody + "</INVSTMTMSGSRSV1>")), 0)
      << inv.GetLastError();
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_POSCOUNT), 2);
  // No INVBAL: the cleared balances "0", whose amount display drops the zero.
  const size_t from = kStatement.find("<INVBAL>"), to = kStatement.find("</INVBAL>") + 9;
  ASSERT_EQ(inv.Respond(kStatement.substr(0, from) + kStatement.substr(to)), 0) << inv.GetLastError();
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_AVAILABLECASH) + inv.Text(INVSTATEMENT_PROP_BUYINGPOWER), "");
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_BALCOUNT), 0);

  ASSERT_EQ(inv.Respond(kClosing), 0) << inv.GetLastError();
  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);
  EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_CURRENCYCODE) + inv.Text(INVSTATEMENT_PROP_CLOSINGINFOFITID, 1), "CADC2");
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT), 0);
  // The next download asks for a statement again.
  inv.service().SetBrokerId("b");
  inv.service().SetAccountId("a");
  inv.Do(INVSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr);
  EXPECT_NE(inv.Text(INVSTATEMENT_PROP_OFXREQUEST).find("<INVSTMTRQ>"), std::string::npos);
}

TEST(InvStatementTest, TypeTables) {
  // Every transaction kind by its element's name, in any case, then "OTHER" and an unknown kind.
  const char* kinds[] = {"BUYDEBT",    "BUYMF",    "BUYOPT",    "BUYOTHER",  "buystock", "CLOSUREOPT", "INCOME",
                         "INVEXPENSE", "JRNLFUND", "JRNLSEC",   "MARGININTEREST", "REINVEST", "RETOFCAP", "SELLDEBT",
                         "SELLMF",     "SELLOPT",  "SELLOTHER", "SELLSTOCK", "SPLIT",    "TRANSFER",   "INVBANKTRAN",
                         "OTHER",      "VENDORTRAN"};
  std::string list = "<INVTRANLIST><DTSTART>20260101<DTEND>20260131";
  for (const char* kind : kinds) list += std::string("<") + kind + "></" + kind + ">";
  Inv inv;
  const size_t from = kStatement.find("<INVTRANLIST>"), to = kStatement.find("</INVTRANLIST>") + 14;
  ASSERT_EQ(inv.Respond(kStatement.substr(0, from) + list + "</INVTRANLIST>" + kStatement.substr(to)), 0) << inv.GetLastError();
  const char* descriptions[] = {
      "Buy debt security", "Buy mutual fund", "Buy option", "Buy other security type", "Buy stock",
      "Close a position for an option", "Investment income realized as cash into the investment account",
      "Misc. investment expense that is associated with a specific security",
      "Journaling cash holdings between sub-accounts", "Journaling security holdings between sub-accounts",
      "Margin interest expense", "Reinvestment of income", "Return of capital", "Sell debt security",
      "Sell mutual fund", "Sell option", "Sell other type of security", "Sell stock", "Stock or Mutual Fund Split",
      "Transfer holdings", "Banking transaction", "Other", "Other"};
  ASSERT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT), 23);
  for (int i = 0; i < 23; ++i) {
    EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_TXTYPE, i), i < 21 ? i : 255) << i;
    EXPECT_EQ(inv.Text(INVSTATEMENT_PROP_TXTYPEDESCRIPTION, i), descriptions[i]) << i;
  }
  // The other tables: an edge of each, the unknown and the "other" codes.
  const RecordTypeTable *pos = &InvestmentPosition::kTypes, *oo = &OpenOrder::kTypes,
                        *bal = &InvestmentBalance::kTypes, *sec = &SecurityInfo::kTypes;
  const std::tuple<const RecordTypeTable*, const char*, int, const char*> rows[] = {
      {pos, "posstock", 4, "Stock"}, {pos, "OTHER", 255, "Other"}, {oo, "SWITCHMF", 10, "Switch to Mutual Fund"},
      {oo, "OOBUYDEBT", 0, "Buy Debt"}, {bal, "Percent", 1, "Percent"}, {bal, "RATIO", 255, "Other"},
      {sec, "STOCKINFO", 3, "Stock information"}, {sec, "OTHERINFO", 255, "Other information"},
  };


  for (const auto& [table, code, index, description] : rows) {
    EXPECT_EQ(table->IndexOf(code), index) << code;
    EXPECT_STREQ(table->Description(index), description) << code;
  }
}

TEST(InvStatementTest, Failures) {
  Inv inv;
  constexpr char kNoChild[] = "No such child.";
  const auto without = [&inv](const char* part, const char* with = "", const char* also = "") {
    return [&inv, part, with, also] { return inv.Respond(Replace(Replace(kStatement, part, with), also, "")); };
  };
  ExpectFailures(inv, {
      {[&inv] { return inv.Do(INVSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr); }, 2000,
       "Missing required field: Broker Id is missing in the request."},
      {[&] {
         inv.service().SetBrokerId("b");
         return inv.Do(INVSTATEMENT_METHOD_GETCLOSINGINFO, 0, nullptr, nullptr);
       },
       2000, "Missing required field: Account Number is missing in the request."},
      {without("<CURDEF>USD"), 2000, kExpectedElement},
      {without("<BROKERID>broker.example"), 2000, kExpectedElement},
      {without("<DTEND>20260131"), 2000, kExpectedElement},
      {without("<SHORTBALANCE>0"), 2000, kExpectedElement},
      {without("<UNITPRICE>50.5"), 202, "Required field missing: \"UNITPRICE\"."},
      {without("<FITID>T1"), 202, "Required field missing: \"FITID\"."},
      {without("<UNIQUEIDTYPE>CUSIP"), 202, "Required field missing: \"SECID/UNIQUEIDTYPE\"."},
      {without("<TRNAMT>1000"), 202, "Required field missing: \"TRNAMT\"."},
      {without("<CODE>0<SEVERITY>INFO</STATUS><INVSTMTRS>", "<CODE>2000<SEVERITY>ERROR</STATUS><INVSTMTRS>"), 2001,
       "OFX server error (2000): General error"},
      {without("<MKTVAL>510"), 202, "Required field missing: \"MKTVAL\"."},
      {without("<DESC>Settled cash"), 202, "Required field missing: \"DESC\"."},
      {without("<DURATION>GOODTILCANCEL"), 202, "Required field missing: \"DURATION\"."},
      {without("<SECNAME>Acme Corp"), 202, "Required field missing: \"SECNAME\"."},
      // Going into a part that is not there fails as the document's navigation does.
      {without("<INVBUY><INVTRAN><FITID>T1<DTTRADE>20260105<DTSETTLE>20260107<MEMO>buy</INVTRAN>", "<INVBUY>"), 208,
       kNoChild},
      {without("<OO>", "", "</OO>"), 208, kNoChild},
      {without("<SECINFO>", "", "</SECINFO>"), 208, kNoChild},
      {without("<UNIQUEID>123<UNIQUEIDTYPE>CUSIP</SECID><HELDINACCT>", "<UNIQUEIDTYPE>CUSIP</SECID><HELDINACCT>"), 208,
       kNoChild},
  });
  // A failed walk keeps what it read before the failure, the failed record
  // too, but none of that record's fields from the failure on.
  ASSERT_NE(inv.Respond(Replace(kStatement, "<MKTVAL>350", "")), 0);
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_TXCOUNT), 3);
  EXPECT_EQ(inv.Int(INVSTATEMENT_PROP_POSCOUNT), 2);
  // What is replaced and by what, then the failed record's fields, "|"-joined.
  const std::tuple<const char*, const char*, std::vector<int>, int, const char*> cut[] = {
      {"<TOTAL>-506", "",
       {INVSTATEMENT_PROP_TXSECURITYID, INVSTATEMENT_PROP_TXUNITPRICE, INVSTATEMENT_PROP_TXTOTAL,
        INVSTATEMENT_PROP_TXFITID, INVSTATEMENT_PROP_TXMEMO},
       0, "CUSIP:123|50.5|0.00||"},
      {"<MKTVAL>510", "", {INVSTATEMENT_PROP_POSACCOUNTTYPE, INVSTATEMENT_PROP_POSUNITS, INVSTATEMENT_PROP_POSSECURITYID},
       0, "CASH||"},
      // The type read before the missing UNIQUEID stays.
      {"<INVPOS><SECID><UNIQUEID>123", "<INVPOS><SECID>", {INVSTATEMENT_PROP_POSUNITS, INVSTATEMENT_PROP_POSSECURITYID},
       0, "10|CUSIP:"},
      {"<DESC>Settled cash", "", {INVSTATEMENT_PROP_BALNAME, INVSTATEMENT_PROP_BALAMOUNT}, 0, "Cash|"},
      {"<DURATION>GOODTILCANCEL", "", {INVSTATEMENT_PROP_OOSELLTYPE, INVSTATEMENT_PROP_OOUNITS}, 0, "SELL|"},
      {"<SECNAME>Acme Corp", "",
       {INVSTATEMENT_PROP_SECTICKER, INVSTATEMENT_PROP_SECSECURITYID, INVSTATEMENT_PROP_SECYIELD}, 0, "ACME||"},
  };
  for (const auto& [part, with, ids, index, expected] : cut) {
    ASSERT_NE(inv.Respond(Replace(kStatement, part, with)), 0) << part;
    std::string fields;
    for (int id : ids) fields += (fields.empty() ? "" : "|") + inv.Text(id, index);
    EXPECT_EQ(fields, expected) << part;
  }
}

TEST(InvStatementTest, EveryIndexedPropertyChecksItsIndex) {
  ExpectEveryId(InvStatementTables(), 109);
  Inv inv;
  ASSERT_EQ(inv.Respond(kStatement), 0) << inv.GetLastError();
  ExpectIndexedLists(
      inv, {{INVSTATEMENT_PROP_BALAGGREGATE, INVSTATEMENT_PROP_BALTYPEDESCRIPTION, 2, "Invalid BalIndex (out of bounds)."},
            {INVSTATEMENT_PROP_CLOSINGINFOAGGREGATE, INVSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE, 0,
             "Invalid ClosingInfoIndex (out of bounds)."},
            {INVSTATEMENT_PROP_OOAGGREGATE, INVSTATEMENT_PROP_OOUNITTYPE, 1, "Invalid OOIndex (out of bounds)."},
            {INVSTATEMENT_PROP_POSACCOUNTTYPE, INVSTATEMENT_PROP_POSUNITS, 2, "Invalid PosIndex (out of bounds)."},
            {INVSTATEMENT_PROP_SECAGGREGATE, INVSTATEMENT_PROP_SECYIELD, 2, "Invalid SecIndex (out of bounds)."},
            {INVSTATEMENT_PROP_TXAGGREGATE, INVSTATEMENT_PROP_TXUNITS, 3, "Invalid TxIndex (out of bounds)."}});
}

}  // namespace
}  // namespace orvelan
