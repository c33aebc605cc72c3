// Conversions from mixed single and double bytes to UCS-2 by the tables.
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

/// Where a walk over the source stopped.
struct WalkEnd {
  const unsigned char* position;
  bool isComplete;
};

const unsigned char* bytesAt(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

/// Calls `single(byte)` or `pair(lead, trail)` for each character. A lead byte without a trail is not passed.
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

/// The same between shifts.
template <typename Single, typename Pair>
WalkEnd walkEbcdic(const Call& call, const char* start, bool isDouble, Single single, Pair pair) {
  const unsigned char* position = bytesAt(start);
  const unsigned char* const end = bytesAt(*call.source) + call.sourceSize;
  for (;; ++position, isDouble = false) {
    if (!isDouble) {
      // Shift-in counts as a character among single bytes. Keep.
      for (; position != end && *position != kShiftOut; ++position) single(*position);
      if (position == end) return {position, true};
      ++position;
    }
    // Only the lead byte's place is looked at: a trail byte can have the value of shift-in.
    const unsigned char* const lastPair = position + static_cast<std::size_t>(end - position) / 2 * 2;
    for (; position != lastPair && *position != kShiftIn; position += 2) pair(position[0], position[1]);
    if (position == end || *position != kShiftIn) return {position, false};
  }
}

/// Writes looked-up units to the target.
template <bool foldsNextLine>
class UnitWriter {
 public:
  // Members instead of the table: what is written could change the table, as far as the compiler knows.
  UnitWriter(const DoubleByteTable& table, char* target)
      : units_(table.pages[0]), pageNumbers_(table.pageNumbers), target_(target) {}

  void single(unsigned char byte) {
    const std::uint16_t unit = vel::codepage::toHostOrder(units_[kSingleBytesPage * kPageSize + byte]);
    write(foldsNextLine && unit == vel::codepage::kNextLine ? vel::codepage::kLineFeed : unit);
  }
  // No table has a double-byte next line: the generator sees to it.
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

// No shift state is kept between calls: every one begins with single bytes.
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
