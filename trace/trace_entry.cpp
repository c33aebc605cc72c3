// Builds the record of a trace entry.
#include "trace/record.h"

namespace {

constexpr unsigned int kTypeAndCompressed = 0x3F;
constexpr unsigned int kDetailBits = 0xC0;

}  // namespace

VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment)
    : environment_(&environment), record_{}, entrySize_(0), dumpData_(nullptr) {}

// The texts' part of the record is filled as far as it is used.
VelClTraceEntry::VelClTraceEntry(const VelClTraceEnvironment& environment, VelEnTraceDetail detail,
                                 unsigned short componentId, VelEnTraceDataType type, const char* origin,
                                 const char* message, const void* data, size_t size)
    : environment_(&environment), dumpData_(data) {
  static_assert(kHeadLength == vel::trace::kHeadLength &&
                sizeof record_ >= vel::trace::kLongestRecord + vel::trace::kSlack);
  vel::trace::Event event{detail, componentId, type, origin, message, data, size};
  fitData(event, environment.getBufferSize());
  entrySize_ = buildRecord(environment, event, record_);
}

VelClTraceEntry::~VelClTraceEntry() = default;

void VelClTraceEntry::setType(VelEnTraceDataType type) {
  record_[0] = static_cast<unsigned char>((record_[0] & kDetailBits) |
                                          (static_cast<unsigned int>(type) & kTypeAndCompressed));
}

void VelClTraceEntry::setDetail(VelEnTraceDetail detail) {
  record_[0] =
      static_cast<unsigned char>((record_[0] & kTypeAndCompressed) | static_cast<unsigned int>(detail) << 6);
}
