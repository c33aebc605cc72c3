// Finds the sections and options of a text by the rules of a dialect, with their places.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/velini/records.h"
#include "tools/velini/text_faults.h"
#include "tools/velini/text_lines.h"

namespace vel::velini {

struct SectionPlace {
  std::string name;
  std::string key;
  Range header;   ///< with its line break, unless an option is in the same line; empty without a header
  Range written;  ///< the text between the brackets
  std::size_t contentEnd;  ///< the end of the last line that is neither blank nor a comment
};

struct OptionPlace {
  Option option;
  std::size_t section;
  Range whole;  ///< the lines of the option, or its part of the line of a header
  Range name;
  Range value;
  std::vector<Range> comments;  ///< comment lines within `whole`, which do not belong to the option
  bool isBare;                  ///< without a separator
  bool isInHeader;              ///< in the line of a header
};

struct Layout {
  std::vector<SectionPlace> sections;
  std::vector<OptionPlace> options;
  std::vector<Fault> faults;
};

Layout layoutOf(const Dialect& dialect, std::string_view text);

/// Returns the records; sections of the same name are one section.
Records recordsOf(const Dialect& dialect, const Layout& layout);

}  // namespace vel::velini
