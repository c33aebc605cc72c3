// Runs a program as a child and returns its output and exit code; and asks about other processes.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vel::test {

/// The limit of every wait in a test: longer than a busy machine needs, shorter than the time-out of ctest.
inline constexpr int kTimeLimitMs = 600 * 1000;

struct ChildResult {
  bool started = false;
  /// Ended by abort(), a crash or the time limit. A child must not use exit code 3, which is that of abort()
  /// on Windows, nor 127, which on POSIX systems means that the program was not found.
  bool endedAbnormally = false;
  int exitCode = -1;            ///< -1 if it ended abnormally
  std::string output;           ///< standard output, CR LF as LF
  std::string errors;           ///< standard error, CR LF as LF
  std::string failedCall = {};  ///< see ChildOptions::failingCall
};

/// Variables to set for a child; an empty value removes one.
using Variables = std::vector<std::pair<std::string, std::string>>;

struct ChildOptions {
  Variables environment = {};
  std::string input = {};  ///< bytes for standard input
  bool rawOutput = false;  ///< keep CR LF in the output
  /// Linux only: the number of the call that fails, from 1, among those that write to files. The result has
  /// its name, or "" if there are fewer. A negative number counts writes only, and this one writes half of
  /// its bytes. No time limit applies.
  int failingCall = 0;
  std::string failingReads = {};  ///< an absolute path: calls that read files in it count, too
};

/// Runs `program`: a path, or a name without extension in the directory of this program. A child that reaches
/// the time limit is ended. Its standard streams are files, so it cannot block on them.
ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options = {});

/// Runs a tool in English, with rawOutput.
ChildResult runTool(const std::string& tool, const std::vector<std::string>& arguments,
                    const std::string& input = {});

/// Splits arguments as the system does: by /bin/sh, or by CommandLineToArgvW.
std::vector<std::string> splitBySystem(const std::string& arguments);

/// Returns the path of this program.
std::string ownProgram();

/// Waits for the end of a process; returns false at the time limit. A zombie counts as ended.
bool endsWithin(unsigned int processId, int milliseconds);

/// Calls `question` every millisecond until it returns true; returns false at the time limit.
bool waitUntil(const std::function<bool()>& question, int limitMs = kTimeLimitMs);

/// Closes a descriptor of the C run-time library.
void closeDescriptor(int descriptor);

/// Null removes the variable.
void setVariable(const char* name, const char* value);

}  // namespace vel::test
