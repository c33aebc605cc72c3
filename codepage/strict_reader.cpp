// Chooses the strict reader of a source.
#include "codepage/strict_reader.h"

#include "codepage/page_readers.h"
#include "codepage/unicode_readers.h"

namespace vel::codepage {

Reader* makeReader(const VelClCCSID& source) {
  if (source.getCCSID() == VelClCCSID::CCSID_UTF8) return makeUtf8Reader(source);
  return source.isUCS2() ? makeUtf16Reader(source) : makePageReader(source);
}

}  // namespace vel::codepage
