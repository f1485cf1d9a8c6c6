#pragma once
#include <string>
#include <vector>

#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"

namespace orvelan {

// The smallest service over the engine: a fixed bank statement request and a
// ParseResponse that only counts its calls (or fails on demand), so tests
// see exactly what the engine adds.
class TestOFXService : public OFXClient {
 public:
  static constexpr char kStatementRequest[] =
      "<STMTTRNRQ>\r\n<TRNUID>~0~\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n</BANKACCTFROM>\r\n"
      "</STMTRQ>\r\n</STMTTRNRQ>\r\n";

  int parse_calls = 0;
  int parse_result = 0;
  std::string root_at_parse;  // the cursor's path when ParseResponse ran

  int BuildMessageSets(ByteString& out, bool wrapped) override {
    ByteString trnuid;
    if (int rc = NewTransactionId(trnuid); rc != 0) return rc;
    RequestTemplate request;
    request.Load(kStatementRequest);
    const std::string_view arguments[] = {trnuid.View(), "123456789"};
    if (!wrapped) return request.Expand(out, arguments, 2, true);
    MessageSetTable::AppendOpen(out, MessageSetTable::kStatement);
    request.Expand(out, arguments, 2, false);
    return MessageSetTable::AppendClose(out, MessageSetTable::kStatement);
  }
  int ParseResponse() override {
    ++parse_calls;
    root_at_parse = Document().CurrentPath();
    return parse_result;
  }

  // Sets the fields CheckRequiredFields asks for.
  void SetCredentials() {
    SetOFXUser("user");
    SetOFXPassword("secret");
    SetOFXAppId("QWIN");
    SetOFXAppVersion("2500");
    SetFIOrganization("Test Bank");
  }
};

}  // namespace orvelan
