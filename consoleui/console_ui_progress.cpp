// The progress display: one line on standard error that is drawn over again.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "base/short_text.h"
#include "base/usage_text.h"
#include "platform/platform.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_helpers.h"

namespace {

constexpr double kSecondsBeforeShown = 1.0;
constexpr std::size_t kBarWidth = 30;
constexpr std::size_t kMaxLabelLength = 24;
constexpr int kStandardError = 2;

int32_t percentageOf(uint64_t done, uint64_t total) {
  if (done >= total) return 100;
  return static_cast<int32_t>(static_cast<double>(done) * 100.0 / static_cast<double>(total));
}

/// "   1:05 left", always as wide, so that it covers what stood there before.
void writeRemaining(double seconds) {
  constexpr double kLongest = 99 * 3600.0;
  const auto whole = static_cast<unsigned long>(std::lround(std::min(seconds, kLongest)));
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
  progressActive_ = !mustBeQuiet() && vel::platform::isTerminal(kStandardError);
}

void VelClConsoleUI::progressStep(unsigned long long count) {
  progressDone_ = count < progressTotal_ - progressDone_ ? progressDone_ + count : progressTotal_;
  if (!progressActive_) return;
  const int32_t percentage = percentageOf(progressDone_, progressTotal_);
  // The clock is read at most once per percent.
  if (percentage == progressShown_) return;
  const double passed = VelClTiming().wallClockTime() - progressStarted_;
  if (passed < kSecondsBeforeShown) return;
  progressShown_ = percentage;
  drawProgress(percentage, passed);
}

void VelClConsoleUI::progressStop() {
  if (progressActive_ && progressShown_ >= 0) {
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
  if (percentage > 0) writeRemaining(secondsPassed * (100.0 - percentage) / percentage);
  std::cerr.flush();
}
