// Formats values as text: "0xFB/-5" for integers, "0x41/65/'A'" for those of one byte, "1.5" for floating
// point. Reading the values from a file is trace_formatter_run.cpp's work.
#include "trace/trace_data_text.h"

#include <cstring>
#include <iterator>
#include <limits>

#include "base/digits.h"
#include "util/dump_line.h"
#include "vel_include/vel_trace.h"

namespace vel::trace {
namespace {

struct ValueType {
  std::size_t size;  ///< in bytes; longer data is accepted, its surplus ignored
  void (*write)(TextBuffer& out, const std::uint8_t* bytes, std::size_t count);
};

// Byte by byte: values in a file are not aligned.
std::uint64_t littleEndian(const std::uint8_t* bytes, std::size_t count) {
  std::uint64_t number = 0;
  while (count > 0) number = number << 8 | bytes[--count];
  return number;
}

template <typename Float, typename Bits>
Float floatOf(Bits bits) {
  static_assert(sizeof(Float) == sizeof(Bits) && std::numeric_limits<Float>::is_iec559);
  Float number = 0;
  std::memcpy(&number, &bits, sizeof number);
  return number;
}

void writeHexadecimal(TextBuffer& out, std::uint64_t number) {
  out.append("0x");
  out.commit(writeHex(out.reserve(kMaxHexDigits), number));
}

template <std::size_t size, bool isSigned>
void writeInteger(TextBuffer& out, const std::uint8_t* bytes, std::size_t) {
  const std::uint64_t number = littleEndian(bytes, size);
  constexpr int kUnusedBits = 64 - 8 * static_cast<int>(size);
  writeHexadecimal(out, number);
  out.put('/');
  if (isSigned)
    // Moves the sign bit to the top and shifts it back arithmetically, which extends it.
    out.decimalSigned(static_cast<std::int64_t>(number << kUnusedBits) >> kUnusedBits);
  else
    out.decimal(number);
  if (size > 1) return;
  // Characters that cannot be printed are left out, not replaced.
  const char quoted[] = {'/', '\'', static_cast<char>(bytes[0]), '\''};
  if (vel::util::printableOrDot(bytes[0]) == quoted[2]) out.append({quoted, sizeof quoted});
}

void writeBoolean(TextBuffer& out, const std::uint8_t* bytes, std::size_t) {
  out.append(bytes[0] == 0 ? "FALSE" : "TRUE");
}

void writeFloat(TextBuffer& out, const std::uint8_t* bytes, std::size_t) {
  out.decimalFloat(floatOf<float>(static_cast<std::uint32_t>(littleEndian(bytes, 4))));
}

void writeDouble(TextBuffer& out, const std::uint8_t* bytes, std::size_t) {
  out.decimalFloat(floatOf<double>(littleEndian(bytes, 8)));
}

/// Decodes the x87's extended format: 64 bits of significand with an explicit leading bit, 15 bits of
/// exponent and a sign. Two kinds of encodings are normalised first. No processor since the 387 produces
/// them, but a file may contain them, and run-time libraries have gone wrong on both:
///
/// - An exponent other than 0 with a leading bit of 0 (unnormals, pseudo-infinities, pseudo-NaNs), which
///   processors refuse, becomes NaN.
/// - Exponent 0 with a leading bit of 1 (pseudo-denormals) becomes exponent 1, which means the same value.
///
/// See "Unsupported Double Extended-Precision Floating-Point Encodings and Pseudo-Denormals" in volume 1 of
/// the Intel 64 and IA-32 Architectures Software Developer's Manual.
long double decodeExtended(const std::uint8_t* bytes) {
  static_assert(std::numeric_limits<long double>::digits == 64, "long double is not the x87's");
  const bool leadingBit = littleEndian(bytes, 8) >> 63 != 0;
  const bool smallest = (littleEndian(bytes + 8, 2) & 0x7FFF) == 0;
  if (!leadingBit && !smallest) return std::numeric_limits<long double>::quiet_NaN();
  std::uint8_t normal[10];
  std::memcpy(normal, bytes, sizeof normal);
  if (leadingBit && smallest) normal[8] = 1;
  long double number = 0;
  std::memcpy(&number, normal, sizeof normal);
  return number;
}

void writeLongDouble(TextBuffer& out, const std::uint8_t* bytes, std::size_t count) {
  if (count == sizeof(double))
    writeDouble(out, bytes, count);
  else
    out.decimalFloat(decodeExtended(bytes));
}

// The rows are in the order of the data types, from BOOLEAN_VALUE on.
constexpr auto kFirstValueType = static_cast<unsigned int>(VelEnTraceDataType::BOOLEAN_VALUE);
constexpr ValueType kValueTypes[] = {
    {1, &writeBoolean},
    {1, &writeInteger<1, true>},
    {1, &writeInteger<1, false>},
    {2, &writeInteger<2, true>},
    {2, &writeInteger<2, false>},
    {4, &writeInteger<4, true>},
    {4, &writeInteger<4, false>},
    {8, &writeInteger<8, true>},
    {8, &writeInteger<8, false>},
    {4, &writeFloat},
    {8, &writeDouble},
    {8, &writeLongDouble},
};
constexpr unsigned int kLastValueType = kFirstValueType + std::size(kValueTypes) - 1;
constexpr auto kLongDouble = static_cast<unsigned int>(VelEnTraceDataType::LONG_DOUBLE);
static_assert(kLastValueType == kLongDouble, "the last row is not that of the last value type");

}  // namespace

bool isValueType(unsigned int type) {
  return type >= kFirstValueType && type <= kLastValueType;
}

bool fitsValue(unsigned int type, std::size_t count) {
  // A double, and the extended format without padding, with that of 32-bit systems and of 64-bit systems.
  if (type == kLongDouble) return count == 8 || count == 10 || count == 12 || count == 16;
  return count >= kValueTypes[type - kFirstValueType].size;
}

void writeValue(TextBuffer& out, unsigned int type, const std::uint8_t* bytes, std::size_t count) {
  kValueTypes[type - kFirstValueType].write(out, bytes, count);
}

std::uint32_t littleEndian32(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(littleEndian(bytes, 4));
}

}  // namespace vel::trace
