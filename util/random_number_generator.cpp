// Implements the IBAA random number generator (R. J. Jenkins, "ISAAC", Fast Software Encryption 1996):
// seeding, passes over the state, and scaling.
//
// The state is 256 words. One pass replaces every word and yields one result per word. The new word is the
// sum of a word that the old one selects (indirection), the accumulator and the previous result; the result
// is the sum of a word that the new one selects and the old word. Programs rely on equal seeds giving equal
// sequences, so no step may be changed. The numbers are not suited for keys: the seed has only 32 bits.
#include <bit>

#include "platform/clocks.h"
#include "vel_include/vel_util.h"

namespace {

constexpr std::uint32_t kStateSize = 256;
constexpr std::uint32_t kMaxNumber = 0xFFFFFFFF;

/// The indirection: the low bits of a word select a word of the state.
constexpr std::uint32_t stateIndex(std::uint32_t value) {
  return value % kStateSize;
}

}  // namespace

VelClRandomNumberGenerator::VelClRandomNumberGenerator()
    : VelClRandomNumberGenerator(vel::platform::tickCount()) {}

VelClRandomNumberGenerator::VelClRandomNumberGenerator(unsigned long seed) {
  init(seed);
}

void VelClRandomNumberGenerator::init(unsigned long seed) const {
  // Reset, because values left by an earlier pass would make equal seeds give different numbers.
  accumulator_ = 0;
  previous_ = 0;
  // A multiplicative congruential generator with Schrage's decomposition of 16807 * x mod (2^31 - 1).
  // Intentional: Schrage's correction of negative values is left out, the products wrap in 32 bits. The seed
  // is made odd, since 0 would fill the state with zeros.
  std::uint32_t fill = static_cast<std::uint32_t>(seed) | 1U;
  for (std::uint32_t& word : memory_) {
    fill = fill * 16807U - fill / 127773U * 2147483647U;
    word = fill;
  }
  ibaa();
}

void VelClRandomNumberGenerator::ibaa() const {
  // Local copies stay in registers: the compiler need not assume that a store into an array changes them.
  std::uint32_t accumulator = accumulator_;
  std::uint32_t previous = previous_;
  for (std::uint32_t i = 0; i < kStateSize; ++i) {
    const std::uint32_t old = memory_[i];
    accumulator = std::rotl(accumulator, 19) + memory_[stateIndex(i + kStateSize / 2)];
    const std::uint32_t fresh = memory_[stateIndex(old)] + accumulator + previous;
    memory_[i] = fresh;
    previous = memory_[stateIndex(fresh >> 8)] + old;
    results_[i] = previous;
  }
  accumulator_ = accumulator;
  previous_ = previous;
  unused_ = kStateSize;
}

std::uint32_t VelClRandomNumberGenerator::next() const {
  if (unused_ == 0) ibaa();
  return results_[--unused_];
}

unsigned long VelClRandomNumberGenerator::getRandomNumber() const {
  return next();
}

// Intentional: the scaled number is truncated, not rounded, so that only the largest number yields `max`
// itself. VelClRandomBitGenerator serves callers that need an even distribution.
unsigned long VelClRandomNumberGenerator::getRandomNumber(unsigned long max) const {
  const double share = static_cast<double>(next()) / static_cast<double>(kMaxNumber);
  return static_cast<std::uint32_t>(share * static_cast<double>(static_cast<std::uint32_t>(max)));
}
