#include "codepage/test/reference_mixed.h"

std::string unitAt(const uint16_t* page, unsigned char index, bool foldsNextLine) {
  const auto* const bytes = reinterpret_cast<const char*>(page + index);
  const std::string unit = {bytes[1], bytes[0]};
  return foldsNextLine && unit == std::string("\x85\0", 2) ? std::string("\n\0", 2) : unit;
}

Outcome referenceMixedToUcs2(const VelStDoubleByteTable& table, std::string_view source) {
  const bool isShifted = table.isEbcdic != 0;
  bool isDouble = false;
  Outcome outcome;
  while (outcome.consumed < source.size()) {
    const auto byte = static_cast<unsigned char>(source[outcome.consumed]);
    if (isShifted && byte == (isDouble ? 0x0F : 0x0E)) {
      isDouble = !isDouble;
      ++outcome.consumed;
    } else if (isShifted ? !isDouble : table.leadBytes[byte] == 0) {
      outcome.bytes += unitAt(table.pages[1], byte, isShifted);
      ++outcome.consumed;
    } else if (source.size() - outcome.consumed < 2) {
      return incomplete(outcome.bytes, outcome.consumed);
    } else {
      const auto trail = static_cast<unsigned char>(source[outcome.consumed + 1]);
      outcome.bytes += unitAt(table.pages[table.pageNumbers[byte] - 1], trail, isShifted);
      outcome.consumed += 2;
    }
  }
  return isDouble ? incomplete(outcome.bytes, outcome.consumed) : outcome;
}
