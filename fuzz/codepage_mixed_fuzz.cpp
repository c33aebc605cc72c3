// Any bytes through the tables of single and double bytes, as a whole and through each kind of loops, beside
// a slow conversion.
#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_mixed.h"
#include "fuzz/conversion_run.h"

namespace {

void requireKernel(const vel::codepage::Kernels& kernels, const VelStDoubleByteTable& table,
                   const fuzz::Input& input) {
  bool isDouble = false;
  Outcome done = runMixed(kernels, table, input.source, input.room(input.source.size() * 2), isDouble);
  const std::string part = std::string(input.source.substr(0, done.consumed)) + (isDouble ? "\x0F" : "");
  done.consumed = part.size();
  fuzz::require(done == referenceMixedToUcs2(table, part));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr unsigned int kPages[] = {930, 948, 301, 927, 939, 941, 1351, 1394, 4930, 4933, 5039};
  const fuzz::Input input(data, size);
  const unsigned int page = kPages[input.choice % std::size(kPages)];
  bool isEbcdic = false;
  const VelStDoubleByteTable& table = *velGetDBCStoUCS2Table(page, isEbcdic);
  fuzz::requireAll(VelClCodePage2UnicodeConverter(VelClCCSID(static_cast<int>(page))), input,
                   referenceMixedToUcs2(table, input.source));
  requireKernel(vel::codepage::kPortableKernels, table, input);
  if (vel::codepage::vectorKernels() != nullptr) requireKernel(*vel::codepage::vectorKernels(), table, input);
  return 0;
}
