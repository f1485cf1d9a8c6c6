#pragma once
// Generated bank statements, OFX 1.x SGML and OFX 2.x XML, shared by the
// markup and engine benchmarks so that their figures compare.
#include <string>

namespace orvelan {

inline std::string Statement(int transactions, bool xml) {
  std::string s;
  const char* nl = "\r\n";
  // Leaves end with an end tag in XML and with the line end in SGML.
  const auto leaf = [&](const char* name, const std::string& value) {
    s += "<";
    s += name;
    s += ">";
    s += value;
    if (xml) {
      s += "</";
      s += name;
      s += ">";
    }
    s += nl;
  };
  if (xml) {
    s += "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
         "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n";
  } else {
    s += "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
         "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n";
  }
  s += "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n";
  leaf("CODE", "0");
  leaf("SEVERITY", "INFO");
  s += "</STATUS>\r\n";
  leaf("DTSERVER", "20240131120000.000[-5:EST]");
  leaf("LANGUAGE", "ENG");
  s += "</SONRS>\r\n</SIGNONMSGSRSV1>\r\n<BANKMSGSRSV1>\r\n<STMTTRNRS>\r\n";
  leaf("TRNUID", "1001");
  s += "<STATUS>\r\n";
  leaf("CODE", "0");
  leaf("SEVERITY", "INFO");
  s += "</STATUS>\r\n<STMTRS>\r\n";
  leaf("CURDEF", "USD");
  s += "<BANKACCTFROM>\r\n";
  leaf("BANKID", "121000248");
  leaf("ACCTID", "0123456789");
  leaf("ACCTTYPE", "CHECKING");
  s += "</BANKACCTFROM>\r\n<BANKTRANLIST>\r\n";
  leaf("DTSTART", "20240101");
  leaf("DTEND", "20240131");
  for (int i = 0; i < transactions; ++i) {
    s += "<STMTTRN>\r\n";
    leaf("TRNTYPE", i % 4 == 0 ? "CREDIT" : "DEBIT");
    leaf("DTPOSTED", "202401" + std::to_string(10 + i % 20) + "120000.000[-5:EST]");
    leaf("TRNAMT", (i % 4 == 0 ? "" : "-") + std::to_string(10 + i % 990) + "." + std::to_string(10 + i % 90));
    leaf("FITID", "2024011" + std::to_string(1000000 + i));
    if (i % 5 == 0) leaf("CHECKNUM", std::to_string(1000 + i));
    leaf("NAME", i % 3 == 0 ? "GROCERY STORE #" + std::to_string(i % 700) : "ONLINE PAYMENT THANK YOU");
    if (i % 2 == 0) leaf("MEMO", "POS PURCHASE &amp; CASH BACK " + std::to_string(i));
    s += "</STMTTRN>\r\n";
  }
  s += "</BANKTRANLIST>\r\n<LEDGERBAL>\r\n";
  leaf("BALAMT", "1234.56");
  leaf("DTASOF", "20240131");
  s += "</LEDGERBAL>\r\n</STMTRS>\r\n</STMTTRNRS>\r\n</BANKMSGSRSV1>\r\n</OFX>\r\n";
  return s;
}

inline const std::string& CachedStatement(int transactions, bool xml) {
  static std::string cache[2][3];
  const int slot = transactions >= 100000 ? 2 : transactions >= 10000 ? 1 : 0;
  std::string& s = cache[xml ? 1 : 0][slot];
  if (s.empty()) s = Statement(transactions, xml);
  return s;
}

}  // namespace orvelan
