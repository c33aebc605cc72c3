// The edits that a command line asks for, in its order.
#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "tools/velini/document.h"
#include "vel_include/vel_consoleui.h"

namespace vel::velini {

/// An edit, or the name of a file to merge.
using Step = std::variant<Edit, const char*>;

/// A mistake that the check against the usage does not find, with the argument concerned or null.
struct Mistake {
  TextId text;
  const char* argument;
};

/// Appends the steps. The switches may be spelled `--name` and `--name=value`, too. Each step is for the last
/// -section before it, or for the first one after it. The arguments begin with the name of the program.
std::optional<Mistake> readSteps(const std::vector<const char*>& arguments, std::vector<Step>& steps);

/// Returns the arguments as typed, with only the first of each switch that may be repeated in them. For the
/// check against the usage, in which no switch can be repeated.
std::vector<const char*> withoutRepeats(const std::vector<const char*>& arguments);

}  // namespace vel::velini
