// An entry that owns its record. How records are built is in record.h; how they are
// read from a file, in trace_file_entry.cpp.
#include "platform/processes.h"
#include "trace/record.h"

using vel::trace::kDetailShift;
using vel::trace::kTypeAndCompressedMask;

VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment)
    : environment_(&environment), record_{}, entrySize_(0), dumpData_(nullptr) {}

// record_ is not cleared: only its first entrySize_ bytes are ever read, and clearing more than 500 bytes for
// each entry would be wasted work.
VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment, VelEnTraceDetail detail,
                                 unsigned short componentId, VelEnTraceDataType type, const char* origin,
                                 const char* message, const void* data, size_t size)
    : environment_(&environment), dumpData_(data) {
  static_assert(kHeadLength == vel::trace::kHeadLength &&
                sizeof record_ >= vel::trace::kMaxRecordSize + vel::trace::kSlack);
  vel::trace::Event event{detail, componentId, type, origin, message, data, size};
  fitData(event, environment.getBufferSize());
  entrySize_ = buildRecord(environment, event, vel::platform::currentThreadId(), record_);
}

VelClTraceEntry::~VelClTraceEntry() = default;

void VelClTraceEntry::setType(VelEnTraceDataType type) {
  // Intentional: replaces the compression flag along with the type; callers set the flag again afterwards.
  record_[0] = static_cast<unsigned char>((record_[0] & ~kTypeAndCompressedMask) |
                                          (static_cast<unsigned int>(type) & kTypeAndCompressedMask));
}

void VelClTraceEntry::setDetail(VelEnTraceDetail detail) {
  record_[0] = static_cast<unsigned char>((record_[0] & kTypeAndCompressedMask) |
                                          static_cast<unsigned int>(detail) << kDetailShift);
}
