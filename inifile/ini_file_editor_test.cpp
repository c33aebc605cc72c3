// The editor changes what it is asked to and not one byte else. fuzz/inifile_editor_fuzz.cpp says so of any
// text.

#include <fstream>
#include <memory>

#include "inifile/test/ini_fixture.h"
#include "vel_include/vel.h"

using testing::Each;
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
    EXPECT_TRUE(editor.getIniFile().getSection(row[1].c_str()));
    EXPECT_TRUE(editor.getIniFile().getOption(row[2].c_str(), value));
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

/// Tries to lock at once.
bool locks(VelClIniFileEditor& editor) {
  return editor.lock(0) == VelEnIniFileLock::LOCKED;
}

TEST(IniEditor, LocksOutOtherEditorsUntilItHasSaved) {
  const vel::test::ScratchDirectory directory;
  for (const std::string& path : {directory.write("old.ini", "[A]\nx=1\n"), directory.path("new.ini")}) {
    SCOPED_TRACE(path);
    VelClIniFileEditor first(path.c_str()), second(path.c_str());
    EXPECT_TRUE(locks(first));
    for (const unsigned int waitMs : {0U, 30U}) EXPECT_EQ(second.lock(waitMs), VelEnIniFileLock::TIMED_OUT);
    first.load(true);
    EXPECT_TRUE(first.setValue("A", "x", "2"));
    EXPECT_FALSE(locks(second));
    EXPECT_THAT((std::array{first.save(), locks(second)}), Each(true));
    // Also what was made anew is locked now, and changes follow each other.
    EXPECT_FALSE(locks(first));
    EXPECT_THAT((std::array{second.load(true), second.setValue("A", "y", "3"), second.save(), locks(first),
                            locks(first), first.load(true)}),
                Each(true));
    EXPECT_EQ(shown(first.getIniFile()), "[A]x=2|y=3|");
    first.unlock();
    EXPECT_TRUE(locks(second));
  }
  EXPECT_TRUE(locks(*std::make_unique<VelClIniFileEditor>(directory.path("old.ini").c_str())));
  for (const char* const entry : {"none/a.ini", "."})
    EXPECT_EQ(VelClIniFileEditor(directory.path(entry).c_str()).lock(0), VelEnIniFileLock::FAILED) << entry;
}

/// What another program does to a file.
void replace(const std::string& path) {
  // Beside the old one for a while, so that it has a number of its own.
  std::ofstream(path + "2") << "[B]\nx=1\n";
  std::filesystem::rename(path + "2", path);
}
void remove(const std::string& path) {
  std::filesystem::remove(path);
}
void append(const std::string& path) {
  std::ofstream(path, std::ios::app) << "y=1\n";
}

/// What an editor does, and where the other program acts.
enum Step { LOCK, READ, SAVE, OTHER };

TEST(IniEditor, SavesOnlyOverTheFileThatItLocked) {
  struct Row {
    const char* name;
    std::vector<Step> steps;
    void (*other)(const std::string& path);
    bool works = false;
    bool isMade = false;
  };
  const Row rows[] = {
      {"again", {LOCK, READ, SAVE, LOCK, READ, SAVE}, nullptr, true},
      {"replaced before", {OTHER, LOCK, READ, SAVE}, replace, true},
      {"replaced without a lock", {READ, OTHER, SAVE}, replace, true},
      {"replaced and read", {LOCK, OTHER, READ}, replace},
      {"replaced and saved", {LOCK, READ, OTHER, SAVE}, replace},
      {"replaced, saved and never read", {LOCK, OTHER, SAVE}, replace},
      {"replaced before the lock", {READ, OTHER, LOCK, SAVE}, replace},
      {"removed", {LOCK, READ, OTHER, SAVE}, remove},
      {"changed", {LOCK, READ, OTHER, SAVE}, append},
      {"made", {LOCK, OTHER, SAVE}, replace, false, true},
  };
  const vel::test::ScratchDirectory directory;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = directory.path(std::string(row.name) + ".ini");
    if (!row.isMade) std::ofstream(path) << "[A]\nx=1\n";
    VelClIniFileEditor editor(path.c_str());
    // What is there at the end if the last step fails.
    std::string before;
    bool works = true;
    for (const Step step : row.steps) {
      EXPECT_TRUE(works) << "before the last step";
      if (step == OTHER) row.other(path);
      before = readFile(path);
      if (step == LOCK) works = locks(editor);
      if (step == READ) works = editor.load(true);
      if (step == SAVE) works = editor.setValue("A", "x", "2") && editor.save();
    }
    EXPECT_EQ(works, row.works);
    EXPECT_EQ(editor.isReplaced(), !row.works);
    EXPECT_EQ(std::filesystem::exists(path), row.other != remove);
    if (row.works) continue;
    EXPECT_EQ(readFile(path), before);
  }
}

}  // namespace
