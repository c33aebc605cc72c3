// What the controller tells about a trace, in aligned lines on the console's output stream.
#pragma once

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_trace.h"

namespace vel::trcctl {

/// The trace's settings and the filter of what it shows.
void showStatus(const VelClConsoleUI& ui, const VelClTraceInstance& trace);

/// What a display of the trace found.
void showResult(const VelClConsoleUI& ui, const VelClTraceEnvironment& environment,
                const VelClTraceFormatter& formatter);

}  // namespace vel::trcctl
