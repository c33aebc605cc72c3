// Where a section and one of its options stand in a text. Lines are told apart as the parser does it.
#pragma once

#include "foundation/allocator.h"
#include "inifile/line_source.h"
#include "inifile/option_text.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

/// A line with its end, and the value in it.
struct ValueLine {
  Span whole;
  Span value;
  bool hasComment = false;
};

struct SectionLayout {
  Span header{nullptr, nullptr};     ///< with the line's end; begin is null without such a section
  const char* contentEnd = nullptr;  ///< behind the last line that is neither blank nor a comment
  Span separator{nullptr, nullptr};  ///< what stands between name and value of the section's last option
  Vector<ValueLine> option;  ///< the option's line and those that continue it; none without such an option

  bool isFound() const noexcept { return header.begin != nullptr; }
};

/// The first section and option of the names; a null option is not looked for.
SectionLayout findLayout(Span text, const char* section, const char* option, bool allowContinuation);

}  // namespace vel::inifile
