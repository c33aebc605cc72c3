// The names of trace files of several processes.
#include "trace/file_name.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "platform/processes.h"
#include "trace/save_lock.h"
#include "trace/thread_rings.h"
#include "vel_include/vel_trace.h"

namespace vel::trace {

namespace {

constexpr std::string_view kProcessMark = "%p";

/// The digits of a process number.
class Digits {
 public:
  explicit Digits(std::uint32_t number) {
    std::snprintf(text_, sizeof text_, "%lu", static_cast<unsigned long>(number));
  }
  std::string_view text() const { return text_; }

 private:
  char text_[sizeof "4294967295"] = {};
};

}  // namespace

// No allocation: both are called where an exception would end the program, in saving and in the child of a
// fork.

VelClFilename FileName::expanded(const char* pattern, std::uint32_t process) {
  const Digits digits(process);
  char name[VEL_MAX_PATH_LENGTH + 1] = {};
  std::size_t length = 0;
  while (*pattern != '\0' && length < VEL_MAX_PATH_LENGTH) {
    const bool isMark = std::string_view(pattern).starts_with(kProcessMark);
    const std::string_view part = isMark ? digits.text() : std::string_view(pattern, 1);
    length += part.copy(name + length, VEL_MAX_PATH_LENGTH - length);
    pattern += isMark ? kProcessMark.size() : 1;
  }
  VelClFilename result;
  result = name;
  return result;
}

VelClFilename FileName::ofProcess(const VelClFilename& name, std::uint32_t process) {
  const Digits digits(process);
  const std::string_view number = digits.text();
  char text[VEL_MAX_PATH_LENGTH + 1] = {};
  std::size_t length =
      std::string_view(name.getAsCString()).copy(text, VEL_MAX_PATH_LENGTH - 1 - number.size());
  text[length++] = '.';
  number.copy(text + length, number.size());
  VelClFilename result;
  result = text;
  return result;
}

void FileName::setPattern(const char* pattern) {
  pattern_[0] = '\0';
  if (pattern != nullptr && std::strstr(pattern, kProcessMark.data()) != nullptr)
    std::strncpy(pattern_, pattern, sizeof pattern_ - 1);
}

VelClFilename FileName::ofChild(const VelClFilename& name, std::uint32_t child) const {
  return pattern_[0] != '\0' ? expanded(pattern_, child) : ofProcess(name, child);
}

}  // namespace vel::trace

void VelClTraceEnvironment::setFilename(const char* name) {
  const vel::trace::SaveLock lock;
  filename_ = name;
  isDefaultFile_ = false;
  vel::trace::FileName& rule = vel::trace::ThreadRings::of(*this).fileName();
  rule.setPattern(nullptr);
  rule.examineAgain();
}

void VelClTraceEnvironment::continueInChild(bool hasTraced) {
  processId_ = vel::platform::currentProcessId();
  // A controller that has not traced goes on reading its parent's file.
  if (controllerMode_ && !hasTraced) return;
  filename_ = vel::trace::ThreadRings::of(*this).fileName().ofChild(filename_, processId_);
}
