// Chooses the strict reader of a source.
#include "codepage/strict/strict_reader.h"

#include "codepage/strict/page_readers.h"
#include "codepage/strict/unicode_readers.h"

namespace vel::codepage {

Reader* makeReader(const VelClCCSID& source) {
  if (source.getCCSID() == VelClCCSID::CCSID_UTF8) return makeUtf8Reader(source);
  return source.isUCS2() ? makeUtf16Reader(source) : makePageReader(source);
}

}  // namespace vel::codepage
