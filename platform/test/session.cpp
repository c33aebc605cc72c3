// Reads a session file line by line. A run is performed when the next one, an empty line or the end is
// reached.
#include "platform/test/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <optional>
#include <sstream>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"

namespace vel::test {

namespace {

struct Run {
  std::string place = {};  ///< in the session file
  std::string folder = {}, directory = {};
  std::vector<std::string> words = {};
  ChildOptions options = {.environment = {{"LC_ALL", "C"}}};
  std::string output = {}, errors = {};
  std::vector<std::string> partsOfOutput = {}, partsOfErrors = {};
  std::vector<std::pair<std::string, std::string>> files = {};  ///< names and contents
  int exitCode = 0;
};

/// Replaces "%/" and "@/" by their folders.
std::string filled(const Run& run, std::string text) {
  for (const auto& [sign, folder] : {std::pair("%/", &run.folder), std::pair("@/", &run.directory)})
    for (std::size_t at = 0; (at = text.find(sign, at)) != std::string::npos; at += folder->size())
      text.replace(at, 1, *folder);
  return text;
}

std::string lineOf(const Run& run, const std::string& text) {
  const bool goesOn = text.ends_with('\\') && !text.ends_with("\\\\");
  return filled(run, goesOn ? unescaped(text.substr(0, text.size() - 1)) : unescaped(text) + '\n');
}

/// Returns the text of the line, or the contents of the file it names if the sign is doubled.
std::string partOf(const Run& run, const std::string& line) {
  if (line[0] == line[1]) return readFile(filled(run, line.substr(3)));
  return filled(run, unescaped(line.substr(2)));
}

void addVariable(Run& run, const std::string& text) {
  const std::size_t equalSign = text.find('=');
  ASSERT_NE(equalSign, std::string::npos) << "neither a variable nor anything else: " << text;
  run.options.environment.emplace_back(text.substr(0, equalSign),
                                       filled(run, unescaped(text.substr(equalSign + 1))));
}

void addWords(Run& run, const std::string& text) {
  std::istringstream stream(text);
  for (std::string word; stream >> std::quoted(word);) {
    if (run.words.empty() && word.find('=') != std::string::npos)
      addVariable(run, word);
    else
      run.words.push_back(filled(run, word));
  }
}

/// Parses the name of a file and its contents.
std::pair<std::string, std::string> fileOf(const Run& run, const std::string& text) {
  const std::size_t blank = text.find(' ');
  return {run.directory + '/' + text.substr(0, blank), unescaped(text.substr(blank + 1))};
}

void addLine(Run& run, const std::string& line) {
  const char sign = line[0];
  const std::string text = line.substr(std::min<std::size_t>(line.size(), 2));
  if (sign == '#') return;
  if (sign == '$') return addWords(run, text);
  if (sign == '?') return run.partsOfOutput.push_back(partOf(run, line));
  if (sign == '~') return run.partsOfErrors.push_back(partOf(run, line));
  if (sign == ':') return run.files.push_back(fileOf(run, text));
  if (sign == '<')
    run.options.input += lineOf(run, text);
  else if (sign == '>')
    run.output += line.starts_with(">>") ? partOf(run, line) : lineOf(run, text);
  else if (sign == '!')
    run.errors += lineOf(run, text);
  else if (sign == '+')
    std::ofstream(utf8Path(fileOf(run, text).first), std::ios::binary) << fileOf(run, text).second;
  else if (sign == '=')
    run.exitCode = std::stoi(text);
  else
    addVariable(run, line);
}

/// Expects the parts if there are any, else the whole text.
void expectText(const std::string& text, const std::string& whole, const std::vector<std::string>& parts) {
  EXPECT_THAT(text, testing::Conditional(parts.empty(), whole, testing::_));
  for (const std::string& part : parts) EXPECT_THAT(text, testing::HasSubstr(part));
}

/// Performs a run; does nothing before the first one of a group.
void perform(const Run& run) {
  if (run.words.empty()) return;
  SCOPED_TRACE(run.place);
  ChildResult result = runChild(run.words[0], {run.words.begin() + 1, run.words.end()}, run.options);
  std::erase(result.errors, '\r');
  // On Windows 3 looks like abort().
  EXPECT_TRUE(result.started);
  EXPECT_THAT(result.endedAbnormally, testing::AnyOf(false, run.exitCode == 3));
  expectText(result.output, run.output, run.partsOfOutput);
  expectText(result.errors, run.errors, run.partsOfErrors);
  EXPECT_EQ(result.exitCode, run.exitCode);
  for (const auto& [name, contents] : run.files) EXPECT_EQ(readFile(name), contents) << name;
}

}  // namespace

void expectSession(const std::string& path, bool rawOutput) {
  std::ifstream file(path);
  std::optional<ScratchDirectory> directory;
  Run shared, run;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.empty() || line[0] == '$') perform(run);
    if (line.empty() || !directory.has_value()) {
      directory.emplace();
      shared = run = {.folder = path.substr(0, path.rfind('/')), .directory = directory->path()};
    }
    if (line.empty()) continue;
    if (line[0] == '$') {
      run = shared;
      run.options.rawOutput = rawOutput;
      run.place = path + ":" + std::to_string(number);
    }
    addLine(run.place.empty() ? shared : run, line);
  }
  perform(run);
  EXPECT_FALSE(run.words.empty()) << path << " ends without a run";
}

}  // namespace vel::test
