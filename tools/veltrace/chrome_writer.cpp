#include "tools/veltrace/chrome_writer.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/json_text.h"

namespace vel::veltrace {
namespace {

class ChromeWriter final : public EventWriter {
 public:
  using EventWriter::EventWriter;

  void begin() override { append("{\"displayTimeUnit\":\"ms\",\"traceEvents\":["); }
  void write(const Event& event) override {
    const VelStTraceRecord& record = *event.record;
    if (!hasStarted_ || static_cast<std::int32_t>(record.timeStamp - lastTime_) > 0)
      lastTime_ = record.timeStamp;
    Calls& calls = calls_[{record.processId, record.threadId}];
    if (event.isEntry()) {
      calls.emplace_back(event.function);
      add(event, "B");
    } else if (event.isExit() && endCall(event, calls)) {
      return;
    } else {
      add(event, "i");
    }
  }
  void end() override {
    for (auto& [thread, calls] : calls_)
      for (; !calls.empty(); calls.pop_back()) addEnd(thread, lastTime_);
    append(hasStarted_ ? "\n]}\n" : "]}\n");
  }

 private:
  using Thread = std::pair<std::uint32_t, std::uint32_t>;
  using Calls = std::vector<std::string>;

  /// Ends the innermost call of this function, and those within it. Returns false if there is none.
  bool endCall(const Event& event, Calls& calls) {
    const auto call = std::find(calls.rbegin(), calls.rend(), event.function);
    if (call == calls.rend()) return false;
    const VelStTraceRecord& record = *event.record;
    for (auto count = call - calls.rbegin() + 1; count > 0; --count, calls.pop_back())
      addEnd({record.processId, record.threadId}, record.timeStamp);
    return true;
  }
  void addCommon(const char* phase, const Thread& thread, std::uint32_t time) {
    line_ = hasStarted_ ? ",\n" : "\n";
    hasStarted_ = true;
    // Microseconds.
    line_ += std::string("{\"ph\":\"") + phase + "\",\"ts\":" + std::to_string(time * std::uint64_t{1000}) +
             ",\"pid\":" + std::to_string(thread.first) + ",\"tid\":" + std::to_string(thread.second);
  }
  void addEnd(const Thread& thread, std::uint32_t time) {
    addCommon("E", thread, time);
    append(line_ + '}');
  }
  void add(const Event& event, const char* phase) {
    const VelStTraceRecord& record = *event.record;
    addCommon(phase, {record.processId, record.threadId}, record.timeStamp);
    const std::string_view name = phase[0] == 'B' || event.message.empty() ? event.function : event.message;
    line_ += ",\"name\":" + tools::jsonText(name) + ",\"cat\":\"" + std::to_string(record.componentId) + '"';
    // A mark belongs to its thread.
    if (phase[0] == 'i') line_ += ",\"s\":\"t\"";
    line_ += ",\"args\":{\"detail\":\"" + std::string(detailName(record.detail)) + '"';
    if (phase[0] == 'i') {
      line_ += ",\"function\":" + tools::jsonText(event.function);
      line_ += ",\"type\":" + tools::jsonText(velTraceGetTypeName(record.type)) + ",\"value\":";
      addJsonValue(line_, event);
    }
    append(line_ + "}}");
  }

  std::map<Thread, Calls> calls_;
  std::string line_;
  std::uint32_t lastTime_ = 0;
  bool hasStarted_ = false;
};

}  // namespace

std::unique_ptr<EventWriter> makeChromeWriter(tools::OutputBuffer& output) {
  return std::make_unique<ChromeWriter>(output);
}

}  // namespace vel::veltrace
