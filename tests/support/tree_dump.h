#pragma once
#include <cstring>
#include <string>

#include "markup/document_tree.h"

namespace orvelan::testing {

// A compact picture of an element and its subtree: NAME=text(CHILD,CHILD).
inline std::string DumpElement(DocumentTree& tree, uint32_t e) {
  std::string out = tree.QualifiedName(e);
  if (*tree.Text(e) != '\0') out += std::string("=") + tree.Text(e);
  const int32_t n = tree.ChildCount(e);
  for (int32_t i = 1; i <= n; ++i) {
    out += i == 1 ? "(" : ",";
    out += DumpElement(tree, tree.ChildAt(e, i));
  }
  if (n > 0) out += ")";
  return out;
}

// Every top-level element, separated by spaces; "" for an empty tree.
inline std::string DumpTree(DocumentTree& tree) {
  std::string out;
  for (uint32_t e = tree.Top(); e != 0 && e < tree.Size();) {
    if (!out.empty()) out += " ";
    out += DumpElement(tree, e);
    uint32_t next = 0;
    std::memcpy(&next, tree.Arena() + e + 8, 4);
    if (next == 0) break;
    // Skip to the next top-level E record (past P records).
    while (next < tree.Size() && tree.Arena()[next] == 'P') {
      uint32_t size;
      std::memcpy(&size, tree.Arena() + next + 4, 4);
      next += size;
    }
    e = (next < tree.Size() && tree.Arena()[next] == 'E') ? next : 0;
  }
  return out;
}

}  // namespace orvelan::testing
