// Starts another program with arguments, waits until it ends, and prints its exit code. Try
// "example_run_program example_greet -name Ada". Without arguments it ends with exit code 1.
#include <vel.h>

#include <iostream>

int main(int argc, char** argv) {
  if (argc < 2) return 1;
  const VelClExeFile program{VelClFilename(argv[1])};
  VelClNewSyncProcess process(program);
  for (int i = 2; i < argc; ++i) process.addArgument(argv[i]);
  if (process.launch()) {
    std::cout << "ended with " << process.getResult() << '\n';
    return 0;
  }
  const char* const reason = velWinGetErrorAsString(process.getResult());
  std::cout << "not started: " << (reason != nullptr ? reason : "") << '\n';
  return 2;
}
