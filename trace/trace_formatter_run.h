// One pass of the formatter through a file: reading, filtering, and rendering by the steps of the format.
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
  /// Opens the file, or throws.
  Run(VelClTraceFormatter& formatter, std::ostream& stream);

  void formatAll();

 private:
  enum TextId : unsigned long { kBytes = 189, kClipped, kNullPointer, kNestingLevel, kTextEnd };
  struct Directive;

  static const Directive kDirectives[];
  static std::string_view directiveLetters();
  std::string_view loadText(TextId id);
  std::string_view getMessage(TextId id) const { return messages_[id - kBytes]; }

  bool formatEntry();
  bool isShown() const;
  bool repeatsFunction();
  void renderEntry();
  /// For directives whose text has no bound.
  template <void (Run::*show)()>
  char* throughBuffer(char* out);

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
  vel::OwnedText texts_[kTextEnd - kBytes];  ///< those that come from a catalog
  std::string_view messages_[kTextEnd - kBytes];
  VelClTraceFileEntry entry_;
  std::string_view indentation_;
  std::size_t rememberedLength_ = 0;
  char remembered_[512];
  bool hideFunction_ = false;
};
