// Implements the objects that hold a piece of memory or an address as one line of text. The layout of a line
// is in dump_line.h.
#include <algorithm>

#include "base/digits.h"
#include "util/dump_line.h"
#include "vel_include/vel_util.h"

namespace {

using vel::util::BinaryForm;
using vel::util::HexForm;
using vel::util::LineLayout;

// Buffers are left uninitialised after the NUL: clearing them would cost as much as writing a line.

/// Writes the data part at `out`, after the address if there is one, and the NUL. Bytes beyond one line are
/// left out.
template <typename Form>
void endLine(char* out, const void* data, size_t count) {
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  *vel::util::writeData<Form>(out, bytes, std::min(count, Form::kBytes)) = '\0';
}

}  // namespace

VelClStringRepresentationABase::~VelClStringRepresentationABase() = default;

VelClStrepHexDump::VelClStrepHexDump(const void* data, size_t count) {
  static_assert(sizeof text_ == LineLayout<HexForm>::kMaxLength + 1);
  endLine<HexForm>(text_, data, count);
}

VelClStrepHexDump::VelClStrepHexDump(size_t offset, const void* data, size_t count) {
  endLine<HexForm>(vel::util::writeAddress(text_, offset), data, count);
}

VelClStrepHexDump::~VelClStrepHexDump() = default;

const char* VelClStrepHexDump::getAsCString() const {
  return text_;
}

VelClStrepBinDump::VelClStrepBinDump(const void* data, size_t count) {
  static_assert(sizeof text_ == LineLayout<BinaryForm>::kMaxLength + 1);
  endLine<BinaryForm>(text_, data, count);
}

VelClStrepBinDump::VelClStrepBinDump(size_t offset, const void* data, size_t count) {
  endLine<BinaryForm>(vel::util::writeAddress(text_, offset), data, count);
}

VelClStrepBinDump::~VelClStrepBinDump() = default;

const char* VelClStrepBinDump::getAsCString() const {
  return text_;
}

VelClStrepAddress::VelClStrepAddress(const void* address) : text_{} {
  const auto number = reinterpret_cast<std::uintptr_t>(address);
  // Intentional: null is "0" without a prefix, as streams print it.
  char* out = text_;
  if (number != 0) {
    *out++ = '0';
    *out++ = 'x';
  }
  vel::writeHex(out, number, vel::kLowerHexDigits);
}

const char* VelClStrepAddress::getAsCString() const {
  return text_;
}
