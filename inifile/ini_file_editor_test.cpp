// The editor changes what it is asked to and not one byte else. fuzz/inifile_editor_fuzz.cpp says so of any
// text.
#include <gtest/gtest.h>

#include <string>

#include "inifile/test/ini_fixture.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"
#include "vel_include/vel.h"

using vel::test::readFile;
using vel::test::readTexts;
using vel::test::shown;

namespace {

std::string textOf(const VelClIniFileEditor& editor) {
  return {editor.getText(), editor.getLength()};
}

/// Asked for by a row of edits.tsv.
bool change(VelClIniFileEditor& editor, const std::vector<std::string>& row) {
  const char *section = row[1].c_str(), *option = row[2].c_str(), *value = row[3].c_str();
  const bool deletes = row[3] == "-";
  if (row[2] == "-") return deletes ? editor.deleteSection(section) : editor.addSection(section);
  return deletes ? editor.deleteOption(section, option) : editor.setValue(section, option, value);
}

TEST(IniEditor, ChangesNothingElse) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/edits.tsv")) {
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(row[0].data(), row[0].size(), true);
    const std::string model = shown(editor.getIniFile());
    const bool changed = change(editor, row);
    EXPECT_EQ(changed, row.at(4) != "-") << row[0];
    EXPECT_EQ(textOf(editor), changed ? row[4] : row[0]);
    EXPECT_EQ(shown(editor.getIniFile()) == model, !changed) << row[0];
    if (!changed || row[2] == "-" || row[3] == "-") continue;
    const char* value = nullptr;
    EXPECT_TRUE(editor.getIniFile().getSection(row[1].c_str()) &&
                editor.getIniFile().getOption(row[2].c_str(), value));
    EXPECT_EQ(value, row[3]);
  }
}

TEST(IniEditor, MergesAllOrNothing) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/merges.tsv")) {
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(row[0].data(), row[0].size(), true);
    VelClIniFile source("unused");
    vel::test::loadText(source, row[1]);
    EXPECT_EQ(editor.merge(source), row.at(2) != "-") << row[0];
    EXPECT_EQ(textOf(editor), row[2] == "-" ? row[0] : row[2]);
  }
}

TEST(IniEditor, SavesTheTextAsItIs) {
  const vel::test::ScratchDirectory directory;
  const std::string path = directory.write("a.ini", "[A]\r\nx=1\r\n");
  VelClIniFileEditor editor(path.c_str());
  EXPECT_TRUE(editor.load(true) && editor.setValue("A", "x", "2") && editor.save());
  EXPECT_EQ(readFile(path), "[A]\r\nx=2\r\n");
  EXPECT_FALSE(VelClIniFileEditor(directory.path("none").c_str()).load(true));
  VelClIniFileEditor created(directory.path("new").c_str());
  EXPECT_TRUE(created.setValue("A", "x", "1") && created.save());
  EXPECT_EQ(readFile(directory.path("new.INI")), "[A]\nx = 1\n");
}

}  // namespace
