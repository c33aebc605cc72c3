// Parses lines into the model of a file. Parsing values is value_parser.cpp's work.
#pragma once

#include "inifile/line_source.h"
#include "inifile/model.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

enum class LineKind { Empty, Header, Indented, Option };

/// Classifies a line by its beginning alone. Blank lines and comment lines are Empty, lines that begin with
/// white space otherwise Indented.
LineKind kindOf(Span line) noexcept;
/// Returns the name in a header; its begin is null when the closing bracket is missing.
Span nameInHeader(Span line) noexcept;

class Parser {
 public:
  Parser(VelClIniFile& file, bool keepDuplicateSections, bool allowContinuation) noexcept
      : file_(file),
        model_(Model::of(file)),
        keepDuplicateSections_(keepDuplicateSections),
        allowContinuation_(allowContinuation) {}

  /// Parses all lines. Returns false when the error handler ended the load. Afterwards no section is the
  /// current one.
  bool parse(LineSource& lines);

 private:
  /// Makes no section the current one, and no option one that a line could continue.
  void resetPosition() noexcept;
  bool parseLine(Span line);
  bool parseHeader(Span line);
  bool parseOption(Span line);
  bool parseContinuation(Span line);
  /// Asks the error handler; false ends the load.
  bool report(VelEnErrorId error) const;

  VelClIniFile& file_;
  Model& model_;
  bool keepDuplicateSections_;
  bool allowContinuation_;
};

}  // namespace vel::inifile
