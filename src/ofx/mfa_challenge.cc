#include "ofx/mfa_challenge.h"

#include <new>

namespace orvelan {

MFAChallenge* MFAChallenge::Clone() const {
  auto* copy = new (std::nothrow) MFAChallenge;
  if (copy == nullptr) return nullptr;
  if (copy->challenge.Assign(challenge) != kOk || copy->phrase_id.Assign(phrase_id) != kOk ||
      copy->phrase_label.Assign(phrase_label) != kOk || copy->answer.Assign(answer) != kOk) {
    delete copy;
    return nullptr;
  }
  return copy;
}

}  // namespace orvelan
