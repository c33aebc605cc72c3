// The report of a failed assertion. It is the library's last resort: it allocates nothing, throws nothing
// and never returns.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "platform/environment.h"
#include "platform/processes.h"
#include "platform/system.h"
#include "vel_include/vel_error.h"

namespace {

/// The texts that make up the report, which are the caller's: copying all of them would take memory.
class Report {
 public:
  Report& operator<<(const char* text) noexcept {
    pieces_[count_++] = text;
    return *this;
  }
  const char* const* pieces() const noexcept { return pieces_; }
  std::size_t count() const noexcept { return count_; }

 private:
  const char* pieces_[16];  ///< as many as `buildReport` adds at most
  std::size_t count_ = 0;
};

struct Decimal {
  char text[24];
  explicit Decimal(long long value) noexcept { std::snprintf(text, sizeof text, "%lld", value); }
};

/// The numbers must live as long as the report.
void buildReport(Report& report, const char* expression, const char* module, const Decimal& line,
                 const Decimal& process, const char* function, const char* message) noexcept {
  // "OCCURED" is the report's established spelling. Keep.
  report << "\n*** INTERNAL ERROR OCCURED ***\n";
  if (message != nullptr) {
    report << "*** " << message << " ***\n";
    // Only together with a message. Keep.
    if (function != nullptr) report << "***         FUNCTION: " << function << "\n";
  }
  report << "*** ASSERTION FAILED: " << vel::textOrEmpty(expression);
  report << "\n***             LINE: " << line.text;
  report << "\n***           MODULE: " << vel::textOrEmpty(module);
  report << "\n***       PROCESS ID: " << process.text << "\n\n";
}

/// Writes to standard error: short reports at once, so that other threads' output does not come between.
class ErrorOutput {
 public:
  ~ErrorOutput() { flush(); }
  void append(const char* text) noexcept {
    for (std::size_t left = std::strlen(text); left > 0;) {
      if (used_ == sizeof buffer_) flush();
      const std::size_t size = std::min(left, sizeof buffer_ - used_);
      std::memcpy(buffer_ + used_, text, size);
      used_ += size;
      text += size;
      left -= size;
    }
  }

 private:
  void flush() noexcept {
    std::fwrite(buffer_, 1, used_, stderr);
    std::fflush(stderr);
    used_ = 0;
  }

  char buffer_[4096];
  std::size_t used_ = 0;
};

void write(const Report& report) noexcept {
  ErrorOutput output;
  for (std::size_t i = 0; i < report.count(); ++i) output.append(report.pieces()[i]);
  output.append("\n");
}

/// Only the process's first assertion asks the environment; every later one shows the window. Keep.
bool mayShowWindow() noexcept {
  static bool wasAsked = false;
  if (wasAsked) return true;
  wasAsked = true;
  return !vel::isEnabledValue(vel::platform::settingValue("VEL_NO_ASSERT_POPUP"));
}

}  // namespace

void vel__assert_msg(const char* expression, const char* module, unsigned int line, const char* function,
                     const char* message) {
  const Decimal lineText(line);
  const Decimal process(static_cast<std::int32_t>(vel::platform::currentProcessId()));
  Report report;
  buildReport(report, expression, module, lineText, process, function, message);
  write(report);
  if (mayShowWindow())
    vel::platform::showStopMessage("Internal error occured: Assertion failed!", report.pieces(),
                                   report.count());
  std::abort();
}

void vel__assert(const char* expression, const char* module, unsigned int line) {
  vel__assert_msg(expression, module, line, nullptr, nullptr);
}
