// What a test needs under Wine, which makes links and drives only from outside.
#pragma once

#include <string>

namespace vel::test {

/// The name of a file outside Wine; "" on Windows itself.
std::string unixName(const std::string& path);

/// Runs "ln" or the like, with names from outside; nobody can wait for its end.
bool startUnixProgram(const std::string& name, const std::string& arguments);

/// Whether there is such an entry, or a link of that name.
bool isThere(const std::string& path);

/// A link as long as this object lives: one that stayed would keep its directory from being removed.
class Link {
 public:
  Link(const std::string& path, const std::string& target);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  /// False where this user may not make links.
  bool isMade() const { return isMade_; }

 private:
  std::string path_, outside_;
  bool isMade_;
};

}  // namespace vel::test
