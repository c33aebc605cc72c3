// Tells which of the named files exist. On Windows, too, the names may have characters of any script.
#include <vel.h>

#include <iostream>

int main(int argc, char** argv) {
  velUseUtf8();
  argv = velUtf8Arguments(&argc, argv);
  for (int i = 1; i < argc; ++i)
    std::cout << argv[i] << (VelClFile(argv[i], "").isExistent() ? " exists\n" : " is missing\n");
  return 0;
}
