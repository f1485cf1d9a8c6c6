// A response reaches a service's reader, and then the host reads every
// property back, indexed ones at every position the reader claims: no
// input may crash, hang or leak on the way. The first byte picks the
// service and whether the response is read leniently.
#include <cstddef>
#include <cstdint>
#include <memory>

#include "harness.h"
#include "services/account_component.h"
#include "services/bank_statement_component.h"
#include "services/bank_transfer_component.h"
#include "services/bill_payment_component.h"
#include "services/cc_statement_component.h"
#include "services/fi_profile_component.h"
#include "services/inv_statement_component.h"
#include "services/loan_statement_component.h"
#include "services/ofx_batch_component.h"

namespace {

using namespace orvelan;

struct Reader {
  virtual ~Reader() = default;
  virtual void Read(std::string_view response, bool lenient) = 0;
};

template <class Component>
struct ReaderOf : Reader {
  Component component{nullptr, nullptr};
  void Read(std::string_view response, bool lenient) override {
    component.service().Reset();
    const char* out = nullptr;
    component.service().Config(lenient ? "LenientReading=True" : "LenientReading=False", out);
    component.service().SetData(response);
    int length = 0;
    for (const auto& p : component.tables().Properties()) {
      if (p.get == nullptr) continue;
      if (p.check_index == nullptr) {
        component.Get(p.id, 0, &length);
        continue;
      }
      // Past the count as well: the check must refuse what the list lacks.
      for (int index : {-1, 0, 1, 2, 3, 64}) component.Get(p.id, index, &length);
    }
  }
};

// One object per service, reset before each input so that what one input
// read cannot shape the next: a finding must reproduce from its input alone.
// (Creating the objects afresh costs more than all the reading.)
Reader* Pick(uint8_t which) {
  static std::unique_ptr<Reader> readers[9];
  std::unique_ptr<Reader>& slot = readers[which % 9];
  if (slot == nullptr) {
    switch (which % 9) {
      case 0: slot = std::make_unique<ReaderOf<BankStatementComponent>>(); break;
      case 1: slot = std::make_unique<ReaderOf<CCStatementComponent>>(); break;
      case 2: slot = std::make_unique<ReaderOf<LoanStatementComponent>>(); break;
      case 3: slot = std::make_unique<ReaderOf<InvStatementComponent>>(); break;
      case 4: slot = std::make_unique<ReaderOf<AccountComponent>>(); break;
      case 5: slot = std::make_unique<ReaderOf<FIProfileComponent>>(); break;
      case 6: slot = std::make_unique<ReaderOf<BankTransferComponent>>(); break;
      case 7: slot = std::make_unique<ReaderOf<BillPaymentComponent>>(); break;
      default: slot = std::make_unique<ReaderOf<OFXBatchComponent>>(); break;
    }
  }
  return slot.get();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Input in;
  if (!fuzz::Split(data, size, in, false)) return 0;
  Pick(in.options & 15)->Read(in.body, (in.options & 16) != 0);
  return 0;
}
