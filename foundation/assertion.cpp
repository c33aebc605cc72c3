// Reports a failed assertion on standard error, shows it in a window where the system has one, and aborts the
// process. The heap may be what is broken, so the report is built on the stack: nothing here allocates,
// throws or returns. How the window is shown is the platform's work.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "platform/console_text.h"
#include "platform/descriptors.h"
#include "platform/environment.h"
#include "platform/processes.h"
#include "platform/system.h"
#include "vel_include/vel_error.h"

namespace {

/// The report as a list of borrowed strings. They may have any length, so copying them into one text would
/// need the heap; the two outputs, stream and window, accept the list as it is.
class Report {
 public:
  Report& operator<<(const char* text) noexcept {
    pieces_[count_++] = text;
    return *this;
  }
  const char* const* pieces() const noexcept { return pieces_; }
  std::size_t count() const noexcept { return count_; }

 private:
  const char* pieces_[16];  ///< the most that `buildReport` adds
  std::size_t count_ = 0;
};

/// A number as text; owns the characters that the report refers to.
struct Decimal {
  char text[24];
  explicit Decimal(long long value) noexcept { std::snprintf(text, sizeof text, "%lld", value); }
};

/// Fills the report. It only keeps pointers, so all arguments must outlive it.
void buildReport(Report& report, const char* expression, const char* module, const Decimal& line,
                 const Decimal& process, const char* function, const char* message) noexcept {
  // Intentional: "OCCURED" is the established spelling, which searches of logs rely on.
  report << "\n*** INTERNAL ERROR OCCURED ***\n";
  if (message != nullptr) {
    report << "*** " << message << " ***\n";
    // Intentional: the function is reported only together with a message; vel__assert passes neither.
    if (function != nullptr) report << "***         FUNCTION: " << function << "\n";
  }
  report << "*** ASSERTION FAILED: " << vel::textOrEmpty(expression);
  report << "\n***             LINE: " << line.text;
  report << "\n***           MODULE: " << vel::textOrEmpty(module);
  report << "\n***       PROCESS ID: " << process.text << "\n\n";
}

/// Buffers the report and writes it to standard error in one piece if it fits in 4 KB, so that the output of
/// other threads does not get between its lines. A longer report is written in pieces of that size.
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
    using namespace vel::platform;
    if (isConsoleInUtf8(kStandardError)) {
      static_cast<void>(writeConsole(kStandardError, buffer_, used_));
    } else {
      std::fwrite(buffer_, 1, used_, stderr);
      std::fflush(stderr);
    }
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

/// Whether this assertion may show the window.
/// Intentional: only the first assertion of the process reads VEL_NO_ASSERT_POPUP. A later one, from another
/// thread while the first is being reported, shows the window whatever the variable says.
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
  // Intentional: the identifier is printed as a signed 32-bit number.
  const Decimal process(static_cast<std::int32_t>(vel::platform::currentProcessId()));
  Report report;
  buildReport(report, expression, module, lineText, process, function, message);
  // Standard error first: the window may wait forever, since perhaps nobody is there to close it.
  write(report);
  if (mayShowWindow())
    vel::platform::showStopMessage("Internal error occured: Assertion failed!", report.pieces(),
                                   report.count());
  std::abort();
}

void vel__assert(const char* expression, const char* module, unsigned int line) {
  vel__assert_msg(expression, module, line, nullptr, nullptr);
}
