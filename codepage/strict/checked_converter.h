// Converters that strict conversion can rely on.
#pragma once

#include "codepage/icu/icu_page_codec.h"
#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// A converter whose constructor throws VelClExceptionFatal when there was not enough memory to find out
/// whether ICU has the page: the converter would choose another route then, or none, and write other bytes.
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
