// The sections and options of a file in any dialect, as plain values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/velini/dialect.h"
#include "vel_include/vel_inifile.h"

namespace vel::velini {

/// Names repeat in files. `counts` is true for the record that programs find: the first of its name in the
/// library's dialect, the last in the others.
struct Option {
  std::string name;
  std::string value;
  std::string comment;
  std::string key;  ///< see keyOf
  bool counts = true;

  bool operator==(const Option&) const = default;
};

struct Section {
  std::string name;
  std::vector<Option> options;
  std::string key;
  bool counts = true;

  bool operator==(const Section&) const = default;

  /// Returns the option that programs find under this key, or null.
  const Option* find(std::string_view optionKey) const;
};

struct Records {
  const Dialect* dialect = &kLibraryDialect;
  std::vector<Section> sections;

  /// Return the record that programs find under this name, or null.
  const Section* find(std::string_view name) const;
  const Option* find(const Section& section, std::string_view name) const;

  /// For dialects without repeated sections: makes the last option of each key count, and removes the section
  /// before the first header if it has no options.
  void complete();
};

Records recordsOf(const VelClIniFile& file);

}  // namespace vel::velini
