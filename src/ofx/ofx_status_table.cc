#include "ofx/ofx_status_table.h"

#include <algorithm>
#include <iterator>

namespace orvelan {
namespace {

struct StatusText {
  int32_t code;
  const char* text;
};

// Sorted by code for the binary search below.
constexpr StatusText kStatusTexts[] = {
    {1, "Client is up-to-date ."},
    {2000, "General error"},
    {2001, "Invalid account"},
    {2002, "General account error"},
    {2003, "Account not found"},
    {2004, "Account closed"},
    {2005, "Account not authorized"},
    {2006, "Source account not found"},
    {2007, "Source account closed"},
    {2008, "Source account not authorized"},
    {2009, "Destination account not found"},
    {2010, "Destination account closed"},
    {2011, "Destination account not authorized"},
    {2012, "Invalid amount"},
    {2014, "Date too soon"},
    {2015, "Date too far in future"},
    {2016, "Already committed"},
    {2017, "Already canceled"},
    {2018, "Unknown server ID"},
    {2019, "Duplicate request"},
    {2020, "Invalid date"},
    {2021, "Unsupported version"},
    {2022, "Invalid TAN"},
    {2023, "Unknown FITID. BILLID not found in the billing message sets."},
    {2025, "Branch ID missing. This is required for this country system."},
    {2026, "Bank name does not match Bank ID."},
    {2027, "Invalid date range."},
    {2028,
     "Requested element unknown (WARNING). One or more elements of the request were not recognized by the server "
     "or the server (as noted in the FI Profile) does not support the elements. The server executed the element "
     "transactions it understood and supported."},
    {3000,
     "MFA Challenge authentication required. User credentials are correct, but further authentication is required "
     "by your FI. Please call RequestChallengeQuestions method in FIProfile component."},
    {3001, "MFA Challenge answers contain invalid information."},
    {6500, "<REJECTIFMISSING>Y invalid without <TOKEN>."},
    {6501,
     "Embedded transactions in request failed to process: Out of date (WARNING). <REJECTIFMISSING>Y and embedded "
     "transactions appeared in the request sync wrapper and the provided <TOKEN> was out of date."},
    {6502, "Unable to process embedded transaction due to out-of-date Token."},
    {10000, "Stop check in process (INFO)."},
    {10500, "Too many checks to process"},
    {10501, "Invalid payee"},
    {10502, "Invalid payee address"},
    {10503, "Invalid payee account number"},
    {10504, "Insufficient funds"},
    {10505, "Cannot modify element"},
    {10506, "Cannot modify source account"},
    {10507, "Cannot modify destination account"},
    {10508, "Invalid frequency"},
    {10509, "Model already canceled"},
    {10510, "Invalid payee ID"},
    {10511, "Invalid payee city"},
    {10512, "Invalid payee state"},
    {10513, "Invalid payee postal code"},
    {10514, "Bank payment already processed"},
    {10515, "Payee not modifiable by client"},
    {10516, "Wire beneficiary invalid"},
    {10517, "Invalid payee name"},
    {10518, "Unknown model ID"},
    {10519, "Invalid payee list ID"},
    {10600, "Table type not found. The specified table type is not recognized or does not exist."},
    {12250, "Investment transaction download not supported"},
    {12251, "Investment position download not supported"},
    {12252, "Investment positions for specified date not available"},
    {12253, "Investment open order download not supported"},
    {12254, "Investment balances download not supported"},
    {12255, "401(k) not available for this account."},
    {12500, "One or more securities not found"},
    {13000, "User ID & password will be sent out-of-band (INFO)"},
    {13500, "Unable to enroll user"},
    {13501, "User already enrolled"},
    {13502, "Invalid service"},
    {13503, "Cannot change user information"},
    {13504, "FI information is missing or invalid in <SONRQ>."},
    {14500, "1099 forms not available for the tax year requested."},
    {14501, "1099 forms not available for user ID."},
    {14600, "W2 forms not available for the tax year requested."},
    {14601, "W2 forms not available for user ID."},
    {14700, "1098 forms not available for the tax year requested."},
    {14701, "1098 forms not available for user ID."},
    {15000, "Must change user password"},
    {15500, "Signon (user ID or password) invalid"},
    {15501, "Customer account already in use"},
    {15502, "USERPASS lockout"},
    {15503, "Could not change password"},
    {15504, "Could not provide random data"},
    {15505, "Server does not support the country specified in the <COUNTRY> field of the <SONRQ> aggregate."},
    {15506, "Empty signon transaction not supported."},
    {15507, "Signon invalid without supporting pin change request."},
    {15508, "Transaction not authorized."},
    {15509, "Multiple accounts not supported . 1-Way server does not support returning multiple accounts in response."},
    {15510, "CLIENTUID error."},
    {15511, "User should contact financial institution."},
    {15512, "OFX server requires AUTHTOKEN in signon during the next session."},
    {15513, "AUTHTOKEN invalid."},
    {16500, "HTML not allowed"},
    {16501, "Unknown mail To:"},
    {16502, "Invalid URL"},
    {16503, "Unable to get URL"},
    {16510, "Image not available yet. Try again later."},
    {16511, "Image expired and is no longer available."},
    {16512, "Image Reference Identifier not found."},
    {16513, "Image server not available. Try again later."},
};

constexpr bool IsSorted() {
  for (size_t i = 1; i < std::size(kStatusTexts); ++i) {
    if (kStatusTexts[i - 1].code >= kStatusTexts[i].code) return false;
  }
  return true;
}
static_assert(IsSorted(), "the lookup is a binary search");

}  // namespace

const char* OFXStatusTable::Text(int32_t code) {
  const auto* end = std::end(kStatusTexts);
  const auto* found = std::lower_bound(std::begin(kStatusTexts), end, code,
                                       [](const StatusText& entry, int32_t c) { return entry.code < c; });
  return found != end && found->code == code ? found->text : "Unknown server error.";
}

}  // namespace orvelan
