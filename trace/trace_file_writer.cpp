// Appends what leaves the ring to the trace file. A failure costs trace data and nothing else.
#include <cerrno>
#include <cstdint>

#include "platform/platform.h"
#include "trace/verbose_line.h"
#include "vel_include/vel_trace.h"

namespace {

using vel::platform::AppendTo;
using vel::platform::SystemError;
using vel::trace::VerboseLine;

void reportOpened(const char* name) {
  VerboseLine() << "writing file: " << name;
  vel::platform::EntryStatus status{};
  if (vel::platform::statusOf(name, status) && status.sizeInBytes != 0)
    VerboseLine() << "file exists with size: " << status.sizeInBytes;
}

}  // namespace

void VelClTraceEnvironment::save(const _VelStTraceBufferCallBackInfo& info) {
  static_cast<VelClTraceEnvironment*>(info.context)->append(info);
}

void VelClTraceEnvironment::append(const _VelStTraceBufferCallBackInfo& info) {
  // A program may trace before it looks at an error of its own.
  const vel::platform::LastErrors errorsOfProgram = vel::platform::lastErrors();
  const bool verbose = settings_->isVerbose();
  const char* const name = filename_.getAsCString();
  const std::uint64_t size = info.firstLength + info.secondLength;
  SystemError error = 0;
  const AppendTo target = isDefaultFile_ ? AppendTo::OwnFile : AppendTo::AnyFile;
  const int descriptor = vel::platform::openForAppending(name, target, error);
  std::uint64_t written = 0;
  if (descriptor == -1) {
    if (verbose) VerboseLine() << "could not open: " << name << " (errno: " << error << ")";
  } else {
    if (verbose) reportOpened(name);
    const vel::platform::Bytes pieces[] = {{info.first, static_cast<std::size_t>(info.firstLength)},
                                           {info.second, static_cast<std::size_t>(info.secondLength)}};
    written = vel::platform::appendBytes(descriptor, pieces[0], pieces[1], error);
    const int closed = vel::platform::closeAppended(descriptor);
    const SystemError closeError = closed != 0 && errno != EINTR ? errno : 0;
    if (verbose) VerboseLine() << "bytes written: " << written << " file status: " << closed;
    // A file that cannot be closed may have lost all of it.
    if (closeError != 0) {
      error = closeError;
      written = 0;
    }
  }
  lostBytes_ += size - written;
  if (error != 0) lastSystemError_ = error;
  vel::platform::setLastErrors(errorsOfProgram);
}
