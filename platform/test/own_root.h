// Makes a directory the root of names, for tests that must not touch the real root.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vel::test {

/// Receives the prefixes that names of the root may have, and returns its complaints.
using InOwnRoot = std::function<std::string(const std::vector<std::string>& beginnings)>;

/// Runs `action` with `directory` as the root and the current directory: on POSIX systems in a copy of this
/// process after chroot, on Windows on a separate drive. Returns nothing if the system does not permit it.
std::optional<std::string> inOwnRoot(const std::string& directory, const InOwnRoot& action);

}  // namespace vel::test
