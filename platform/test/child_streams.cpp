// The files behind a child's standard streams, and where its program is found.
#include "platform/test/child_streams.h"

namespace vel::test {

namespace {

std::string withoutCarriageReturns(std::string text) {
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.erase(at, 1);
  return text;
}

}  // namespace

ChildStreams::ChildStreams(const std::string& input)
    : input_(directory_.write("input", input)),
      output_(directory_.write("output", "")),
      errors_(directory_.write("errors", "")) {}

void ChildStreams::collect(const ChildOptions& options, ChildResult& result) const {
  result.output = readFile(output_);
  result.errors = readFile(errors_);
  if (options.rawOutput) return;
  result.output = withoutCarriageReturns(result.output);
  result.errors = withoutCarriageReturns(result.errors);
}

std::string programPath(const std::string& program, const std::string& extension) {
  std::string path = program;
  if (program.find_first_of("/\\") == std::string::npos) {
    path = ownProgram();
    path.replace(path.find_last_of("/\\") + 1, std::string::npos, program);
  }
  if (!path.ends_with(extension)) path += extension;
  return path;
}

}  // namespace vel::test
