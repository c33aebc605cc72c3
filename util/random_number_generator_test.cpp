// The generator against numbers that an independent model made, its scaling, and its use with <random>.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "vel_include/vel_util.h"

namespace {

static_assert(std::uniform_random_bit_generator<VelClRandomBitGenerator>);

struct Sequence {
  unsigned long seed;
  std::vector<unsigned long> numbers;
};

std::vector<Sequence> modelSequences() {
  std::vector<Sequence> all;
  std::ifstream file(VEL_RANDOM_NUMBERS);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    if (line.starts_with("seed ")) {
      all.push_back({std::stoul(line.substr(5)), {}});
    } else if (!line.starts_with("#") && !all.empty()) {
      words >> std::hex;
      for (unsigned long number = 0; words >> number;) all.back().numbers.push_back(number);
    }
  }
  return all;
}

TEST(RandomNumberGenerator, GivesTheModelsNumbers) {
  const std::vector<Sequence> sequences = modelSequences();
  ASSERT_EQ(sequences.size(), 3U);
  for (const Sequence& expected : sequences) {
    ASSERT_EQ(expected.numbers.size(), 1000U);
    const VelClRandomNumberGenerator generator(expected.seed);
    std::vector<unsigned long> numbers;
    for (std::size_t i = 0; i < expected.numbers.size(); ++i) numbers.push_back(generator.getRandomNumber());
    EXPECT_EQ(numbers, expected.numbers) << expected.seed;
  }
}

TEST(RandomNumberGenerator, TakesEvenAndOddSeedsAlikeAndOthersNot) {
  const VelClRandomNumberGenerator even(6);
  const VelClRandomNumberGenerator odd(7);
  const VelClRandomNumberGenerator other(8);
  int differences = 0;
  for (int i = 0; i < 600; ++i) {
    const unsigned long number = even.getRandomNumber();
    EXPECT_EQ(number, odd.getRandomNumber()) << i;
    differences += number != other.getRandomNumber() ? 1 : 0;
  }
  EXPECT_GT(differences, 590);
}

TEST(RandomNumberGenerator, ScalesByTruncationAndConsumesOneNumber) {
  for (const unsigned long max : {0UL, 1UL, 6UL, 1000UL, 0x80000000UL, 0xFFFFFFFFUL}) {
    const VelClRandomNumberGenerator plain(99);
    const VelClRandomNumberGenerator scaled(99);
    for (int i = 0; i < 300; ++i) {
      const double share = static_cast<double>(plain.getRandomNumber()) / 4294967295.0;
      EXPECT_EQ(static_cast<double>(scaled.getRandomNumber(max)),
                std::floor(share * static_cast<double>(max)))
          << max << " number " << i;
    }
  }
}

TEST(RandomNumberGenerator, ServesTheStandardDistributions) {
  const VelClRandomNumberGenerator numbers(4711);
  VelClRandomBitGenerator bits(numbers);
  std::uniform_int_distribution<int> die(1, 6);
  int counts[7] = {};
  for (int i = 0; i < 6000; ++i) ++counts[die(bits)];
  for (int face = 1; face <= 6; ++face) EXPECT_NEAR(counts[face], 1000, 150) << face;
}

// The tick moves on while generators are made, so a generator that ignored it would be noticed.
TEST(RandomNumberGenerator, SeedsItselfFromTheClock) {
  const unsigned long first = VelClRandomNumberGenerator().getRandomNumber();
  bool differs = false;
  for (int i = 0; i < 2'000'000 && !differs; ++i)
    differs = VelClRandomNumberGenerator().getRandomNumber() != first;
  EXPECT_TRUE(differs);
}

}  // namespace
