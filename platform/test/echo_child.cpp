// A child for child_process_test.cpp: shows what it was given and ends as its first argument says.
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argumentCount, char** arguments) {
  for (int at = 1; at < argumentCount; ++at) std::printf("<%s>\n", arguments[at]);
  for (int c; (c = std::getchar()) != EOF;) std::putchar(c);
  const char* const variable = std::getenv("VEL_TEST_CHILD");
  std::fprintf(stderr, "%s", variable == nullptr ? "unset" : variable);
  std::fflush(stdout);
  if (std::strcmp(arguments[1], "abort") == 0) std::abort();
  return std::atoi(arguments[1]);  // NOLINT(cert-err34-c): texts are 0
}
