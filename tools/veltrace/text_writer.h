// Text for people: a line per record with aligned columns, indented by the calls of its thread, and dumps of
// data below it.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "tools/veltrace/event_writer.h"
#include "vel_include/vel_consoleui.h"

namespace vel::veltrace {

class TextWriter final : public EventWriter {
 public:
  /// Colours the names of functions with the styles of standard output.
  TextWriter(tools::OutputBuffer& output, const VelClConsoleUI& styles, bool showsDumps);

  void begin() override;
  void write(const Event& event) override;
  void separate() override { append("--\n"); }

 private:
  struct Columns {
    std::uint32_t process, thread, component;
    VelEnTraceDetail detail;
    std::size_t size = 0;
    char text[48];
  };

  char* writeTime(char* out, std::uint32_t time);
  char* writeColumns(char* out, const VelStTraceRecord& record);
  static void makeColumns(Columns& columns, const VelStTraceRecord& record);
  char* writeFunction(char* out, const Event& event) const;
  void appendText(const Event& event);
  void appendData(std::string_view data, std::size_t indentation);

  const char* function_;
  const char* plain_;
  bool showsDumps_;
  // Times and columns that were written lately. They are often the same in the next lines.
  std::uint32_t time_ = 0;
  char timeText_[16];
  static constexpr std::size_t kColumns = 64;
  std::array<Columns, kColumns> columns_;
};

/// Writes a text with "\x1B" for control characters, which could control a terminal or break the line, and
/// returns the end. `out` has room for four times the text, and 8 bytes more.
char* writeSafely(char* out, std::string_view text);

}  // namespace vel::veltrace
