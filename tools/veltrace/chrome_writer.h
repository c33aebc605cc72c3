// The Trace Event Format of the Chrome browser, which Perfetto and other viewers show.
#pragma once

#include <memory>

#include "tools/veltrace/event_writer.h"

namespace vel::veltrace {

/// Events of calls nest properly in each thread, whatever the trace contains: an exit without entry becomes a
/// mark, and calls that have not ended end with the trace.
std::unique_ptr<EventWriter> makeChromeWriter(tools::OutputBuffer& output);

}  // namespace vel::veltrace
