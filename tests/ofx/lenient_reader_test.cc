#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/recording_events.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

constexpr char kSgmlHeader[] = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n";
constexpr char kSignon[] =
    "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20240115</SONRS>"
    "</SIGNONMSGSRSV1>";
std::string Statement(const std::string& inside) {
  return std::string(kSignon) + "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STMTRS><CURDEF>USD" + inside +
         "</STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";
}
const std::string kList = "<BANKTRANLIST><STMTTRN><TRNAMT>-1.5<FITID>7</STMTTRN></BANKTRANLIST>";

struct Case {
  const char* name;
  std::string document;
  std::vector<int> codes;  // the repairs fired, in order
  const char* first_at;    // where the first repair is, as text of the document
  const char* path;        // below STMTRS, present once repaired
  int strict = 0;          // ProcessResponse without LenientReading
};

const Case kCases[] = {
    {"clean SGML", kSgmlHeader + Statement(kList), {}, nullptr, "BANKTRANLIST/STMTTRN/FITID"},
    {"clean XML",
     "<?xml version=\"1.0\"?>\n<?OFX OFXHEADER=\"200\" VERSION=\"211\"?>\n<!-- made by us -->\n" + Statement(kList),
     {}, nullptr, "BANKTRANLIST/STMTTRN"},
    {"vendor aggregate", Statement("<X.EXT><A>1<B>2</X.EXT>" + kList), {2100}, "<X.EXT>", "X.EXT/B", 201},
    {"vendor aggregate in XML", Statement("<INV401K>\n<!-- c --><A>1</A></INV401K>"), {2100}, "<INV401K>",
     "INV401K/A", 201},
    {"missing </BANKTRANLIST>", Statement("<BANKTRANLIST><STMTTRN><TRNAMT>1</STMTTRN><LEDGERBAL><BALAMT>2</LEDGERBAL>"),
     {2101}, "</STMTRS>", "BANKTRANLIST/STMTTRN/TRNAMT", 201},
    {"two aggregates left open", Statement("<BANKTRANLIST><STMTTRN><TRNAMT>1"), {2101, 2101}, "</STMTRS>",
     "BANKTRANLIST/STMTTRN/TRNAMT", 201},
    {"header written as tags", "<OFXHEADER>100\r\n<DATA>OFXSGML</DATA>\r\n<VERSION>102\r\n" + Statement(kList),
     {2102}, "<OFXHEADER>", "BANKTRANLIST"},
    {"header inside a comment", "<!--\r\nOFXHEADER:100\r\nDATA:OFXSGML\r\n-->\r\n" + Statement(kList), {2103},
     "<!--", "BANKTRANLIST"},
    {"XML declaration before SGML", "<?xml version=\"1.0\"?>\r\n" + (kSgmlHeader + Statement(kList)), {2104},
     "<?xml", "BANKTRANLIST"},
    {"blank lines before the header", "\r\n\r\n" + (kSgmlHeader + Statement(kList)), {2105}, "\r\n",
     "BANKTRANLIST"},
    {"junk before the header", "HTTP/1.1 200 OK\r\n<html>\r\n" + (kSgmlHeader + Statement(kList)), {2105},
     "HTTP", "BANKTRANLIST"},
    {"everything at once",
     "\n<?xml version=\"1.0\"?>\n" + (kSgmlHeader + Statement("<X.EXT><A>1</X.EXT><BANKTRANLIST><STMTTRN></STMTTRN>")),
     {2105, 2104, 2100, 2101}, "\n", "X.EXT/A", 201},
};

// Each repair fires Error with its code and the byte where it was made; the
// setting off, nothing is repaired and nothing learned stays registered.
TEST(LenientReaderTest, RepairsWhatBanksSendAndReportsEachRepair) {
  TestOFXService service;
  RecordingEvents events;
  ASSERT_EQ(service.InitDefaults(), 1);
  service.SetEventSink(&events);
  const char* out = "";
  const std::string tags = (service.Config("ExtraTags", out), out);
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    for (const char* setting : {"LenientReading=False", "LenientReading=True"}) {
      events.log.clear();
      service.Config(setting, out);
      const bool lenient = setting[15] == 'T';
      ASSERT_EQ(service.ProcessResponse(c.document), lenient ? 0 : c.strict) << setting << service.GetLastError();
      if (!lenient) {
        EXPECT_TRUE(events.log.empty());
        continue;
      }
      EXPECT_EQ(service.root_at_parse, "/OFX");
      EXPECT_TRUE(service.Document().HasPath(std::string("/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/") + c.path));
      ASSERT_EQ(events.log.size(), c.codes.size());
      for (size_t i = 0; i < c.codes.size(); ++i) {
        EXPECT_EQ(events.log[i].substr(0, 11), "Error(" + std::to_string(c.codes[i]) + ",") << events.log[i];
      }
      if (c.first_at != nullptr) {
        const std::string at = " (byte " + std::to_string(c.document.find(c.first_at)) + ").)";
        EXPECT_EQ(events.log[0].substr(events.log[0].size() - at.size()), at) << events.log[0];
      }
      EXPECT_EQ((service.Config("ExtraTags", out), std::string(out)), tags);
    }
  }
}

TEST(LenientReaderTest, RepairTextsNameWhatWasDone) {
  TestOFXService service;
  RecordingEvents events;
  ASSERT_EQ(service.InitDefaults(), 1);
  service.SetEventSink(&events);
  const char* out = "";
  service.Config("LenientReading=1", out);
  const std::string document = "junk\r\n" + Statement("<X.EXT><A>1</X.EXT><BANKTRANLIST>");
  ASSERT_EQ(service.ProcessResponse(document), 0) << service.GetLastError();
  const std::string at = std::to_string(document.find("</STMTRS>"));
  EXPECT_EQ(events.log, (std::vector<std::string>{
                            "Error(2105,4 bytes of text before <OFX> skipped: \"junk\" (byte 0).)",
                            "Error(2100,Aggregate X.EXT learned from the document (byte " +
                                std::to_string(document.find("<X.EXT>")) + ").)",
                            "Error(2101,End tag </BANKTRANLIST> missing, written in before </STMTRS> (byte " + at +
                                ").)",
                        }));
}

}  // namespace
}  // namespace orvelan
