// The settings of a trace, kept in a record that the object or the caller owns. Reading them from environment
// variables is trace_environment.cpp's work.
#include <cstdint>
#include <new>

#include "vel_include/vel_trace.h"

namespace {

// "VE", marks a record that has been initialised.
constexpr std::uint32_t kSignature = 0x5645;

}  // namespace

VelClTraceSettings::VelClTraceSettings() : record_(&own_) {
  init();
}

// The caller's record need not be initialised: placement new makes it a record, with a default filter.
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
