// Bits and their persistent form. What other streams do to an array is fuzz/bit_array_fuzz.cpp's matter.
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
  EXPECT_TRUE(eight == fifteen);
  EXPECT_TRUE(eight == sixtyFour);
  // The other way round there are bytes to compare that the smaller array does not have.
  EXPECT_FALSE(sixtyFour == eight);
  fifteen.set(14);
  EXPECT_FALSE(eight == fifteen);
  EXPECT_FALSE(fifteen == eight);
  eight.set(0);
  EXPECT_FALSE(eight == sixtyFour);
  // A stream changes the number of bits, but not the memory: only bytes that both limits allow count.
  for (const char bitCount : {'\x07', '\x7F'}) {
    std::istringstream stream(form(bitCount, std::string(2, '\0')));
    VelClBitArray read(15);
    read.read(stream);
    EXPECT_TRUE(read == VelClBitArray(bitCount == 7 ? 7 : 15)) << static_cast<int>(bitCount);
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
