// Defines the destructors of the cursor base classes. Being out of line, they make this object file the only
// one that holds the virtual tables and type information; inline, each user would emit its own copy.
#include "vel_include/vel_cursor.h"

VelClUniDirCursorABase::~VelClUniDirCursorABase() = default;
VelClBiDirCursorABase::~VelClBiDirCursorABase() = default;
