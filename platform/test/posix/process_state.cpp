// Processes by their entries in /proc.
#include "platform/test/process_state.h"

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "platform/test/child_streams.h"

namespace vel::test {

bool isRunning(unsigned int processId) {
  std::ifstream file("/proc/" + std::to_string(processId) + "/stat");
  std::string line;
  if (!std::getline(file, line)) return false;
  // The state stands behind the name, which may hold anything.
  const std::size_t name = line.rfind(')');
  return name != std::string::npos && line.size() > name + 2 && line[name + 2] != 'Z' &&
         line[name + 2] != 'X';
}

bool waitForEnd(unsigned int processId) {
  using Clock = std::chrono::steady_clock;
  const auto limit = Clock::now() + std::chrono::seconds(kChildTimeLimitSeconds);
  while (isRunning(processId)) {
    if (Clock::now() > limit) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace vel::test
