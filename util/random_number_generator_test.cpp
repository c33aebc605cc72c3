// Compares the generator with numbers of an independent model, and tests its scaling and its use with
// <random>.
#include <cmath>

#include "platform/test/test.h"
#include "vel_include/vel_util.h"

namespace {

static_assert(std::uniform_random_bit_generator<VelClRandomBitGenerator> &&
              VelClRandomBitGenerator::min() == 0 && VelClRandomBitGenerator::max() == 0xFFFFFFFF);

TEST(RandomNumberGenerator, AgreesWithTheModel) {
  std::ifstream file(VEL_RANDOM_NUMBERS);
  std::string word;
  std::getline(file, word);
  for (int sequence = 0; sequence < 3; ++sequence) {
    unsigned long seed = 0, expected = 0;
    file >> word >> std::dec >> seed >> std::hex;
    const VelClRandomNumberGenerator generator(seed);
    for (int i = 0; i < 1000; ++i) {
      ASSERT_TRUE(file >> expected);
      ASSERT_EQ(generator.getRandomNumber(), expected) << seed << " number " << i;
    }
  }
}

TEST(RandomNumberGenerator, IgnoresTheLowestBitOfTheSeedOnly) {
  const auto first = [](unsigned long seed) { return VelClRandomNumberGenerator(seed).getRandomNumber(); };
  EXPECT_EQ(first(6), first(7));
  for (const unsigned long other : {4UL, 8UL}) EXPECT_NE(first(6), first(other));
}

TEST(RandomNumberGenerator, ScalesByTruncationAndConsumesOneNumber) {
  for (const unsigned long max : {0UL, 1UL, 6UL, 1000UL, 0x80000000UL, 0xFFFFFFFFUL}) {
    const VelClRandomNumberGenerator plain(99), scaled(99);
    for (int i = 0; i < 300; ++i) {
      const double share = static_cast<double>(plain.getRandomNumber()) / 4294967295.0;
      EXPECT_EQ(static_cast<double>(scaled.getRandomNumber(max)),
                std::floor(share * static_cast<double>(max)));
    }
  }
}

TEST(RandomNumberGenerator, ServesTheStandardDistributions) {
  const VelClRandomNumberGenerator numbers(4711), same(4711);
  VelClRandomBitGenerator bits(numbers);
  for (int i = 0; i < 600; ++i) ASSERT_EQ(bits(), same.getRandomNumber());
}

// The clock advances during the test, so a generator that ignores it fails.
TEST(RandomNumberGenerator, SeedsItselfFromTheClock) {
  const unsigned long first = VelClRandomNumberGenerator().getRandomNumber();
  EXPECT_TRUE(vel::test::waitUntil([&] { return VelClRandomNumberGenerator().getRandomNumber() != first; }));
}

}  // namespace
