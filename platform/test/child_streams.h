// What the child processes of every system share: the files behind their standard streams.
#pragma once

#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace vel::test {

/// One child's standard input, output and error, as files of a directory of their own.
class ChildStreams {
 public:
  explicit ChildStreams(const std::string& input);

  const std::string& input() const { return input_; }
  const std::string& output() const { return output_; }
  const std::string& errors() const { return errors_; }

  /// Puts what the child wrote into the result.
  void collect(const ChildOptions& options, ChildResult& result) const;

 private:
  ScratchDirectory directory_;
  std::string input_;
  std::string output_;
  std::string errors_;
};

/// `program` as a path: a bare name stands for a program beside the running one.
std::string programPath(const std::string& program, const std::string& extension);

inline constexpr int kChildTimeLimitSeconds = 60;

}  // namespace vel::test
