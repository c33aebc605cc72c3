// Names of shell variables for options, and which of them a script can evaluate without harm.
#pragma once

#include <string>
#include <string_view>

namespace vel::velini {

/// A letter, then letters, digits and "_", one of these at the end: a family of names of the script's own.
bool isShellPrefix(std::string_view text);

class ShellNames {
 public:
  /// Null: names have no prefix.
  explicit ShellNames(const char* prefix)
      : hasPrefix_(prefix != nullptr), prefix_(hasPrefix_ ? prefix : "") {}

  /// The variable for the name of an option, or of section and option, with "_" for what it cannot hold.
  /// Keeps the first one that is not safe.
  std::string variable(const std::string& name);
  /// "" when all were safe.
  const std::string& refused() const { return refused_; }

 private:
  bool isSafe(const std::string& variable) const;

  bool hasPrefix_;
  std::string prefix_;
  std::string refused_;
};

}  // namespace vel::velini
