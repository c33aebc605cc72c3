// The forms of output that scripts and other programs read: a JSON object per line, and comma-separated
// values. Text for people is text_writer.h's work.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/output_buffer.h"
#include "tools/veltrace/event.h"

namespace vel::veltrace {

/// Writes events in one of the forms.
class EventWriter {
 public:
  explicit EventWriter(tools::OutputBuffer& output) : output_(output) {}
  EventWriter(const EventWriter&) = delete;
  EventWriter& operator=(const EventWriter&) = delete;
  virtual ~EventWriter() = default;

  virtual void begin() {}
  virtual void write(const Event& event) = 0;
  /// Between two groups of events that do not follow one another, see -context.
  virtual void separate() {}
  virtual void end() {}

 protected:
  void append(std::string_view text) { output_.append(text.data(), text.size()); }
  tools::OutputBuffer& output_;
};

std::unique_ptr<EventWriter> makeJsonWriter(tools::OutputBuffer& output);
std::unique_ptr<EventWriter> makeCsvWriter(tools::OutputBuffer& output);

/// "OFF", "LOW", "MED" or "HIGH".
const char* detailName(VelEnTraceDetail detail);
/// Adds the value of a record as a value of JSON: a number, true or false, a text, or null for other data.
void addJsonValue(std::string& json, const Event& event);

}  // namespace vel::veltrace
