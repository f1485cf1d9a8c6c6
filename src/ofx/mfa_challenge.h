#pragma once
#include <cstdint>

#include "base/byte_string.h"

// One question of a multi-factor challenge: what the server sent and the
// answer the host gives. The engine appends one per MFACHALLENGE of a
// challenge response and sends the answers with the next sign-on.
namespace orvelan {

struct MFAChallenge {
  static constexpr int32_t kAnswerKindCount = 4;
  // The answer kinds a challenge may ask for, as OFX names them.
  static constexpr const char* kAnswerKinds[kAnswerKindCount] = {"ALPHAONLY", "NUMERICONLY", "ALPHAORNUMERIC",
                                                                 "ALPHAANDNUMERIC"};

  // A heap copy for ItemList; null when memory runs out.
  MFAChallenge* Clone() const;

  ByteString challenge;     // the MFACHALLENGE element as received
  ByteString phrase_id;     // MFAPHRASEID
  ByteString phrase_label;  // MFAPHRASELABEL
  ByteString answer;        // set by the host, sent as MFAPHRASEA
};

}  // namespace orvelan
