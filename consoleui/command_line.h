// Rewrites a command line in the spelling of today into the one that usage strings describe:
//
//   --file=a.txt -top 5 --color=never -- -x      as typed
//   -file a.txt -top 5 -x                        rewritten; "a.txt" and "-x" are marked as data
//
// The usage string is not needed for this, except for abbreviations, see switch_names.h. What else depends on
// it is the work of the check of the command line.
#pragma once

#include <optional>
#include <string_view>

#include "consoleui/argument_marks.h"
#include "consoleui/switch_names.h"
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
  bool isCutOff;      ///< whether the next argument is not its value: "--" or the color switch was between
};

class CommandLine {
 public:
  /// The arguments are not copied. A null argument ends them. Without `abbreviations` only whole names mean
  /// something.
  CommandLine(int argc, const char* const* argv, const BuiltInSwitches& builtIn,
              const Abbreviations* abbreviations);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine() = default;

  /// The rewritten arguments, the program included, with a null pointer after the last one.
  int count() const { return static_cast<int>(origins_.size()); }
  const char* const* arguments() const { return arguments_.data(); }
  /// Returns the origin of the argument at an index, which must be that of an argument.
  const ArgumentOrigin& originAt(int index) const { return origins_[static_cast<std::size_t>(index)]; }
  /// Whether the argument at an index has a value after a "=".
  bool hasAttachedValue(int index) const { return index + 1 < count() && originAt(index + 1).isAttached; }

  /// Whether the switch is given, without a value. It stays in the command line, with both of its dashes.
  bool hasHelp() const { return hasHelp_; }
  bool hasVersion() const { return hasVersion_; }
  /// The value of the last color switch: absent without the switch, and null if it has no value. Switch and
  /// value are not in the command line.
  std::optional<const char*> color() const { return color_; }

 private:
  void add(const char* text, const ArgumentOrigin& origin);
  void addSwitch(const char* typed, const char* following, bool& usesFollowing);
  bool isAnswered(std::string_view name) const;
  const char* switchNamed(std::string_view name, bool hasTwoDashes);

  BuiltInSwitches builtIn_;
  const Abbreviations* abbreviations_;  ///< valid in the constructor
  Vector<const char*> arguments_;
  Vector<ArgumentOrigin> origins_;
  Vector<OwnedText> names_;
  bool hasHelp_ = false;
  bool hasVersion_ = false;
  std::optional<const char*> color_;
  std::optional<ArgumentMarks> marks_;
};

}  // namespace vel::consoleui
