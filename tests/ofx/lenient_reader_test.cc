#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/recording_events.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

constexpr char kHeader[] = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n";
std::string Statement(const std::string& inside) {
  return "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS></SONRS></SIGNONMSGSRSV1>"
         "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STMTRS><CURDEF>USD" +
         inside + "</STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";
}
const std::string kList = "<BANKTRANLIST><STMTTRN><TRNAMT>-1.5</STMTTRN></BANKTRANLIST>";

struct Case {
  std::string document;
  std::vector<int> codes;  // the repairs fired, in order
  const char* first;       // the first repair's text before " (byte N)."
  const char* at;          // the text at byte N
  const char* path;        // below STMTRS once repaired
};
const Case kCases[] = {
    {Statement("<X.EXT> <!-- c --><A>1<B>2</X.EXT>" + kList), {2100}, "Aggregate X.EXT learned from the document",
     "<X.EXT>", "X.EXT/B"},
    {Statement("<BANKTRANLIST><STMTTRN><TRNAMT>1</STMTTRN><LEDGERBAL><BALAMT>2</LEDGERBAL>"), {2101},
     "End tag </BANKTRANLIST> missing, written in before </STMTRS>", "</STMTRS>", "BANKTRANLIST/STMTTRN/TRNAMT"},
    {"<OFXHEADER>100\r\n<DATA>OFXSGML</DATA>\r\n" + Statement(kList), {2102}, "Header written as tags skipped",
     "<OFXHEADER>", "BANKTRANLIST"},
    {"HTTP/1.1 200 OK\r\n<html>\r\n<!--\r\nOFXHEADER:100\r\n-->\r\n" + Statement(kList), {2105, 2103},
     "21 bytes of text before <OFX> skipped: \"HTTP/1.1 200 OK\"", "HTTP", "BANKTRANLIST"},
    {"\r\n<?xml version=\"1.0\"?>\n" + (kHeader + Statement("<X.EXT><A>1</X.EXT><BANKTRANLIST><STMTTRN><TRNAMT>1")),
     {2105, 2104, 2100, 2101, 2101}, "White space before the header skipped", "\r\n", "BANKTRANLIST/STMTTRN/TRNAMT"},
};

// Each repair fires Error with its code, its text and the byte where it was
// made, and nothing learned from one document stays for the next.
TEST(LenientReaderTest, RepairsWhatBanksSendAndReportsEachRepair) {
  TestOFXService service;
  RecordingEvents events;
  ASSERT_EQ(service.InitDefaults(), 1);
  service.SetEventSink(&events);
  const char* out = "";
  const std::string tags = (service.Config("ExtraTags", out), out);
  service.Config("LenientReading=1", out);
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.document);
    events.log.clear();
    ASSERT_EQ(service.ProcessResponse(c.document), 0) << service.GetLastError();
    EXPECT_TRUE(service.Document().HasPath(std::string("/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/") + c.path));
    ASSERT_EQ(events.log.size(), c.codes.size());
    for (size_t i = 0; i < c.codes.size(); ++i) {
      std::string want = "Error(" + std::to_string(c.codes[i]) + ",";
      if (i == 0) want += c.first + (" (byte " + std::to_string(c.document.find(c.at)) + ").)");
      EXPECT_EQ(i == 0 ? events.log[i] : events.log[i].substr(0, want.size()), want);
    }
    EXPECT_EQ((service.Config("ExtraTags", out), std::string(out)), tags);
  }
}

}  // namespace
}  // namespace orvelan
