// Implements sleeping, time stamps and the stopwatch on top of the platform's clocks.
#include <utility>

#include "platform/clocks.h"
#include "vel_include/vel_helpers.h"

namespace {

/// Sleeps for `count` units. The milliseconds wrap in 32 bits on every system, as unsigned long is only that
/// large on Windows: 1194 hours become 57 minutes.
void sleepUnits(unsigned long count, std::uint32_t millisecondsPerUnit) {
  vel::platform::sleepMilliseconds(static_cast<std::uint32_t>(count) * millisecondsPerUnit);
}

}  // namespace

void velSleepMilliSeconds(unsigned long count) {
  sleepUnits(count, 1);
}

void velSleepSeconds(unsigned long count) {
  sleepUnits(count, 1000);
}

void velSleepMinutes(unsigned long count) {
  sleepUnits(count, 60 * 1000);
}

void velSleepHours(unsigned long count) {
  sleepUnits(count, 60 * 60 * 1000);
}

unsigned long velGetTimeStamp(void) {
  return vel::platform::tickCount();
}

VelClTiming::VelClTiming() {
  init(true);
  start();
}

// The frequency is fixed from boot, so it is read once per object. 0 means that the system does not provide a
// counter; all times are 0 then.
void VelClTiming::init(bool readFrequency) {
  frequency_ = readFrequency ? vel::platform::performanceFrequency() : 0;
  start_ = 0.0;
}

double VelClTiming::wallClockTime() const {
  std::int64_t counter = 0;
  if (frequency_ == 0 || !vel::platform::performanceCounter(counter)) return 0.0;
  return static_cast<double>(counter) / static_cast<double>(frequency_);
}

void VelClTiming::start() {
  start_ = wallClockTime();
}

double VelClTiming::elapsed() const {
  return wallClockTime() - start_;
}

// Reads the clock once, so that successive laps add up without gaps.
double VelClTiming::restart() {
  const double now = wallClockTime();
  return now - std::exchange(start_, now);
}
