// Finds the names that a message source declares.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Compares ASCII text without regard to case.
struct PrecedesIgnoringCase {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return toAsciiLower(x) < toAsciiLower(y); });
  }
};

/// The indexes of names in a vector of the model.
class NameIndex {
 public:
  /// `Entries` are a vector of records with a name.
  template <typename Entries>
  explicit NameIndex(const Entries& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) add(entries[i].name, i);
  }

  void add(std::string_view name, std::size_t index) { indexes_.emplace(name, index); }
  /// Returns kNoName if the name is unknown.
  std::size_t find(std::string_view name) const {
    const auto found = indexes_.find(name);
    return found == indexes_.end() ? kNoName : found->second;
  }

 private:
  std::map<std::string, std::size_t, PrecedesIgnoringCase> indexes_;
};

}  // namespace vel::velmsg
