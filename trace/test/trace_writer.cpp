// Traces 10,000 numbered entries: its key is its first argument.
#include <cstdint>
#include <string>

#include "vel_include/vel_trace.h"

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  velTraceCreateInstance(argv[1], nullptr);
  for (std::uint32_t number = 0; number < 10'000; ++number)
    velTraceDump(VelEnTraceDetail::LOW, 7, VelEnTraceDataType::UNSIGNED_32, argv[1],
                 std::string(number % 300, 'x').c_str(), &number, sizeof number);
  velTraceFlush();
  return velTraceGetLostBytes() == 0 ? 0 : 2;
}
