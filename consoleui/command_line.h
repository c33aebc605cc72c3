// Rewrites a command line in the spelling of today into the one that usage strings describe:
//
//   --file=a.txt -top 5 --color=never -- -x      as typed
//   -file a.txt -top 5 -x                        rewritten; "a.txt" and "-x" are marked as data
//
// The usage string is not needed for this. What depends on it is the work of switch_names.cpp and of the
// check of the command line.
#pragma once

#include <optional>
#include <string_view>

#include "consoleui/argument_marks.h"
#include "foundation/allocator.h"

namespace vel::consoleui {

/// The built-in switches to search for, without "-". An empty one is not built in.
struct BuiltInSwitches {
  std::string_view help, version, color;
};

/// Where a rewritten argument comes from.
struct ArgumentOrigin {
  const char* typed;  ///< the argument as the user typed it, with name and value in one
  bool isData;        ///< whether it is not a switch, even if it begins with "-"
  bool isAttached;    ///< whether it is the value after a "="
};

class CommandLine {
 public:
  /// The arguments are not copied. A null argument ends them.
  CommandLine(int argc, const char* const* argv, const BuiltInSwitches& builtIn);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine() = default;

  /// The rewritten arguments, the program included, with a null pointer after the last one.
  int count() const { return static_cast<int>(origins_.size()); }
  const char* const* arguments() const { return arguments_.data(); }
  /// Returns the origin of an argument by its pointer, or null if it is not one of `arguments`.
  const ArgumentOrigin* originOf(const char* argument) const;
  /// Whether the argument has a value after a "=".
  bool hasAttachedValue(const char* argument) const;
  /// The last argument before "--"; null without "--".
  const char* lastBeforeEnd() const { return lastBeforeEnd_; }

  /// Whether the switch is given. It stays in the command line, with both of its dashes.
  bool hasHelp() const { return hasHelp_; }
  bool hasVersion() const { return hasVersion_; }
  /// The value of the last color switch: absent without the switch, and null if it has no value. Switch and
  /// value are not in the command line.
  std::optional<const char*> color() const { return color_; }

  /// Replaces the switch at an index by another name, which gets a "-".
  void rename(int index, std::string_view name);

 private:
  void add(const char* text, const ArgumentOrigin& origin);
  void addSwitch(const char* typed, const char* following, bool& usesFollowing);
  bool consumeBuiltIn(const char* typed);
  const char* switchNamed(std::string_view name);

  BuiltInSwitches builtIn_;
  Vector<const char*> arguments_;
  Vector<ArgumentOrigin> origins_;
  Vector<OwnedText> names_;
  const char* lastBeforeEnd_ = nullptr;
  bool hasHelp_ = false;
  bool hasVersion_ = false;
  std::optional<const char*> color_;
  std::optional<ArgumentMarks> marks_;
};

}  // namespace vel::consoleui
