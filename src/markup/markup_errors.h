#pragma once

#include "base/error_codes.h"

// The texts a host sees for the result codes of the parser, the tree and its
// path queries (the codes are in base/error_codes.h).
namespace orvelan {

// The fixed message of a code; "xmlpimpl: unknown error" for codes without one.
const char* MarkupErrorText(int code);

}  // namespace orvelan
