// The settings of a trace.
#include <cstdint>
#include <new>

#include "vel_include/vel_trace.h"

namespace {

constexpr std::uint32_t kSignature = 0x5645;

}  // namespace

VelClTraceSettings::VelClTraceSettings() : record_(&own_) {
  init();
}

VelClTraceSettings::VelClTraceSettings(void* record) : record_(::new (record) _VelStTraceSettings) {
  init();
}

void VelClTraceSettings::init() {
  record_->signature = kSignature;
  record_->flags = COMPRESSION | AUTOSAVE;
}

void VelClTraceSettings::initComponentIds(const char* list) {
  record_->filter.disableAllComponentIds();
  record_->filter.enableComponentIds(list);
}

const char* VelClTraceSettings::getVerbosePrefix() {
  return "[VEL: TRACE: ";
}

const char* VelClTraceSettings::getVerboseSuffix() {
  return "]\n";
}
