// Traces from several threads, and counts the entries of each in the file.
#include <vel_trace.h>

#include <cstdio>
#include <sstream>
#include <thread>
#include <vector>

namespace {

void work(unsigned int worker) {
  for (unsigned int step = 0; step < 500; ++step) {
    const VelClTraceFunction function(VelEnTraceDetail::LOW, 7, "work");
    velTraceValue(VelEnTraceDetail::LOW, 7, "work", "step", worker * 1000 + step);
  }
}

}  // namespace

int main() {
  const char file[] = "demo_threads.trc";
  std::remove(file);
  VelClTraceInstance* const instance = VelClTraceInstance::createInstance("demo", nullptr);
  VelClTraceEnvironment& environment = instance->getEnvironment();
  environment.setFilename(file);
  instance->activate();
  instance->enable();
  std::vector<std::thread> threads;
  for (unsigned int worker = 0; worker < 4; ++worker) threads.emplace_back(work, worker);
  for (std::thread& thread : threads) thread.join();
  instance->flush();
  std::ostringstream text;
  VelClTraceFormatter formatter(environment, nullptr);
  formatter.setFormatString("%d%n");
  formatter.format(text);
  std::printf("%u entries, %lu bytes lost\n", formatter.getNumOfEntries(),
              static_cast<unsigned long>(velTraceGetLostBytes()));
  VelClTraceInstance::deleteInstance();
  std::remove(file);
}
