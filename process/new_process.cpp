// Builds the command line of a program and launches the program, waiting for it or detached. How a process is
// started is the platform's work. Windows gets the command line unchanged; for POSIX it is split by
// command_line.cpp, so that a program sees the same arguments on both systems.
#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "environment/command_line.h"
#include "foundation/allocator.h"
#include "platform/launching.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_process.h"

namespace platform = vel::platform;

namespace {

/// A sign, the 20 digits of a 64-bit number and the NUL.
constexpr std::size_t kDecimalCapacity = 22;

}  // namespace

VelClNewProcessABase::VelClNewProcessABase(const VelClExeFile& exe)
    : newConsole_(false),
      exe_(exe),
      commandLine_(nullptr),
      length_(0),
      capacity_(0),
      argumentCount_(0),
      result_(0) {
  addArgument(exe.getAsCString());
}

VelClNewProcessABase::~VelClNewProcessABase() {
  VelClMemoryManager::free(commandLine_);
}

void VelClNewProcessABase::addArgument(const char* text) {
  if (text == nullptr) return;
  // Intentional: only a blank triggers quoting, and one backslash at the end is doubled, however many there
  // are. Callers that need more put the quotes into the text themselves, which full escaping would break.
  if (std::strchr(text, ' ') == nullptr)
    appendArgument("", text, "");
  else
    appendArgument("\"", text, text[std::strlen(text) - 1] == '\\' ? "\\\"" : "\"");
}

void VelClNewProcessABase::addArgument(long value) {
  char digits[kDecimalCapacity];
  velI64toa(value, digits);
  addArgument(digits);
}

void VelClNewProcessABase::addArgument(unsigned long value) {
  char digits[kDecimalCapacity];
  velW64toa(value, digits);
  addArgument(digits);
}

void VelClNewProcessABase::appendArgument(const char* before, const char* text, const char* after) {
  // The text may be part of this command line. Its length is therefore determined before anything is
  // appended, and the old block is freed only after it was copied.
  const std::string_view pieces[] = {argumentCount_ != 0 ? " " : "", before, text, after};
  size_t length = length_;
  for (const std::string_view piece : pieces) length += piece.size();
  const vel::OwnedText outgrown(reserve(length));
  for (const std::string_view piece : pieces) {
    std::memcpy(commandLine_ + length_, piece.data(), piece.size());
    length_ += piece.size();
  }
  commandLine_[length_] = '\0';
  ++argumentCount_;
}

/// Makes room for `length` characters and the NUL. Returns the previous block if it was too small, which the
/// caller frees, else null. Doubling the capacity keeps many arguments from copying the line each time.
char* VelClNewProcessABase::reserve(size_t length) {
  if (length < capacity_) return nullptr;
  const size_t capacity = std::max<size_t>(length + 1, capacity_ * 2);
  char* const grown = static_cast<char*>(VelClMemoryManager::malloc(capacity));
  if (length_ != 0) std::memcpy(grown, commandLine_, length_);
  capacity_ = capacity;
  return std::exchange(commandLine_, grown);
}

// Derived classes can write to the command line through getArgs(), so the NUL is set again.
void VelClNewProcessABase::prepareLaunch() {
  lastError_ = {PROCESS_COULD_NOT_LAUNCH, VelEnErrorClass::UNKNOWN_PROCESS};
  commandLine_[length_] = '\0';
}

bool VelClNewProcessABase::fail(unsigned long systemError) {
  result_ = static_cast<uint32_t>(systemError);
  return false;
}

bool VelClNewProcessABase::succeed(unsigned long result) {
  result_ = static_cast<uint32_t>(result);
  lastError_.reset();
  return true;
}

VelClNewSyncProcess::VelClNewSyncProcess(const VelClExeFile& exe) : VelClNewProcessABase(exe) {}

VelClNewSyncProcess::~VelClNewSyncProcess() = default;

bool VelClNewSyncProcess::launch() {
  prepareLaunch();
  const vel::environment::Arguments arguments(getArgs());
  std::uint32_t exitCode = 0;
  const std::uint32_t error =
      platform::launchAndWait({getArgs(), arguments.get(), hasNewConsole()}, exitCode);
  return error != 0 ? fail(error) : succeed(exitCode);
}

VelClNewAsyncProcess::VelClNewAsyncProcess(const VelClExeFile& exe) : VelClNewProcessABase(exe) {}

VelClNewAsyncProcess::~VelClNewAsyncProcess() = default;

bool VelClNewAsyncProcess::launch() {
  prepareLaunch();
  const vel::environment::Arguments arguments(getArgs());
  std::uint32_t processId = 0;
  const std::uint32_t error =
      platform::launchDetached({getArgs(), arguments.get(), hasNewConsole()}, processId);
  return error != 0 ? fail(error) : succeed(processId);
}
