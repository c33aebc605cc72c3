// What a user interface keeps after useConventions: the choices of the program, the rewritten command line,
// the texts that init got, and where colours are on.
#pragma once

#include <array>
#include <iosfwd>
#include <optional>
#include <utility>

#include "consoleui/command_line.h"
#include "vel_include/vel_conventions.h"

namespace vel::consoleui {

enum class ColorFault { None, NoValue, InvalidValue };

/// Title and description of a program, and what the page about the copyright shows. Each can be null.
struct InitTexts {
  const char *title, *description, *level, *date;
};

class Conventions {
 public:
  Conventions(const VelStConventions& choices, int argc, const char* const* argv);
  Conventions(const Conventions&) = delete;
  Conventions& operator=(const Conventions&) = delete;
  ~Conventions() = default;

  const VelStConventions& choices() const { return choices_; }
  const CommandLine& line() const { return *lines_.back(); }
  /// Rewrites the command line again, with the whole names of switches for their beginnings. Earlier vectors
  /// of arguments stay valid.
  void complete(const Abbreviations& abbreviations);
  /// The vector that the program got.
  int originalCount() const { return argc_; }
  const char* const* originalArguments() const { return argv_; }

  /// Owns what this replaces, which knows the buffers of the standard streams from earlier on.
  void keep(OwnedObject<Conventions> replaced);

  /// The texts that init got, which are copied; null for those that are absent.
  void setTexts(const InitTexts& texts);
  InitTexts texts() const;
  /// Whether the title waits until abbreviations are resolved: a built-in switch may leave it out.
  void postponeTitle() { isTitlePostponed_ = true; }
  bool consumePostponedTitle() { return std::exchange(isTitlePostponed_, false); }

  /// See VelClConsoleUI::style.
  const char* style(const std::ostream& stream, VelEnTextStyle style) const;
  /// Whether the stream is standard output or standard error, and a terminal.
  bool isTerminal(const std::ostream& stream) const;
  /// What is wrong with the value of -color.
  ColorFault colorFault() const { return colorFault_; }

 private:
  /// A standard stream of C++, and the buffer that it had when conventions were switched on.
  struct Standard {
    const std::ostream* stream;
    int descriptor;
    const std::streambuf* buffer;
  };

  void add(const Abbreviations* abbreviations);
  void chooseColors();
  int descriptorOf(const std::ostream& stream) const;

  VelStConventions choices_;
  int argc_;
  const char* const* argv_;
  Vector<OwnedObject<CommandLine>> lines_;  ///< the last one counts
  std::optional<String> title_, description_, level_, date_;
  bool isTitlePostponed_ = false;
  std::array<Standard, 3> standards_;
  ColorFault colorFault_ = ColorFault::None;
  bool outputHasColors_ = false;
  bool errorsHaveColors_ = false;
  OwnedObject<Conventions> replaced_;
};

}  // namespace vel::consoleui
