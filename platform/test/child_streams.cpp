// The files behind a child's standard streams, and where its program is found.
#include "platform/test/child_streams.h"

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

}  // namespace vel::test
