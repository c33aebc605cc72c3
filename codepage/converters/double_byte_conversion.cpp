// Conversions from mixed single and double bytes to UCS-2 by table. There are two kinds of pages:
//
//   lead bytes (ASCII-based)    41 88 9F 42        "A", one pair, "B": byte 88 says that a pair begins
//   shifts (EBCDIC-based)       C1 0E 48 5C 0F C2  the pairs are between shift-out (0E) and shift-in (0F)
//
// A kernel converts a prefix as fast as it can; the walks below do the rest, character by character, and
// alone report errors. They serve the conversion and, before it, the count of the target bytes.
#include "codepage/converters/double_byte_conversion.h"

#include <cassert>

#include "codepage/kernels/kernels.h"
#include "codepage/tables/conversion_tables.h"

namespace {

using vel::codepage::Call;
using vel::codepage::Cursor;
using vel::codepage::DoubleByteTable;
using vel::codepage::kShiftIn;
using vel::codepage::kShiftOut;
using vel::codepage::kSingleBytesPage;
using vel::codepage::kUnitSize;

constexpr std::size_t kPageSize = 256;

const DoubleByteTable& tableOf(const Call& call) {
  return *static_cast<const DoubleByteTable*>(call.getConversionData());
}

/// Where a walk over the source stopped: at its end, or before an incomplete character.
struct WalkEnd {
  const unsigned char* position;
  bool isComplete;
};

const unsigned char* bytesAt(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

/// Walks over text with lead bytes from `start`, calling `single(byte)` or `pair(lead, trail)` for each
/// character. Stops before a lead byte at the very end.
template <typename Single, typename Pair>
WalkEnd walkAscii(const Call& call, const char* start, Single single, Pair pair) {
  const std::uint8_t* const leadBytes = tableOf(call).leadBytes;
  const unsigned char* position = bytesAt(start);
  const unsigned char* const end = bytesAt(*call.source) + call.sourceSize;
  while (position != end) {
    if (leadBytes[*position] == 0) {
      single(*position++);
      continue;
    }
    if (end - position < 2) return {position, false};
    pair(position[0], position[1]);
    position += 2;
  }
  return {position, true};
}

/// Walks over text with shifts from `start` in the mode `isDouble`, calling `single(byte)` or
/// `pair(lead, trail)` for each character. Stops before an incomplete pair; the end in
/// double-byte mode is incomplete even after a whole pair.
template <typename Single, typename Pair>
WalkEnd walkEbcdic(const Call& call, const char* start, bool isDouble, Single single, Pair pair) {
  const unsigned char* position = bytesAt(start);
  const unsigned char* const end = bytesAt(*call.source) + call.sourceSize;
  for (;; ++position, isDouble = false) {
    if (!isDouble) {
      // Intentional: a shift-in in single-byte mode is a character, with the unit that the table has for it.
      for (; position != end && *position != kShiftOut; ++position) single(*position);
      if (position == end) return {position, true};
      ++position;
    }
    // Only positions of lead bytes are compared: a trail byte can have the value of shift-in.
    const unsigned char* const lastPair = position + static_cast<std::size_t>(end - position) / 2 * 2;
    for (; position != lastPair && *position != kShiftIn; position += 2) pair(position[0], position[1]);
    if (position == end || *position != kShiftIn) return {position, false};
  }
}

/// Looks up characters and appends their units to the target, which is large enough for all of them.
template <bool foldsNextLine>
class UnitWriter {
 public:
  // Copies the table's pointers: the compiler must assume that a write to the target changes the table
  // itself, and would load them again for each character.
  UnitWriter(const DoubleByteTable& table, char* target)
      : units_(table.pages[0]), pageNumbers_(table.pageNumbers), target_(target) {}

  void single(unsigned char byte) {
    const std::uint16_t unit = vel::codepage::toHostOrder(units_[kSingleBytesPage * kPageSize + byte]);
    write(foldsNextLine && unit == vel::codepage::kNextLine ? vel::codepage::kLineFeed : unit);
  }
  // Pairs need no folding: generate_conversion_tables.py stops if a pair is U+0085.
  void pair(unsigned char lead, unsigned char trail) {
    write(vel::codepage::toHostOrder(units_[pageNumbers_[lead] * kPageSize + trail - kPageSize]));
  }
  char* end() const { return target_; }

 private:
  void write(std::uint16_t unit) {
    vel::codepage::writeUnit(target_, unit);
    target_ += kUnitSize;
  }

  const std::uint16_t* units_;
  const std::uint8_t* pageNumbers_;
  char* target_;
};

std::size_t finish(Call& call, const WalkEnd& walk, const char* targetEnd) {
  if (!walk.isComplete) call.setError(vel::codepage::kIncomplete);
  *call.source = reinterpret_cast<const char*>(walk.position);
  const auto written = static_cast<std::size_t>(targetEnd - call.target);
  assert(written <= call.targetSize);
  return written;
}

}  // namespace

size_t velConvertByTablesDBCS_ASCIItoUCS2(VelClConverterABase::_VelStConverter& call) {
  Cursor cursor = vel::codepage::cursorOf(call);
  vel::codepage::kernels().decodeMixed(cursor, tableOf(call));
  UnitWriter<false> units(tableOf(call), cursor.target);
  const WalkEnd walk = walkAscii(
      call, cursor.source, [&units](unsigned char byte) { units.single(byte); },
      [&units](unsigned char lead, unsigned char trail) { units.pair(lead, trail); });
  return finish(call, walk, units.end());
}

// Every call starts in single-byte mode: converters keep no state between calls.
size_t velConvertByTablesDBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call) {
  Cursor cursor = vel::codepage::cursorOf(call);
  bool isDouble = false;
  vel::codepage::kernels().decodeShifted(cursor, tableOf(call), isDouble);
  UnitWriter<true> units(tableOf(call), cursor.target);
  const WalkEnd walk = walkEbcdic(
      call, cursor.source, isDouble, [&units](unsigned char byte) { units.single(byte); },
      [&units](unsigned char lead, unsigned char trail) { units.pair(lead, trail); });
  return finish(call, walk, units.end());
}

// No route selects this function: ICU converts extended UNIX codes, and the library does not contain tables
// of them.
size_t velConvertByTablesEUCtoUCS2(VelClConverterABase::_VelStConverter&) {
  return 0;
}

namespace vel::codepage {

std::size_t sizeOfMixedAscii(const Call& call) noexcept {
  std::size_t units = 0;
  walkAscii(
      call, *call.source, [&units](unsigned char) { ++units; },
      [&units](unsigned char, unsigned char) { ++units; });
  return units * kUnitSize;
}

std::size_t sizeOfMixedEbcdic(const Call& call) noexcept {
  std::size_t units = 0;
  walkEbcdic(
      call, *call.source, false, [&units](unsigned char) { ++units; },
      [&units](unsigned char, unsigned char) { ++units; });
  return units * kUnitSize;
}

}  // namespace vel::codepage
