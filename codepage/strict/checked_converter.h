// Converters that throw when their route was chosen for lack of memory.
#pragma once

#include "codepage/icu/icu_page_codec.h"
#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// A converter whose constructor throws VelClExceptionFatal if memory ran out while it opened ICU's
/// converter. Without the exception it would have another route, or none, and its output would be different.
template <typename Converter>
class Checked : public Converter {
 public:
  explicit Checked(const VelClCCSID& ccsid) : Converter(ccsid) {
    if (this->getLastError().errorClass == VelEnErrorClass::OUT_OF_MEMORY) throwIcuOutOfMemory();
  }
};
using CheckedToUnicode = Checked<VelClCodePage2UnicodeConverter>;
using CheckedFromUnicode = Checked<VelClUnicode2CodePageConverter>;

}  // namespace vel::codepage
