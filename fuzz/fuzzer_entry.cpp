// The entry point that the fuzzer calls.
#include "fuzz/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Target::all().front()->run(fuzz::Bytes(data, size));
  return 0;
}
