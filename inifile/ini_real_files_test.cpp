// Files as they are found in the field: the samples beside this test, and what the machine has of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
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

/// Whether it has a header and an equal sign, and no NUL at its beginning.
bool looksLikeIniFile(const std::string& text) {
  const std::size_t header = text.starts_with('[') ? 0 : text.find("\n[");
  return header != std::string::npos && text.find(']', header) != std::string::npos &&
         text.find('=') != std::string::npos && text.substr(0, 4096).find('\0') == std::string::npos;
}

/// Files below the directories in VEL_TEST_INI_DIRECTORIES, separated by blanks, or else below some that many
/// systems have.
std::vector<std::string> filesOfThisMachine() {
  const char* const asked = std::getenv("VEL_TEST_INI_DIRECTORIES");
  std::istringstream directories(asked != nullptr ? asked : "/usr/lib/systemd /usr/share/applications /etc");
  std::vector<std::string> files;
  for (std::string directory; directories >> directory;) {
    std::error_code error;
    fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
      if (std::error_code unknown; entry->is_regular_file(unknown) && !entry->is_symlink(unknown) &&
                                   entry->file_size(unknown) < 1'000'000)
        files.push_back(entry->path().string());
  }
  return files;
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
  // Not every name is one that stays as it is.
  const vel::test::ScratchDirectory scratch;
  std::vector<std::string> files = filesOfThisMachine();
  for (const auto& entry : fs::directory_iterator(kSamples)) files.push_back(entry.path().string());
  int loaded = 0;
  int edited = 0;
  for (const std::string& path : files) {
    const std::string text = readFile(path);
    if (!looksLikeIniFile(text)) continue;
    SCOPED_TRACE(path);
    ++loaded;
    const std::string copy = scratch.write("copy.ini", text);
    VelClIniFileEditor editor(copy.c_str());
    VelClIniFile file(copy.c_str());
    EXPECT_TRUE(editor.load(true) && file.load(true));
    EXPECT_EQ(std::string(editor.getText(), editor.getLength()), text);
    EXPECT_EQ(shown(editor.getIniFile()), shown(file));
    if (editMiddle(text)) ++edited;
  }
  std::cout << loaded << " files loaded, " << edited << " edited\n";
  EXPECT_GE(edited, 5);
}

}  // namespace
