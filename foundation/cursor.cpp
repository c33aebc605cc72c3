// The cursor bases' destructors: here their tables of virtual functions have one home.
#include "vel_include/vel_cursor.h"

VelClUniDirCursorABase::~VelClUniDirCursorABase() = default;
VelClBiDirCursorABase::~VelClBiDirCursorABase() = default;
