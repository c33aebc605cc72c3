// Support for tests under Wine, where links and drives can only be created from outside.
#pragma once

#include <string>

namespace vel::test {

/// Returns the name of a file outside Wine, or "" on Windows itself.
std::string unixName(const std::string& path);

/// Starts a program of the host system, with names of that system. Its end cannot be waited for.
bool startUnixProgram(const std::string& name, const std::string& arguments);

/// Whether the entry exists, even as a broken link.
bool isThere(const std::string& path);

/// A symbolic link, removed with this object, since its directory could not be removed otherwise.
class Link {
 public:
  Link(const std::string& path, const std::string& target);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  /// False if this user may not create links.
  bool isMade() const { return isMade_; }

 private:
  std::string path_, outside_;
  bool isMade_;
};

}  // namespace vel::test
