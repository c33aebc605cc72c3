// The IBAA random number generator: seeding, passes over its state, and scaling.
#include <bit>

#include "platform/clocks.h"
#include "vel_include/vel_util.h"

namespace {

constexpr std::uint32_t kStateSize = 256;
constexpr std::uint32_t kMaxNumber = 0xFFFFFFFF;

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
  // What an earlier pass left here would make equal seeds give different numbers.
  accumulator_ = 0;
  previous_ = 0;
  std::uint32_t fill = static_cast<std::uint32_t>(seed) | 1U;
  for (std::uint32_t& word : memory_) {
    fill = fill * 16807U - fill / 127773U * 2147483647U;
    word = fill;
  }
  ibaa();
}

void VelClRandomNumberGenerator::ibaa() const {
  // Copies that no store into an array can change stay in registers.
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

unsigned long VelClRandomNumberGenerator::getRandomNumber(unsigned long max) const {
  const double share = static_cast<double>(next()) / static_cast<double>(kMaxNumber);
  return static_cast<std::uint32_t>(share * static_cast<double>(static_cast<std::uint32_t>(max)));
}
