// Tests bit arrays and their persistent form, also with streams that other programs wrote.
#include <bitset>

#include "platform/test/test.h"
#include "platform/test/watched_memory.h"
#include "vel_include/vel_util.h"

namespace {

std::string written(const VelClBitArray& array) {
  std::ostringstream stream;
  array.write(stream);
  return stream.str();
}

/// The form of an array with these bytes.
std::string form(std::uint64_t bitCount, const std::string& bytes) {
  std::string count(sizeof bitCount, '\0');
  std::memcpy(count.data(), &bitCount, sizeof bitCount);
  return count + bytes;
}

TEST(BitArray, AgreesWithABitset) {
  constexpr std::size_t kBits = 21;
  VelClBitArray array(kBits);
  std::bitset<kBits> model;
  for (std::size_t step = 0; step < 2000; ++step) {
    const std::size_t index = step * 7919 % 31;  // also past the end
    const auto change = step * 31 % 7 % 3;
    change == 0 ? array.set(index) : change == 1 ? array.reset(index) : array.flip(index);
    if (index < kBits) model[index] = change == 0 || (change == 2 && !model[index]);
    ASSERT_EQ(array.test(index), index < kBits && model.test(index)) << step;
    ASSERT_EQ(array.getNumOfSetBits(), model.count()) << step;
  }
  const unsigned long bits = model.to_ulong();
  EXPECT_EQ(written(array), form(21, {static_cast<char>(bits & 0xFF), static_cast<char>(bits >> 8 & 0xFF),
                                      static_cast<char>(bits >> 16 & 0xFF)}));
  array.resetAll();
  EXPECT_EQ(written(array), form(21, std::string(3, '\0')));
}

// A stream sets the number of bits, but the memory keeps its size: only bytes within both count.
TEST(BitArray, ReadsAnyStreamWithinItsMemory) {
  const vel::test::WatchedMemory memory;
  const std::string payload = "\x81\xFF\x42\x24";
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/read_bits.tsv")) {
    const std::uint64_t bits = std::stoull(row[0]), told = std::stoull(row[1]), length = std::stoull(row[2]);
    const std::uint64_t count = std::stoull(row[4]), setBits = std::stoull(row[5]);
    const std::string& bytes = row.at(6);
    SCOPED_TRACE(row[0] + " bits, told " + row[1] + ", in " + row[2] + " bytes");
    std::istringstream stream(form(told, payload).substr(0, length));
    VelClBitArray array(bits);
    array.read(stream);
    EXPECT_EQ(stream.good(), row[3] == "yes");
    EXPECT_EQ(array.getNumOfBits(), count);
    EXPECT_EQ(array.getNumOfSetBits(), setBits);
    for (const std::uint64_t beyond : {std::max<std::uint64_t>(count, 8 * bytes.size()), ~std::uint64_t{0}}) {
      array.set(beyond);
      EXPECT_FALSE(array.test(beyond)) << beyond;
    }
    EXPECT_EQ(written(array), form(count, bytes));
  }
  EXPECT_TRUE(memory.live.empty());
  // The bit count of a stream limits what the next one can change.
  std::istringstream stream(form(7, "ab") + form(15, "c"));
  VelClBitArray array(15);
  for (int times = 0; times < 2; ++times) array.read(stream);
  EXPECT_EQ(written(array), form(15, "cb"));
}

TEST(BitArray, ComparesBytesAndNotSizes) {
  VelClBitArray eight(8), fifteen(15);
  const VelClBitArray sixtyFour(64);
  EXPECT_TRUE(eight == fifteen);
  EXPECT_TRUE(eight == sixtyFour);
  // The other way round there are bytes to compare that the smaller array does not have.
  EXPECT_FALSE(sixtyFour == eight);
  fifteen.set(14);
  EXPECT_FALSE(eight == fifteen);
  EXPECT_FALSE(fifteen == eight);
  eight.set(0);
  EXPECT_FALSE(eight == sixtyFour);
  for (const std::uint64_t told : {7U, 127U}) {
    std::istringstream stream(form(told, std::string(2, '\0')));
    VelClBitArray read(15);
    read.read(stream);
    EXPECT_TRUE(read == VelClBitArray(told == 7 ? 7 : 15)) << told;
  }
}

TEST(BitArray, CopiesBitsAndSize) {
  VelClBitArray source(100), target(3);
  source.set(99);
  const VelClBitArray copy(source);
  target = source;
  source.resetAll();
  const VelClBitArray& same = target;
  target = same;
  EXPECT_TRUE(copy.test(99));
  EXPECT_TRUE(target.test(99));
  EXPECT_TRUE(target == copy);
  EXPECT_EQ(target.getNumOfBits(), 100U);
}

}  // namespace
