// Reads a trace: counts the records of each function, and shows what a damaged trace still contains.
#include <vel_trace_reader.h>

#include <cstdio>
#include <map>
#include <string>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: trace_report <trace file>\n");
    return 1;
  }
  VelClTraceReader reader;
  if (const VelClStatus status = reader.open(argv[1], TRACE_READ_RECOVER); !status.isOk()) {
    std::fprintf(stderr, "%s\n", status.getText().c_str());
    return 1;
  }
  std::map<std::string, int, std::less<>> records;
  for (const VelStTraceRecord& record : reader) {
    ++records[std::string(reader.getFunction())];
    if (record.skipped != 0)
      std::printf("%llu bytes before offset %llu are damaged\n",
                  static_cast<unsigned long long>(record.skipped),
                  static_cast<unsigned long long>(record.offset));
    char value[64];
    if (velTraceRecordGetValueText(&record, value, sizeof value) != 0)
      std::printf("%s = %s\n", std::string(reader.getMessage()).c_str(), value);
  }
  if (!reader.getStatus().isOk()) std::fprintf(stderr, "%s\n", reader.getStatus().getText().c_str());
  for (const auto& [function, count] : records) std::printf("%d %s\n", count, function.c_str());
}
