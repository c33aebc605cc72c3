// Starts a program as a child, waits for it and keeps what it printed: for tests of exit codes,
// abnormal ends and printed bytes.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vel::test {

struct ChildResult {
  bool started = false;
  /// abort(), a crash or the time limit. On Windows abort() is exit code 3, so a child must not use
  /// that code for anything else.
  bool endedAbnormally = false;
  int exitCode = -1;   ///< when it ended by itself
  std::string output;  ///< standard output, CR LF as LF
  std::string errors;  ///< standard error, CR LF as LF
};

/// Variables to set for a child; an empty value removes one.
using Variables = std::vector<std::pair<std::string, std::string>>;

struct ChildOptions {
  Variables environment = {};
  std::string input = {};  ///< bytes for standard input
  bool rawOutput = false;  ///< leave line breaks as the child wrote them
};

/// `program` is a name beside the running program, without extension, or a path. Waits at most
/// 60 seconds, then ends the child and reports an abnormal end. The child's standard streams are
/// files: it can never block on them.
ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options = {});

/// The path of the running program.
std::string ownProgram();

}  // namespace vel::test
