// Files as they are found in the field: the samples beside this test, also with other line ends and sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "inifile/test/ini_fixture.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"
#include "vel_include/vel_inifile.h"

namespace {

namespace fs = std::filesystem;
using vel::test::readFile;
using vel::test::shown;

const std::string kSamples = VEL_TEST_DATA "test/samples/";

TEST(IniRealFiles, AnswerAsTheParserReadsThem) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/samples.tsv")) {
    VelClIniFile file((kSamples + row.at(0)).c_str());
    EXPECT_TRUE(file.load(true)) << row[0];
    file.getSection(row.at(1).c_str());
    const char* value = "(none)";
    file.getOption(row.at(2).c_str(), value);
    EXPECT_EQ(value, vel::test::unescaped(row.at(3))) << row[0] << ": " << row[2];
  }
}

/// A file's text with every line end changed.
std::string withReturns(const std::string& text) {
  std::string changed;
  for (const char c : text) changed += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return changed;
}

/// Each as it is, as another system writes it, with an open end, and longer than any buffer.
std::vector<std::string> variantsOf(const std::string& text) {
  constexpr std::size_t kLong = 300'000;
  std::vector<std::string> variants{text, withReturns(text),
                                    text.substr(0, text.find_last_not_of("\r\n") + 1), ""};
  while (variants.back().size() < kLong) variants.back() += text;
  return variants;
}

/// The common beginning ends behind the option's equal sign, and a double quote that the value had before.
/// What was there is a piece of its line.
void expectOneChange(const std::string& before, const std::string& after, const std::string& value) {
  const auto front = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto back = std::mismatch(before.rbegin(), std::make_reverse_iterator(front.first), after.rbegin(),
                                  std::make_reverse_iterator(front.second));
  const std::string written(front.second, back.second.base());
  EXPECT_TRUE(written == value || written == "\"" + value + "\"") << written;
  EXPECT_EQ(std::find(front.first, back.first.base(), '\n'), back.first.base());
  const std::string beginning(before.begin(), front.first);
  const std::string line = beginning.substr(beginning.rfind('\n') + 1);
  EXPECT_EQ(line.find('='), line.find_last_not_of(" \t\"")) << line;
}

/// Sets a value in the middle one of all options, if there is any.
bool editMiddle(const std::string& text) {
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer(text.data(), text.size(), false);
  std::vector<std::pair<std::string, std::string>> options;
  const VelClIniFile& file = editor.getIniFile();
  for (auto* section = file.getFirstSection(); section != nullptr; section = section->getNext())
    // Options behind a section's second header are not found by name.
    for (auto* option = file.getExistingSection(section->getName())->getFirstOption(); option != nullptr;
         option = option->getNext())
      options.emplace_back(section->getName(), option->getName());
  if (options.empty()) return false;
  const auto& [section, option] = options[options.size() / 2];
  const std::string value = "\xFFnew value\xFF";
  EXPECT_TRUE(editor.setValue(section.c_str(), option.c_str(), value.c_str())) << option;
  expectOneChange(text, {editor.getText(), editor.getLength()}, value);
  return true;
}

TEST(IniRealFiles, AreLoadedAndEditedInOnePlace) {
  const vel::test::ScratchDirectory scratch;
  int edited = 0;
  for (const auto& entry : fs::directory_iterator(kSamples))
    for (const std::string& text : variantsOf(readFile(entry.path().string()))) {
      SCOPED_TRACE(entry.path().filename().string() + ", bytes: " + std::to_string(text.size()));
      const std::string copy = scratch.write("copy.ini", text);
      VelClIniFileEditor editor(copy.c_str());
      VelClIniFile file(copy.c_str());
      EXPECT_TRUE(editor.load(true) && file.load(true));
      EXPECT_EQ(std::string(editor.getText(), editor.getLength()), text);
      EXPECT_EQ(shown(editor.getIniFile()), shown(file));
      if (editMiddle(text)) ++edited;
    }
  // In one of the six samples nothing is an option, until its first line stands behind a header.
  EXPECT_EQ(edited, 5 * 4 + 1);
}

}  // namespace
