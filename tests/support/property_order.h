#pragma once
#include <algorithm>
#include <string>
#include <vector>

#include "core/property_table.h"

namespace orvelan::testing {

inline std::string Lower(std::string text) {
  for (char& c : text) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

// The names of a component's properties in the order its ids must follow:
// case-insensitive alphabetical, a list's count property directly before the
// list's indexed members (alphabetical among themselves), and the firewall
// properties together in their fixed order.
template <class S>
std::vector<std::string> ExpectedIdOrder(const std::vector<PropertyDef<S>>& properties) {
  static const std::vector<std::string> kFirewall = {"FirewallAutoDetect", "FirewallType",  "FirewallHost",
                                                     "FirewallPassword",   "FirewallPort",  "FirewallUser"};
  struct Key {
    std::string group;
    int rank;
    std::string name;
  };
  std::vector<Key> keys;
  for (const PropertyDef<S>& p : properties) {
    const std::string name = p.name;
    Key key{Lower(name), 0, name};
    auto firewall = std::find(kFirewall.begin(), kFirewall.end(), name);
    if (firewall != kFirewall.end()) {
      key.group = Lower(kFirewall.front());
      key.rank = static_cast<int>(firewall - kFirewall.begin());
    } else if (p.check_index != nullptr) {
      // The list's count is the longest "<prefix>Count" whose prefix starts this name.
      std::string best;
      for (const PropertyDef<S>& q : properties) {
        const std::string count = q.name;
        if (count.size() < 5 || count.compare(count.size() - 5, 5, "Count") != 0) continue;
        const std::string prefix = count.substr(0, count.size() - 5);
        if (name.compare(0, prefix.size(), prefix) == 0 && count.size() > best.size()) best = count;
      }
      key.group = Lower(best);
      key.rank = 1;
    }
    keys.push_back(key);
  }
  std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
    if (a.group != b.group) return a.group < b.group;
    if (a.rank != b.rank) return a.rank < b.rank;
    return Lower(a.name) < Lower(b.name);
  });
  std::vector<std::string> names;
  for (const Key& k : keys) names.push_back(k.name);
  return names;
}

}  // namespace orvelan::testing
