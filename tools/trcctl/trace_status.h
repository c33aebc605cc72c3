// Shows the state of a trace in aligned lines on the output stream of the console user interface.
#pragma once

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_trace.h"

namespace vel::trcctl {

/// Shows the settings of a trace and its filter.
void showStatus(const VelClConsoleUI& ui, const VelClTraceInstance& trace);

/// Shows a summary after the entries of a trace were displayed.
void showResult(const VelClConsoleUI& ui, const VelClTraceEnvironment& environment,
                const VelClTraceFormatter& formatter);

}  // namespace vel::trcctl
