// What a user interface keeps after useConventions: the choices of the program, the rewritten command line,
// the title for --help, and where colours are on.
#pragma once

#include <iosfwd>

#include "consoleui/command_line.h"
#include "vel_include/vel_conventions.h"

namespace vel::consoleui {

enum class ColorFault { None, NoValue, InvalidValue };

class Conventions {
 public:
  Conventions(const VelStConventions& choices, int argc, const char* const* argv);
  Conventions(const Conventions&) = delete;
  Conventions& operator=(const Conventions&) = delete;
  ~Conventions() = default;

  const VelStConventions& choices() const { return choices_; }
  CommandLine& line() { return line_; }
  const CommandLine& line() const { return line_; }
  /// The vector that the program got.
  int originalCount() const { return argc_; }
  const char* const* originalArguments() const { return argv_; }

  /// Owns what this replaces.
  void keep(OwnedObject<Conventions> replaced) { replaced_ = std::move(replaced); }

  /// The texts that init got, copied; "" for null.
  void setTitle(const char* title, const char* description);
  const String& title() const { return title_; }
  const String& description() const { return description_; }

  /// See VelClConsoleUI::style.
  const char* style(const std::ostream& stream, VelEnTextStyle style) const;
  /// What is wrong with the value of -color.
  ColorFault colorFault() const { return colorFault_; }

 private:
  void chooseColors();

  VelStConventions choices_;
  int argc_;
  const char* const* argv_;
  CommandLine line_;
  String title_, description_;
  ColorFault colorFault_ = ColorFault::None;
  bool outputHasColors_ = false;
  bool errorsHaveColors_ = false;
  OwnedObject<Conventions> replaced_;
};

/// Whether the stream is standard output or standard error, and a terminal.
bool isTerminal(const std::ostream& stream);

}  // namespace vel::consoleui
