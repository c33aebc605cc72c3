// Prepares the files for a child's standard streams, its environment, and the path of its program.
#include "platform/test/child_process.h"

#include <stdlib.h>

#include <chrono>
#include <thread>

#include "platform/test/child_system.h"
#include "platform/test/scratch_directory.h"

namespace vel::test {

namespace {

std::vector<std::string> changedEnvironment(const Variables& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
  for (const auto& [name, value] : changes) {
    const std::string start = name + "=";
    std::erase_if(result, [&start](const std::string& entry) { return entry.starts_with(start); });
    if (!value.empty()) result.push_back(start + value);
  }
  return result;
}

}  // namespace

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
  const ScratchDirectory directory;
  const std::string output = directory.write("output", ""), errors = directory.write("errors", "");
  std::filesystem::path path = program;
  if (!path.has_parent_path()) path = std::filesystem::path(ownProgram()).replace_filename(program);
  ChildResult result;
  runPlan({path.string(),
           arguments,
           changedEnvironment(options.environment),
           {directory.write("input", options.input), output, errors},
           options.failingCall,
           options.failingReads},
          result);
  result.output = readFile(output);
  result.errors = readFile(errors);
  if (options.rawOutput) return result;
  for (std::string* text : {&result.output, &result.errors})
    for (std::size_t at = 0; (at = text->find("\r\n", at)) != std::string::npos;) text->erase(at, 1);
  return result;
}

ChildResult runTool(const std::string& tool, const std::vector<std::string>& arguments,
                    const std::string& input) {
  return runChild(tool, arguments, {.environment = {{"LC_ALL", "C"}}, .input = input, .rawOutput = true});
}

// Polls, because systems do not notify of a changed file, a terminal's mode or a window of another process.
bool waitUntil(const std::function<bool()>& question, int limitMs) {
  for (int passedMs = 0; passedMs < limitMs; ++passedMs) {
    if (question()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return question();
}

}  // namespace vel::test
