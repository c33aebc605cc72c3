// The parts of a trace: settings, a ring of the program's own, records, and entries read back from a file.
#include <vel.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

namespace {

/// Receives what the ring cannot keep.
void keep(const _VelStTraceBufferCallBackInfo& info) {
  auto& saved = *static_cast<std::string*>(info.context);
  saved.append(info.first, info.firstLength);
  if (info.second != nullptr) saved.append(info.second, info.secondLength);
}

void showSettings() {
  _VelStTraceSettings record;  // in memory of the program's choice
  VelClTraceSettings settings(&record);
  settings.setDetailLevel("MED");
  settings.initComponentIds("*,-7");
  const VelClTraceFilter& filter = settings.getFilter();
  std::cout << VelClTraceFilter::getDetailAsCString(filter.getDetail())
            << ", component 7: " << settings.isToBeDumped(VelEnTraceDetail::LOW, 7) << '\n';
}

void showRing(const VelClTraceEnvironment& environment) {
  const VelClResourceKeySemaphore key("demo", nullptr);
  const VelClResourceKeyABase& name = key;
  const VelClTraceBufferAccessSemaphore unused(key);
  static_cast<void>(unused);
  alignas(void*) char memory[48 + 64];
  VelClTraceBufferManager ring(key, memory, sizeof memory);
  std::string saved;
  ring.attachOverflowHandler(&keep, &saved);
  const VelClTraceEntry entry(environment, VelEnTraceDetail::LOW, 3, VelEnTraceDataType::C_STRING, "main",
                              "text", "abc", 3);
  ring.write(entry);
  ring.flush();
  std::cout << name.getAsCstring() << ": " << (saved.size() == entry.getSizeOfEntryData() + 3) << '\n';
}

void showFile(const VelClTraceEnvironment& environment) {
  std::ifstream file(environment.getFilename().getAsCString(), std::ios::binary);
  VelClTraceFileEntry entry(environment);
  while (entry.read(file)) {
    std::cout << entry.getOrigin() << ": " << entry.getMessage() << ", " << entry.getDumpDataLength()
              << " bytes\n";
    file.ignore(entry.getDumpDataLength());
  }
}

}  // namespace

int main() {
  // At the end of the scope the instance is deleted, if there is one.
  const VelClTraceAutomaticInstanceDestructor endOfTrace;
  showSettings();
  const char* const name = "demo_classes.trc";
  std::remove(name);
  {
    VelClTraceEnvironment environment("demo", nullptr, false);
    environment.setFilename(name);
    environment.add(VelEnTraceDetail::LOW, 3, VelEnTraceDataType::C_STRING, "main", "text", "abc", 3);
    environment.flush();
    showRing(environment);
    showFile(environment);
  }
  std::remove(name);
}
