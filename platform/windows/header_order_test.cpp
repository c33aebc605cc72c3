// The public headers before windows.h.
#include "vel_include/vel.h"

// windows.h comes last.
#include <windows.h>

static_assert(static_cast<int>(VelEnErrorAction::NO_ACTION) == IGNORE);
