// A directory as the root that names begin at, for tests that must not come near any other root.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vel::test {

/// Gets what names of the root may begin with, and returns its complaints.
using InOwnRoot = std::function<std::string(const std::vector<std::string>& beginnings)>;

/// Runs the action with the directory as the root and as the current directory: on POSIX systems in a copy of
/// this process whose root it is, on Windows on a drive of its own. Nothing where the system permits neither.
std::optional<std::string> inOwnRoot(const std::string& directory, const InOwnRoot& action);

}  // namespace vel::test
