// The settings that a user interface makes for itself: the public ones and, after useConventions, those of
// today's programs. They are here because the layout of the public classes is fixed.
#pragma once

#include <iostream>

#include "consoleui/conventions.h"
#include "foundation/allocator.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

class ConsoleSettings : public VelClConsoleUIParams {
 public:
  using VelClConsoleUIParams::VelClConsoleUIParams;

  /// Returns null before useConventions.
  Conventions* conventions() const { return conventions_.get(); }
  /// Keeps earlier ones, because the program may still use the argument vector that they made.
  void setConventions(OwnedObject<Conventions> conventions) {
    conventions->keep(std::move(conventions_));
    conventions_ = std::move(conventions);
  }

  /// The stream of the title, info and warning.
  std::ostream& messageStream() const { return conventions_ ? getErrorStream() : getOutputStream(); }
  /// The stream of questions.
  std::ostream& questionStream() const { return conventions_ ? getErrorStream() : std::cout; }
  /// The stream of the usage after an error.
  std::ostream& refusalStream() const { return conventions_ ? std::cerr : std::cout; }
  /// See VelClConsoleUI::style.
  const char* style(const std::ostream& stream, VelEnTextStyle style) const {
    return conventions_ ? conventions_->style(stream, style) : "";
  }

 private:
  OwnedObject<Conventions> conventions_;
};

/// Every user interface makes its own settings.
inline ConsoleSettings& settingsOf(const VelClConsoleUI& ui) {
  return static_cast<ConsoleSettings&>(ui.getParams());
}

}  // namespace vel::consoleui
