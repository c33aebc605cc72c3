// Runs a child; each system has its own implementation. child_process.cpp does what they have in common.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace vel::test {

/// Everything that a system needs to start a child.
struct ChildPlan {
  std::string program;  ///< its path, without extension
  std::vector<std::string> arguments;
  std::vector<std::string> environment;
  std::array<std::string, 3> streams;  ///< files
  int failingCall = 0;
  std::string failingReads = {};
};

/// Runs the child, at most until the time limit, and fills in all of the result except the output.
void runPlan(ChildPlan plan, ChildResult& result);

}  // namespace vel::test
