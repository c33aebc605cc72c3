// Makes names of shell variables from names of options, and refuses those that would harm a script.
#pragma once

#include <string>
#include <string_view>

namespace vel::velini {

/// Whether the text can begin the names of variables: a letter, then letters, digits and "_", and a "_" at
/// the end, so that the script has its own family of names.
bool isShellPrefix(std::string_view text);

class ShellNames {
 public:
  /// With a null prefix, names get none.
  explicit ShellNames(const char* prefix)
      : hasPrefix_(prefix != nullptr), prefix_(hasPrefix_ ? prefix : "") {}

  /// Returns the variable for the name of an option, or of section and option, with "_" for each character
  /// that a variable cannot have. Records the first one that is not safe.
  std::string variable(const std::string& name);
  /// Returns the first variable that was not safe, or "" if all were.
  const std::string& refused() const { return refused_; }

 private:
  bool isSafe(const std::string& variable) const;

  bool hasPrefix_;
  std::string prefix_;
  std::string refused_;
};

}  // namespace vel::velini
