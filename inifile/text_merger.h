// Merges the options of one file into the text of another.
#pragma once

#include "foundation/allocator.h"
#include "inifile/first_records.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

/// Whether a search by name finds options in this section.
inline bool hasOptions(const VelClIniFile& file, const VelClIniFileSection& section) {
  return section.getFirstOption() != nullptr && isFirst(file, section);
}

/// Returns `text` with the options of `source`. `model` must be what the parser reads from `text`. Values are
/// replaced, their continuation lines removed, missing options added after the last line of their section,
/// and missing sections at the end. Of names that repeat in `source` only the first counts.
String mergedText(Span text, bool allowContinuation, const VelClIniFile& model, const VelClIniFile& source);

}  // namespace vel::inifile
