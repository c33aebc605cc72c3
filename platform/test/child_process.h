// Starts a program as a child, waits for it and keeps what it printed: for tests of exit codes,
// abnormal ends and printed bytes. And what tests want to know of other processes.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vel::test {

/// No test waits longer for anything: longer than a busy machine takes, and less than ctest waits for a test.
inline constexpr int kTimeLimitMs = 600 * 1000;

struct ChildResult {
  bool started = false;
  /// abort(), a crash or the time limit. On Windows abort() is exit code 3, so a child must not use
  /// that code for anything else; on POSIX systems 127 is that of a child without program.
  bool endedAbnormally = false;
  int exitCode = -1;            ///< when it ended by itself
  std::string output;           ///< standard output, CR LF as LF
  std::string errors;           ///< standard error, CR LF as LF
  std::string failedCall = {};  ///< see ChildOptions::failingCall
};

/// Variables to set for a child; an empty value removes one.
using Variables = std::vector<std::pair<std::string, std::string>>;

struct ChildOptions {
  Variables environment = {};
  std::string input = {};  ///< bytes for standard input
  bool rawOutput = false;  ///< leave line breaks as the child wrote them
  /// On Linux: which of the calls that write to files fails, from 1; the result tells its name, "" when
  /// there are fewer. There is no time limit then.
  int failingCall = 0;
  std::string failingReads = {};  ///< a directory in full: calls that read files there count, too
};

/// `program` is a name beside the running program, without extension, or a path. A child that reaches the
/// time limit is ended and reported as an abnormal end. The child's standard streams are files: it can
/// never block on them.
ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options = {});

/// A tool that speaks English, and leaves line breaks as they are.
ChildResult runTool(const std::string& tool, const std::vector<std::string>& arguments,
                    const std::string& input = {});

/// The path of the running program.
std::string ownProgram();

/// Whether a process ends in this time, or is no more. It may still wait to be noticed by its parent.
bool endsWithin(unsigned int processId, int milliseconds);

/// Asks every millisecond until the answer is yes; false at the time limit.
bool waitUntil(const std::function<bool()>& question, int limitMs = kTimeLimitMs);

/// Closes a descriptor of the runtime.
void closeDescriptor(int descriptor);

/// Null removes the variable.
void setVariable(const char* name, const char* value);

}  // namespace vel::test
