#include "tools/veltrace/event_writer.h"

#include <cmath>
#include <cstring>

#include "base/digits.h"
#include "tools/json_text.h"
#include "vel_include/vel_trace.h"

namespace vel::veltrace {
namespace {

/// The value in the library's form, such as "0x2A/42".
std::string valueText(const VelStTraceRecord& record) {
  char text[64];
  const std::size_t size = velTraceRecordGetValueText(&record, text, sizeof text);
  return {text, std::min(size, sizeof text - 1)};
}

void addHex(std::string& out, std::string_view bytes) {
  for (const char byte : bytes) {
    const auto digits = hexPair(static_cast<unsigned char>(byte));
    out.append(digits.data(), digits.size());
  }
}

bool isBetween(VelEnTraceDataType type, VelEnTraceDataType first, VelEnTraceDataType last) {
  return type >= first && type <= last;
}

class JsonWriter final : public EventWriter {
 public:
  using EventWriter::EventWriter;

  void write(const Event& event) override {
    const VelStTraceRecord& record = *event.record;
    line_ = "{\"file\":" + tools::jsonText(event.file);
    add("offset", record.offset);
    add("time", record.timeStamp);
    add("process", record.processId);
    add("thread", record.threadId);
    line_ += ",\"detail\":\"" + std::string(detailName(record.detail)) + '"';
    add("component", record.componentId);
    line_ += ",\"type\":" + tools::jsonText(velTraceGetTypeName(record.type));
    add("level", event.level);
    line_ += ",\"function\":" + tools::jsonText(event.function);
    line_ += ",\"message\":" + tools::jsonText(event.message) + ",\"value\":";
    addJsonValue(line_, event);
    if (event.hasDuration) add("duration", event.durationMs);
    line_ += ",\"data\":\"";
    addHex(line_, event.data());
    line_ += "\"}\n";
    append(line_);
  }

 private:
  void add(const char* name, std::uint64_t number) {
    line_ += std::string(",\"") + name + "\":" + std::to_string(number);
  }

  std::string line_;
};

class CsvWriter final : public EventWriter {
 public:
  using EventWriter::EventWriter;

  void begin() override {
    append(
        "file,offset,time,process,thread,detail,component,type,level,function,message,value,duration,data\n");
  }
  void write(const Event& event) override {
    const VelStTraceRecord& record = *event.record;
    line_.clear();
    add(event.file);
    add(record.offset);
    add(record.timeStamp);
    add(record.processId);
    add(record.threadId);
    add(std::string_view(detailName(record.detail)));
    add(record.componentId);
    add(std::string_view(velTraceGetTypeName(record.type)));
    add(event.level);
    add(event.function);
    add(event.message);
    add(record.type == VelEnTraceDataType::C_STRING ? event.data() : std::string_view(valueText(record)));
    add(event.hasDuration ? std::string_view(std::to_string(event.durationMs)) : std::string_view());
    addHex(line_, event.data());
    line_ += '\n';
    append(line_);
  }

 private:
  void add(std::uint64_t number) { line_ += std::to_string(number) + ','; }
  void add(std::uint32_t number) { add(std::uint64_t{number}); }
  /// Texts with a character that has a meaning are quoted, as RFC 4180 says.
  void add(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
      line_.append(text) += ',';
      return;
    }
    line_ += '"';
    for (const char c : text) line_.append(c == '"' ? 2 : 1, c);
    line_ += "\",";
  }

  std::string line_;
};

}  // namespace

const char* detailName(VelEnTraceDetail detail) {
  return VelClTraceFilter::getDetailAsCString(detail);
}

/// The library writes integers as "0x2A/42" or "0x41/65/'A'": the second part is the number.
void addJsonValue(std::string& json, const Event& event) {
  const VelEnTraceDataType type = event.record->type;
  const std::string text = valueText(*event.record);
  if (type == VelEnTraceDataType::C_STRING) {
    json += tools::jsonText(event.data());
  } else if (type == VelEnTraceDataType::BOOLEAN_VALUE) {
    json += text == "TRUE" ? "true" : "false";
  } else if (isBetween(type, VelEnTraceDataType::SIGNED_8, VelEnTraceDataType::UNSIGNED_64)) {
    const std::size_t start = text.find('/') + 1;
    json += text.substr(start, text.find('/', start) - start);
  } else if (isBetween(type, VelEnTraceDataType::FLOAT_32, VelEnTraceDataType::LONG_DOUBLE)) {
    // JSON has neither infinity nor NaN.
    json += text.find_first_of("in") == std::string::npos ? text : tools::jsonText(text);
  } else {
    json += text.empty() ? "null" : tools::jsonText(text);
  }
}

std::unique_ptr<EventWriter> makeJsonWriter(tools::OutputBuffer& output) {
  return std::make_unique<JsonWriter>(output);
}

std::unique_ptr<EventWriter> makeCsvWriter(tools::OutputBuffer& output) {
  return std::make_unique<CsvWriter>(output);
}

}  // namespace vel::veltrace
