// A dynamic library with one procedure, for dll_file_test.cpp.
#include "vel_include/vel_export.h"

VEL_C_API int velSampleAnswer(void);

int velSampleAnswer(void) {
  return 42;
}
