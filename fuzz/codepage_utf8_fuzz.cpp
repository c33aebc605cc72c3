// Any bytes as UTF-8 and as UCS-2, as a whole and through each kind of loops, beside slow conversions.
#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_utf8.h"
#include "fuzz/conversion_run.h"

namespace {

using vel::codepage::Cursor;
using vel::codepage::Kernels;
using Reference = Outcome (*)(std::string_view source, std::size_t room);

void requireKernel(void (*loop)(Cursor&) noexcept, Reference reference, std::string_view source,
                   std::size_t room) {
  const Outcome done = runKernel(loop, source, room);
  fuzz::require(done == reference(source.substr(0, done.consumed), room));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const VelClCodePage2UnicodeConverter from{VelClCCSID(1208)};
  static const VelClUnicode2CodePageConverter to{VelClCCSID(1208)};
  const fuzz::Input input(data, size);
  const std::string_view source = input.source;
  const std::size_t room = input.room(source.size() * 2);
  fuzz::require(convert(from, source, room) == referenceUtf8ToUcs2(source, room));
  fuzz::require(convert(to, source, room) == referenceUcs2ToUtf8(source, room));
  for (const Kernels* const kernels : {&vel::codepage::kPortableKernels, vel::codepage::vectorKernels()}) {
    if (kernels == nullptr) continue;
    requireKernel(kernels->decodeUtf8, &referenceUtf8ToUcs2, source, room);
    requireKernel(kernels->encodeUtf8, &referenceUcs2ToUtf8, source.substr(0, source.size() / 2 * 2), room);
  }
  return 0;
}
