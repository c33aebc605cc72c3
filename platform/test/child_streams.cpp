#include "platform/test/child_streams.h"

#include <chrono>
#include <thread>

namespace vel::test {

void ChildStreams::collect(const ChildOptions& options, ChildResult& result) const {
  result.output = readFile(output);
  result.errors = readFile(errors);
  if (options.rawOutput) return;
  for (std::string* text : {&result.output, &result.errors})
    for (std::size_t at = 0; (at = text->find("\r\n", at)) != std::string::npos;) text->erase(at, 1);
}

std::string programPath(const std::string& program, const std::string& extension) {
  std::filesystem::path path = program;
  if (!path.has_parent_path()) path = std::filesystem::path(ownProgram()).replace_filename(program);
  return path.string().ends_with(extension) ? path.string() : path.string() + extension;
}

std::vector<std::string> changedEnvironment(char** environment, const Variables& changes) {
  std::vector<std::string> result;
  for (; *environment != nullptr; ++environment) result.emplace_back(*environment);
  for (const auto& [name, value] : changes) {
    const std::string start = name + "=";
    std::erase_if(result, [&start](const std::string& entry) { return entry.starts_with(start); });
    if (!value.empty()) result.push_back(start + value);
  }
  return result;
}

bool waitUntil(const std::function<bool()>& question) {
  for (int passedMs = 0; passedMs < kTimeLimitMs; ++passedMs) {
    if (question()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return question();
}

}  // namespace vel::test
