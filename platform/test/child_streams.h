// What the child processes of every system share: the files behind their standard streams, their
// environment, and where their programs are found.
#pragma once

#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace vel::test {

/// One child's standard streams, as files of a directory of their own.
struct ChildStreams {
  explicit ChildStreams(const std::string& bytes) : input(directory.write("input", bytes)) {}

  /// Puts what the child wrote into the result.
  void collect(const ChildOptions& options, ChildResult& result) const;

  ScratchDirectory directory;
  std::string input, output = directory.write("output", ""), errors = directory.write("errors", "");
};

/// `program` as a path: a bare name stands for a program beside the running one.
std::string programPath(const std::string& program, const std::string& extension);

/// An environment, null at its end, with the changes.
std::vector<std::string> changedEnvironment(char** environment, const Variables& changes);

}  // namespace vel::test
