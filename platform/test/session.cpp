// Reads a session file line by line; a run is performed when the one behind it, or an empty line, is met.
#include "platform/test/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <sstream>

#include "platform/test/child_process.h"
#include "platform/test/table.h"

namespace vel::test {

namespace {

struct Run {
  std::string place = {};  ///< in the session file
  std::vector<std::string> words = {};
  ChildOptions options = {.environment = {{"LC_ALL", "C"}}};
  std::string output = {}, errors = {}, partOfErrors = {};
  int exitCode = 0;
};

std::string lineOf(const std::string& text) {
  const bool goesOn = text.ends_with('\\') && !text.ends_with("\\\\");
  return goesOn ? unescaped(text.substr(0, text.size() - 1)) : unescaped(text) + '\n';
}

void addVariable(Run& run, const std::string& text) {
  const std::size_t equalSign = text.find('=');
  ASSERT_NE(equalSign, std::string::npos) << "neither a variable nor anything else: " << text;
  run.options.environment.emplace_back(text.substr(0, equalSign), unescaped(text.substr(equalSign + 1)));
}

void addWords(Run& run, const std::string& text) {
  std::istringstream stream(text);
  for (std::string word; stream >> std::quoted(word);) {
    if (run.words.empty() && word.find('=') != std::string::npos)
      addVariable(run, word);
    else
      run.words.push_back(word);
  }
}

void addLine(Run& run, const std::string& line) {
  const std::string text = line.substr(std::min<std::size_t>(line.size(), 2));
  if (line[0] == '$') return addWords(run, text);
  if (line[0] == '~') run.partOfErrors = unescaped(text);
  if (line[0] == '=') run.exitCode = std::stoi(text);
  if (line[0] == '<') run.options.input += lineOf(text);
  if (line[0] == '>') run.output += lineOf(text);
  if (line[0] == '!') run.errors += lineOf(text);
  if (std::string("#~=<>!").find(line[0]) == std::string::npos) addVariable(run, line);
}

/// Does nothing before the first run of some that belong together.
void perform(const Run& run) {
  if (run.words.empty()) return;
  ChildResult result = runChild(run.words[0], {run.words.begin() + 1, run.words.end()}, run.options);
  std::erase(result.errors, '\r');
  EXPECT_TRUE(result.started && !result.endedAbnormally) << run.place;
  EXPECT_EQ(result.output, run.output) << run.place;
  EXPECT_TRUE(!run.partOfErrors.empty() || result.errors == run.errors) << run.place << "\n" << result.errors;
  EXPECT_THAT(result.errors, testing::HasSubstr(run.partOfErrors)) << run.place;
  EXPECT_EQ(result.exitCode, run.exitCode) << run.place;
}

}  // namespace

void expectSession(const std::string& path, bool rawOutput) {
  std::ifstream file(path);
  Run shared, run;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.empty() || line[0] == '$') perform(run);
    if (line.empty()) {
      shared = run = {};
      continue;
    }
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
