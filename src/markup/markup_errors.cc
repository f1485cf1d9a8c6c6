#include "markup/markup_errors.h"

#include "base/error_codes.h"

namespace orvelan {

const char* MarkupErrorText(int code) {
  switch (code) {
    case kErrInvalidNamespaceIndex: return "Invalid namespace index.";
    case kErrNoNamespaces: return "No namespaces available.";
    case kErrInvalidElementIndex: return "Invalid element index.";
    case kErrNoElements: return "No elements available.";
    case kErrOutOfMemory: return kTextOutOfMemory;
    case kErrUnbalancedTag: return "Unbalanced element tag.";
    case kErrBadElementPrefix: return "Unknown element prefix (can't find namespace).";
    case kErrBadAttributePrefix: return "Unknown attribute prefix (can't find namespace).";
    case kErrInvalidMarkup: return "Invalid XML markup.";
    case kErrInvalidEndState: return "Invalid end state for parser.";
    case kErrUnbalancedDocument: return "Document contains unbalanced elements.";
    case kErrInvalidPath: return "Invalid XPath.";
    case kErrNoSuchChild: return "No such child.";
    case kErrTopMismatch: return "Top element does not match start of path.";
    case kErrNoTree: return "DOM tree unavailable (set BuildDOM to TRUE and reparse).";
    case kErrMoreThanOneRoot: return "Invalid XML: the document has more than one root element.";
    case kErrTextOutsideRoot: return "Invalid XML: the document contains text outside the root element.";
    case kErrNoSubtree: return "Subtree not available unless KeepOriginalText is set.";
    case kErrUtf16: return "UTF-16 support not currently available.";
    default: return "xmlpimpl: unknown error";
  }
}

}  // namespace orvelan
