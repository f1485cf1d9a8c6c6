// A server's response reaches the engine's status checks, challenge reading
// and the service's walk before anyone has looked at it: no input may crash,
// hang or leak there. The engine never touches the network here; the first
// byte picks the engine state, the rest is the response.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ofx/ofx_client.h"

namespace {

using namespace orvelan;

// Reads the way a statement service does: every transaction status, a few
// fields of the statement, the index of a child.
class WalkingService : public OFXClient {
 public:
  int ParseResponse() override {
    MarkupDocument& doc = Document();
    for (const char* set : {"BANKMSGSRSV1", "CREDITCARDMSGSRSV1", "SIGNUPMSGSRSV1"}) {
      if (!doc.HasPath(set)) continue;
      doc.SelectPath(set);
      for (int32_t i = 1; i <= doc.ChildCount() && i <= 8; ++i) {
        ByteString step("[");
        step.AppendInt(i);
        step.AppendChar(']');
        CheckStatus(step.View());
        ByteString value;
        ReadField(doc, "TRNUID", value, false);
        ReadResponseValue(value, doc, "STMTRS/LEDGERBAL/BALAMT", false);
        FindChildIndex(doc, "/", "SIGNONMSGSRSV1");
        doc.SelectPath("/");
        doc.SelectPath(set);
      }
      doc.SelectPath("/");
    }
    return 0;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  static WalkingService* engine = [] {
    auto* e = new WalkingService;
    e->InitDefaults();
    return e;
  }();
  const uint8_t options = data[0];
  const std::string_view response(reinterpret_cast<const char*>(data + 1), size - 1);
  engine->SetMFAChallengePending((options & 1) != 0);
  if ((options & 2) == 0) engine->Challenges().Clear();
  if ((options & 4) != 0) {
    engine->SetData(response);
  } else {
    engine->ProcessResponse(response);
  }
  // What a host reads back afterwards.
  (void)engine->OFXResponse();
  (void)engine->ServerMessage();
  for (int32_t i = 0; i < engine->Challenges().Count() && i < 4; ++i) {
    if (MFAChallenge* c = engine->Challenges().Item(i)) (void)c->phrase_id.Length();
  }
  // Challenge lists grow across runs otherwise.
  if (engine->Challenges().Count() > 64) engine->Challenges().Clear();
  return 0;
}
