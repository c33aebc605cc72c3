// Reads lines into a file's model. Values are value_parser.cpp's work.
#pragma once

#include "inifile/line_source.h"
#include "inifile/model.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

enum class LineKind { Empty, Header, Indented, Option };

/// What a line is by its beginning alone; blank and comment lines are empty.
LineKind kindOf(Span line) noexcept;
/// The name in a header; begin is null when the closing bracket is missing.
Span nameInHeader(Span line) noexcept;

class Parser {
 public:
  Parser(VelClIniFile& file, bool keepDuplicateSections, bool allowContinuation) noexcept
      : file_(file),
        model_(Model::of(file)),
        keepDuplicateSections_(keepDuplicateSections),
        allowContinuation_(allowContinuation) {}

  /// False when the error handler has ended it. No section is current afterwards.
  bool parse(LineSource& lines);

 private:
  void resetPosition() noexcept;
  bool parseLine(Span line);
  bool parseHeader(Span line);
  bool parseOption(Span line);
  bool parseContinuation(Span line);
  bool report(VelEnErrorId error) const;

  VelClIniFile& file_;
  Model& model_;
  bool keepDuplicateSections_;
  bool allowContinuation_;
};

}  // namespace vel::inifile
