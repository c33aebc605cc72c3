// Bits, their persistent form, and streams that belong to another array.
#include <gtest/gtest.h>

#include <bitset>
#include <sstream>
#include <string>

#include "vel_include/vel_util.h"

namespace {

std::string written(const VelClBitArray& array) {
  std::ostringstream stream;
  array.write(stream);
  return stream.str();
}

/// The form of an array with these bytes.
std::string form(char bitCount, const std::string& bytes) {
  return std::string(1, bitCount) + std::string(7, '\0') + bytes;
}

bool reads(VelClBitArray& array, const std::string& bytes, std::ptrdiff_t consumed) {
  std::istringstream stream(bytes);
  array.read(stream);
  const bool good = stream.good();
  stream.clear();
  EXPECT_EQ(stream.tellg(), consumed);
  return good;
}

TEST(BitArray, AgreesWithABitset) {
  constexpr std::size_t kBits = 21;
  VelClBitArray array(kBits);
  std::bitset<kBits> model;
  for (std::size_t step = 0; step < 2000; ++step) {
    const std::size_t index = step * 7919 % 31;  // also beyond the end
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

TEST(BitArray, ComparesBytesAndNotSizes) {
  VelClBitArray eight(8), fifteen(15);
  const VelClBitArray sixtyFour(64);
  EXPECT_TRUE(eight == fifteen && eight == sixtyFour);
  // The other way round there are bytes to compare that the smaller array does not have.
  EXPECT_FALSE(sixtyFour == eight);
  fifteen.set(14);
  EXPECT_FALSE(eight == fifteen || fifteen == eight);
  eight.set(0);
  EXPECT_FALSE(eight == sixtyFour);
}

TEST(BitArray, CopiesBitsAndSize) {
  VelClBitArray source(100), target(3);
  source.set(99);
  const VelClBitArray copy(source);
  target = source;
  source.resetAll();
  const VelClBitArray& same = target;
  target = same;
  EXPECT_TRUE(copy.test(99) && target.test(99) && target == copy);
  EXPECT_EQ(target.getNumOfBits(), 100U);
}

TEST(BitArray, TakesOneByteMoreForWholeBytesAndKeepsThemWhenItReadsAnotherSize) {
  for (const std::size_t bits : {0U, 7U, 8U, 15U, 16U, 800U})
    EXPECT_EQ(written(VelClBitArray(bits)).size(), 8 + bits / 8 + 1) << bits;
  VelClBitArray small(8);
  EXPECT_TRUE(reads(small, form(16, "\x81\x02\x03"), 10));
  EXPECT_EQ(small.getNumOfBits(), 16U);
  EXPECT_EQ(small.getNumOfSetBits(), 3U);
  EXPECT_EQ(written(small), form(16, "\x81\x02"));
  // Whatever number of bits a stream brings, no byte beyond the two is touched.
  const std::string huge(8, '\xFF');
  EXPECT_TRUE(reads(small, huge + "ab", 10));
  EXPECT_EQ(written(small), huge + "ab");
  EXPECT_EQ(small.getNumOfSetBits(), 6U);
  EXPECT_FALSE(small.test(16));
  small.set(100'000'000);
  EXPECT_TRUE(VelClBitArray(small) == small && !(small == VelClBitArray(0)));
  small.resetAll();
  EXPECT_EQ(written(small), huge + std::string(2, '\0'));
  EXPECT_TRUE(reads(small, form(3, "\xFF\xFF"), 10));
  EXPECT_EQ(small.getNumOfSetBits(), 3U);
  // Now only the one byte that 3 bits take is written and read.
  EXPECT_TRUE(reads(small, form(8, "Z?"), 9));
  EXPECT_EQ(written(small), form(8, "Z\xFF"));
}

TEST(BitArray, SaysThroughTheStreamThatItIsTooShort) {
  VelClBitArray array(16);
  array.set(3);
  EXPECT_FALSE(reads(array, "\x08", 1));
  EXPECT_EQ(written(array), form(16, {8, 0, 0}));
  EXPECT_FALSE(reads(array, form(16, "a"), 9));
  EXPECT_EQ(written(array), form(16, {'a', 0, 0}));
}

}  // namespace
