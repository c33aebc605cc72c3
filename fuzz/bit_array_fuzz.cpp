// Reads arrays of bits one after the other from any stream, and compares them with a model on plain bytes.
// The input is the size of the array in bits, as a byte, and the stream.
#include "fuzz/bytes.h"
#include "vel_include/vel_util.h"

namespace fuzz::bit_array {

namespace {

/// The contents of an array. Intentional: its number of bytes never changes.
struct Model {
  explicit Model(std::uint64_t bits) : bitCount(bits), bytes(bits / 8 + 1, '\0') {}

  std::size_t usable() const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(bitCount / 8 + 1, bytes.size()));
  }
  bool test(std::uint64_t index) const {
    return index < bitCount && index / 8 < bytes.size() && (bytes[index / 8] >> index % 8 & 1) != 0;
  }
  /// False when the stream failed.
  bool read(std::string_view& stream) {
    const std::size_t wanted = usable();
    if (stream.size() < sizeof bitCount) {
      stream = {};
      return false;
    }
    std::memcpy(&bitCount, stream.data(), sizeof bitCount);
    stream.remove_prefix(sizeof bitCount);
    const std::size_t there = std::min(wanted, stream.size());
    std::memcpy(bytes.data(), stream.data(), there);
    stream.remove_prefix(there);
    return there == wanted;
  }
  std::string written() const {
    return std::string(reinterpret_cast<const char*>(&bitCount), sizeof bitCount) + bytes.substr(0, usable());
  }

  std::uint64_t bitCount;
  std::string bytes;
};

void requireEqual(const VelClBitArray& array, const Model& model) {
  std::ostringstream stream;
  array.write(stream);
  require({stream.good(), stream.str() == model.written()});
  require(array.getNumOfBits() == model.bitCount);
  std::size_t count = 0;
  for (std::size_t index = 0; index < model.bytes.size() * 8 + 9; ++index) {
    require(array.test(index) == model.test(index));
    count += model.test(index) ? 1U : 0U;
  }
  require(array.getNumOfSetBits() == count);
  for (const std::uint64_t index : {model.bitCount, model.bitCount - 1, ~std::uint64_t{0}})
    require(array.test(index) == model.test(index));
}

void run(Bytes input) {
  const std::size_t bits = input.byte();
  VelClBitArray array(bits);
  Model model(bits);
  std::string_view rest = input.rest();
  std::istringstream stream{std::string(rest)};
  for (int round = 0; round < 50; ++round) {
    array.read(stream);
    require(stream.good() == model.read(rest));
    requireEqual(array, model);
    if (!stream.good()) break;
    array.set(model.bitCount - 1);
    if (model.bitCount > 0 && (model.bitCount - 1) / 8 < model.bytes.size())
      model.bytes[(model.bitCount - 1) / 8] =
          static_cast<char>(model.bytes[(model.bitCount - 1) / 8] | 1 << (model.bitCount - 1) % 8);
  }
}

const Target target("bit_array", run);

}  // namespace

}  // namespace fuzz::bit_array
