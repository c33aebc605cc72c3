// A child for new_process_test.cpp: writes its arguments to the file that VEL_TEST_REPORT names, one in
// brackets per line and "end" behind them, and ends as its first argument says.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

bool report(int argumentCount, char** arguments) {
  const char* const name = std::getenv("VEL_TEST_REPORT");
  if (name == nullptr) return true;
  std::FILE* const file = std::fopen(name, "wb");
  if (file == nullptr) return false;
  for (int at = 1; at < argumentCount; ++at) std::fprintf(file, "[%s]\n", arguments[at]);
  std::fputs("end", file);
  return std::fclose(file) == 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  constexpr int kNoReport = 99;
  if (!report(argumentCount, arguments)) return kNoReport;
  const char* const end = argumentCount > 1 ? arguments[1] : "";
  // Somebody ends it before.
  if (std::strcmp(end, "wait") == 0) std::this_thread::sleep_for(std::chrono::seconds(60));
  return std::atoi(end);  // NOLINT(cert-err34-c): texts are 0
}
