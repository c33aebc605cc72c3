// Conversions from mixed single and double bytes to UCS-2 by the tables.
#include <cassert>

#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"

namespace {

using vel::codepage::Call;
using vel::codepage::DoubleByteTable;
using vel::codepage::kUnitSize;

constexpr unsigned char kShiftOut = 0x0E;  ///< to double bytes
constexpr unsigned char kShiftIn = 0x0F;   ///< to single bytes
constexpr std::size_t kSingleBytesPage = 1;
constexpr std::size_t kPageSize = 256;

const DoubleByteTable& tableOf(const Call& call) {
  return *static_cast<const DoubleByteTable*>(call.getConversionData());
}

/// Where a walk over the source stopped.
struct WalkEnd {
  const unsigned char* position;
  bool isComplete;
};

/// Calls `single(byte)` or `pair(lead, trail)` for each character. A lead byte without a trail is not passed.
template <typename Single, typename Pair>
WalkEnd walkAscii(const Call& call, Single single, Pair pair) {
  const std::uint8_t* const leadBytes = tableOf(call).leadBytes;
  const auto* position = reinterpret_cast<const unsigned char*>(*call.source);
  const unsigned char* const end = position + call.sourceSize;
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

/// The same between shifts. No shift state is kept between calls: every walk begins with single bytes.
template <typename Single, typename Pair>
WalkEnd walkEbcdic(const Call& call, Single single, Pair pair) {
  const auto* position = reinterpret_cast<const unsigned char*>(*call.source);
  const unsigned char* const end = position + call.sourceSize;
  while (position != end) {
    // Shift-in counts as a character among single bytes. Keep.
    for (; position != end && *position != kShiftOut; ++position) single(*position);
    if (position == end) return {position, true};
    ++position;
    // Only the lead byte's place is looked at: a trail byte can have the value of shift-in.
    const unsigned char* const lastPair = position + static_cast<std::size_t>(end - position) / 2 * 2;
    for (; position != lastPair && *position != kShiftIn; position += 2) pair(position[0], position[1]);
    if (position == end || *position != kShiftIn) return {position, false};
    ++position;
  }
  return {position, true};
}

/// Writes looked-up units to the target.
template <bool foldsNextLine>
class Writer {
 public:
  // Members instead of the table: what is written could change the table, as far as the compiler knows.
  Writer(const DoubleByteTable& table, char* target)
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
  Writer<false> writer(tableOf(call), call.target);
  const WalkEnd walk = walkAscii(
      call, [&writer](unsigned char byte) { writer.single(byte); },
      [&writer](unsigned char lead, unsigned char trail) { writer.pair(lead, trail); });
  return finish(call, walk, writer.end());
}

size_t velConvertByTablesDBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call) {
  Writer<true> writer(tableOf(call), call.target);
  const WalkEnd walk = walkEbcdic(
      call, [&writer](unsigned char byte) { writer.single(byte); },
      [&writer](unsigned char lead, unsigned char trail) { writer.pair(lead, trail); });
  return finish(call, walk, writer.end());
}

size_t velConvertByTablesEUCtoUCS2(VelClConverterABase::_VelStConverter&) {
  return 0;
}

namespace vel::codepage {

std::size_t sizeOfMixedAscii(const Call& call) noexcept {
  std::size_t units = 0;
  walkAscii(
      call, [&units](unsigned char) { ++units; }, [&units](unsigned char, unsigned char) { ++units; });
  return units * kUnitSize;
}

std::size_t sizeOfMixedEbcdic(const Call& call) noexcept {
  std::size_t units = 0;
  walkEbcdic(
      call, [&units](unsigned char) { ++units; }, [&units](unsigned char, unsigned char) { ++units; });
  return units * kUnitSize;
}

}  // namespace vel::codepage
