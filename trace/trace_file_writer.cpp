// Appends the ring's unsaved bytes to the trace file. Tracing must not disturb the program: a failure costs
// trace data, is counted, and is otherwise ignored.
//
// The file is opened for each save and closed after it, so that it can be moved or removed while the program
// runs.
#include <atomic>
#include <cstdint>

#include "platform/append.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "trace/thread_rings.h"
#include "trace/torn_tail.h"
#include "trace/verbose_line.h"
#include "vel_include/vel_trace.h"

namespace {

using vel::platform::AppendTo;
using vel::platform::SystemError;
using vel::trace::VerboseLine;

void reportOpened(const char* name) {
  VerboseLine() << "writing file: " << name;
  vel::platform::EntryStatus status{};
  if (vel::platform::statusOf(name, status) == 0 && status.sizeInBytes != 0)
    VerboseLine() << "file exists with size: " << status.sizeInBytes;
}

}  // namespace

void VelClTraceEnvironment::save(const _VelStTraceBufferCallBackInfo& info) {
  static_cast<VelClTraceEnvironment*>(info.context)->append(info);
}

void VelClTraceEnvironment::append(const _VelStTraceBufferCallBackInfo& info) {
  // Preserved, because the program may trace between a failed call and reading errno.
  const vel::platform::LastErrorsKept errorsOfProgram;
  const bool verbose = settings_->isVerbose();
  // Behind a part of a record nothing could be read.
  if (vel::trace::ThreadRings::of(*this).fileName().isToBeExamined() &&
      vel::trace::endsWithinRecord(filename_.getAsCString()))
    filename_ = vel::trace::FileName::ofProcess(filename_, processId_);
  const char* const name = filename_.getAsCString();
  const std::uint64_t size = info.firstLength + info.secondLength;
  const AppendTo target = isDefaultFile_ ? AppendTo::OwnFile : AppendTo::AnyFile;
  int descriptor = -1;
  std::uint64_t written = 0;
  SystemError error = vel::platform::openForAppending(name, target, descriptor);
  if (error != 0) {
    if (verbose) VerboseLine() << "could not open: " << name << " (errno: " << error << ")";
  } else {
    if (verbose) reportOpened(name);
    const vel::platform::Bytes pieces[] = {{info.first, static_cast<std::size_t>(info.firstLength)},
                                           {info.second, static_cast<std::size_t>(info.secondLength)}};
    // One call for both pieces keeps what other processes append to the same file out of the middle of a
    // record.
    error = vel::platform::appendBytes(descriptor, pieces[0], pieces[1], written);
    const SystemError closeError = vel::platform::closeAppended(descriptor);
    if (verbose)
      VerboseLine() << "bytes written: " << written << " file status: " << (closeError != 0 ? -1 : 0);
    // Network file systems may report only now that bytes could not be written: count all of them as lost.
    if (closeError != 0) {
      error = closeError;
      written = 0;
    }
  }
  countLost(size - written);
  if (error != 0) std::atomic_ref(lastSystemError_).store(error, std::memory_order_relaxed);
}
