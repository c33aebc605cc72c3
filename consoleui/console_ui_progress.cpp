// The progress display: one line on standard error, which is redrawn in place:
//
//   trace.trc [##########....................]  34%   0:12 left
//
// It appears only on a terminal and after a second, so that neither log files nor short tasks show it. Steps
// may be very frequent; a step that does not change the percentage costs a division and no more.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "base/short_text.h"
#include "base/usage_text.h"
#include "platform/descriptors.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_helpers.h"

namespace {

constexpr double kSecondsBeforeShown = 1.0;
constexpr std::size_t kBarWidth = 30;
constexpr std::size_t kMaxLabelLength = 24;

int32_t percentageOf(uint64_t done, uint64_t total) {
  if (done >= total) return 100;
  return static_cast<int32_t>(static_cast<double>(done) * 100.0 / static_cast<double>(total));
}

/// Writes "   1:05 left", minutes and seconds. The width never changes, so that the line covers the one
/// before.
void writeRemaining(double seconds) {
  constexpr double kMaxSeconds = 99 * 3600.0;
  const auto whole = static_cast<unsigned long>(std::lround(std::min(seconds, kMaxSeconds)));
  char text[32];
  std::snprintf(text, sizeof text, "%4lu:%02lu left", whole / 60, whole % 60);
  std::cerr << text;
}

}  // namespace

void VelClConsoleUI::progressStart(unsigned long long total, const char* label) {
  progressTotal_ = total;
  progressDone_ = 0;
  progressStarted_ = VelClTiming().wallClockTime();
  progressLabel_ = vel::textOrEmpty(label);
  progressShown_ = -1;
  progressActive_ = !mustBeQuiet() && vel::platform::isTerminal(vel::platform::kStandardError);
}

void VelClConsoleUI::progressStep(unsigned long long count) {
  // Compared by subtraction, which cannot overflow.
  progressDone_ = count < progressTotal_ - progressDone_ ? progressDone_ + count : progressTotal_;
  if (!progressActive_) return;
  const int32_t percentage = percentageOf(progressDone_, progressTotal_);
  // Reading the clock is a system call on some systems, so it is read at most once per percent.
  if (percentage == progressShown_) return;
  const double passed = VelClTiming().wallClockTime() - progressStarted_;
  if (passed < kSecondsBeforeShown) return;
  progressShown_ = percentage;
  drawProgress(percentage, passed);
}

void VelClConsoleUI::progressStop() {
  if (progressActive_ && progressShown_ >= 0) {
    // Drawn once more, with no time left, before the terminal goes to the next line.
    drawProgress(percentageOf(progressDone_, progressTotal_), 0);
    std::cerr << std::endl;
  }
  progressActive_ = false;
}

void VelClConsoleUI::drawProgress(int32_t percentage, double secondsPassed) const {
  const auto share = static_cast<std::size_t>(percentage);
  const std::size_t filled = kBarWidth * share / 100;
  char number[16];
  std::snprintf(number, sizeof number, "] %3d%%", static_cast<int>(percentage));
  std::cerr << '\r';
  std::cerr.write(progressLabel_,
                  static_cast<std::streamsize>(std::min(std::strlen(progressLabel_), kMaxLabelLength)));
  std::cerr << " [";
  vel::writeFill(std::cerr, filled, '#');
  vel::writeFill(std::cerr, kBarWidth - filled, '.');
  std::cerr << number;
  // The estimate assumes that the rest proceeds as fast as the part so far.
  if (percentage > 0) writeRemaining(secondsPassed * (100.0 - percentage) / percentage);
  std::cerr.flush();
}
