// Holds the formatter's options. A pass through the trace file is trace_formatter_run.cpp's work.
#include "foundation/allocator.h"
#include "trace/trace_formatter_run.h"
#include "vel_include/vel_messages.h"

VelClTraceFormatter::VelClTraceFormatter(const VelClTraceEnvironment& environment,
                                         const VelClTraceFilter* filter)
    : environment_(&environment),
      filter_(filter != nullptr ? filter : &environment.getSettings().getFilter()),
      catalog_(nullptr),
      message_(nullptr),
      stream_(nullptr),
      entryCount_(0),
      nestingLevel_(0),
      format_(environment.getFormatString()),
      indentation_(nullptr),
      showNestingLevel_(false),
      showFunctionRecords_(true),
      showRepeatedNames_(true),
      showHex_(false),
      showBinary_(false) {}

VelClTraceFormatter::~VelClTraceFormatter() {
  vel::destroy(message_);
}

void VelClTraceFormatter::setFormatString(const char* format) {
  format_ = format != nullptr ? format : environment_->getFormatString();
}

void VelClTraceFormatter::attachVelMessageCatalog(VelClMessageCatalog& catalog) {
  if (message_ != nullptr && catalog_ == &catalog) return;
  // A message cannot change its catalog, so another catalog needs another message. The old one is destroyed
  // last: if memory runs out, the formatter is as before.
  auto* message = vel::create<VelClMessage>(catalog, 189UL);
  vel::destroy(message_);
  message_ = message;
  catalog_ = &catalog;
}

void VelClTraceFormatter::format(std::ostream& stream) {
  Run run(*this, stream);
  run.formatAll();
}
