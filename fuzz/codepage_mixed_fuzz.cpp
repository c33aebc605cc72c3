// Any bytes through the tables of single and double bytes, as a whole and through each kind of loops, beside
// a slow conversion.
#include "codepage/kernels.h"
#include "codepage/test/reference_mixed.h"
#include "fuzz/conversion_run.h"

namespace {

void requireLoop(const vel::codepage::Kernels& kernels, const VelStDoubleByteTable& table,
                 const fuzz::Input& input) {
  const std::size_t room = input.room(input.source.size() * 2);
  const std::unique_ptr<char[]> in(new char[input.source.size()]);
  const std::unique_ptr<char[]> out(new char[room]);
  if (!input.source.empty()) std::memcpy(in.get(), input.source.data(), input.source.size());
  vel::codepage::Progress progress{in.get(), in.get() + input.source.size(), out.get(), out.get() + room};
  bool isDouble = false;
  if (table.isEbcdic != 0)
    kernels.decodeShifted(progress, table, isDouble);
  else
    kernels.decodeMixed(progress, table);
  const std::string source =
      std::string(static_cast<const char*>(in.get()), progress.source) + (isDouble ? "\x0F" : "");
  fuzz::require(Outcome{std::string(out.get(), progress.target), source.size()} ==
                referenceMixedToUcs2(table, source));
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
  requireLoop(vel::codepage::kPortableKernels, table, input);
  if (vel::codepage::vectorKernels() != nullptr) requireLoop(*vel::codepage::vectorKernels(), table, input);
  return 0;
}
