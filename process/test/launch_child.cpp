// A child for new_process_test.cpp and quoting_test.cpp. It writes its arguments in brackets, one per line,
// and "end" to the file that VEL_TEST_REPORT names, and exits with the code in its first argument.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

int main(int argumentCount, char** arguments) {
  std::FILE* const file = std::fopen(std::getenv("VEL_TEST_REPORT"), "wb");
  for (int at = 1; at < argumentCount; ++at) std::fprintf(file, "[%s]\n", arguments[at]);
  std::fputs("end", file);
  std::fclose(file);
  // The test ends the process before. It sleeps longer than kTimeLimitMs, so that a failure to end it is
  // noticed.
  if (std::strcmp(arguments[1], "wait") == 0) std::this_thread::sleep_for(std::chrono::seconds(1200));
  return std::atoi(arguments[1]);  // NOLINT(cert-err34-c): texts are 0
}
