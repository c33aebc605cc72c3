// One pass of the formatter through a trace file. VelClTraceFormatter holds the options; a Run holds what
// lasts for a pass: the open file, the parsed format, the output buffer and the current entry.
#pragma once

#include <istream>
#include <string_view>

#include "trace/trace_file_input.h"
#include "trace/trace_format_program.h"
#include "trace/trace_text_buffer.h"
#include "trace/trace_type_names.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_trace.h"

class VelClTraceFormatter::Run {
 public:
  /// Opens the trace file; throws if it cannot be opened. Both arguments must outlive the run.
  Run(VelClTraceFormatter& formatter, std::ostream& stream);

  /// Formats all entries. Throws for a damaged file, after writing the entries before the damage.
  void formatAll();

 private:
  /// Message ids of the formatter's words, which are in the catalog and in the built-in table.
  enum TextId : unsigned long { kBytes = 189, kClipped, kNullPointer, kNestingLevel, kTextEnd };
  /// The letter of a directive and the member function that shows it.
  struct Directive;

  static const Directive kDirectives[];
  static std::string_view directiveLetters();
  std::string_view loadText(TextId id);
  std::string_view getMessage(TextId id) const { return messages_[id - kBytes]; }

  bool formatEntry();
  bool isShown() const;
  bool repeatsFunction();
  void renderEntry();
  /// Runs a directive whose output may be longer than the room that is reserved for a step.
  template <void (Run::*show)()>
  char* throughBuffer(char* out);

  // Functions with `out` write there, at most a step's room, and return the end; the others append to out_.

  char* showComponent(char* out);
  char* showDetail(char* out);
  char* showFunction(char* out);
  void showLineBreak();
  void showLongType();
  char* showMessage(char* out);
  char* showProcess(char* out);
  void showShortType();
  char* showThread(char* out);
  char* showTimeStamp(char* out);
  void showType(std::string_view vel::trace::TraceTypeNames::*name, const char* origin);

  void skipEntry(std::uint32_t length);
  void formatData();
  void formatShortData(std::uint32_t length);
  void showNestingLevel(const std::uint8_t* bytes);
  void showValue(const std::uint8_t* bytes, std::size_t count);
  template <typename Form>
  void showBytes(std::string_view label, const std::uint8_t* bytes, std::size_t count);
  void formatHexDump(std::uint32_t length);
  void formatAdrs();
  void formatCString(std::uint32_t length);
  void displayIndent();

  VelClTraceFormatter& formatter_;
  vel::trace::TextBuffer out_;
  vel::trace::TraceFileInput input_;
  std::istream stream_;
  vel::trace::FormatProgram program_;
  vel::OwnedText texts_[kTextEnd - kBytes];  ///< copies of a catalog's words; null without a catalog
  std::string_view messages_[kTextEnd - kBytes];
  VelClTraceFileEntry entry_;
  std::string_view indentation_;
  /// The last function name that was shown, for leaving out repeated ones.
  std::size_t rememberedLength_ = 0;
  char remembered_[512];
  bool hideFunction_ = false;
};
