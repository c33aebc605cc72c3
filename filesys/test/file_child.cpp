// A child for tmp_filename_test.cpp: creates temporary files and prints their names in
// binary mode.
#include <cstdio>

#include "vel_include/vel_filesys.h"

int main() {
  if (!velFileSetBinaryMode(1, true) || velFileIsOpenedInTextMode(1)) return 1;
  for (int i = 0; i < 40; ++i) {
    char name[VEL_MAX_PATH_LENGTH + 1];
    const int descriptor = velTmpFileCreate(nullptr, "FIVES", name);
    if (descriptor < 0 || !velFileIsOpenedInBinaryMode(descriptor)) return 2;
    std::printf("%s\n", name);
  }
  return 0;
}
