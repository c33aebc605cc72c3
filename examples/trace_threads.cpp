// Traces from several threads. The ring of the trace instance supports only one thread at a time, so a
// callback locks a mutex and stores the entries in the program's own environment.
#include <vel_trace.h>

#include <cstdio>
#include <mutex>
#include <sstream>
#include <thread>
#include <vector>

namespace {

/// Stores the entries of all threads.
struct BackEnd {
  std::mutex mutex;
  VelClTraceEnvironment environment{"demo", "callback", true};
};

void record(void* context, VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
            const char* origin, const char* message, const void* data, size_t size) {
  auto& backEnd = *static_cast<BackEnd*>(context);
  const std::lock_guard lock(backEnd.mutex);
  backEnd.environment.add(detail, componentId, type, origin, message, data, size);
}

void work(unsigned int worker) {
  // Threads do not trace functions, because dumpFunction counts the nesting level without a lock.
  for (unsigned int step = 0; step < 1000; ++step)
    velTraceValue(VelEnTraceDetail::LOW, 7, "work", "step", worker * 1000 + step);
}

}  // namespace

int main() {
  const char file[] = "demo_threads.trc";
  std::remove(file);
  {
    BackEnd backEnd;
    backEnd.environment.setFilename(file);
    VelClTraceInstance* const instance = VelClTraceInstance::createInstance("demo", nullptr);
    instance->registerUserCallback(&record, &backEnd);
    instance->activate();
    instance->enable();
    std::vector<std::thread> threads;
    for (unsigned int worker = 0; worker < 4; ++worker) threads.emplace_back(work, worker);
    for (std::thread& thread : threads) thread.join();
    VelClTraceInstance::deleteInstance();
    backEnd.environment.flush();
    std::ostringstream text;
    VelClTraceFormatter formatter(backEnd.environment, nullptr);
    formatter.setFormatString("%d%n");
    formatter.format(text);
    std::printf("%u entries, %lu bytes lost\n", formatter.getNumOfEntries(),
                static_cast<unsigned long>(backEnd.environment.getLostBytes()));
  }
  std::remove(file);
}
