// The editor changes what it was told to change and no other byte. fuzz/inifile_editor_fuzz.cpp tests the
// same with any text.
#include "inifile/test/ini_fixture.h"
#include "vel_include/vel.h"

namespace fs = std::filesystem;

using testing::Each;
using namespace vel::test;

namespace {

std::string textOf(const VelClIniFileEditor& editor) {
  return {editor.getText(), editor.getLength()};
}

/// Makes the change of a row of edits.tsv.
bool change(VelClIniFileEditor& editor, const std::vector<std::string>& row) {
  const char *section = orNull(row[1]), *option = orNull(row[2]), *value = orNull(row[3]);
  const bool deletes = row[3] == "-";
  if (row[2] == "-") return deletes ? editor.deleteSection(section) : editor.addSection(section);
  return deletes ? editor.deleteOption(section, option) : editor.setValue(section, option, value);
}

TEST(IniEditor, ChangesNoOtherByteOfTheText) {
  VelClIniFileEditor empty("unused");
  empty.loadFromBuffer(nullptr, 1, true);
  EXPECT_EQ(textOf(empty), "");
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
    EXPECT_EQ(value, row[3] == "(null)" ? "" : row[3]);
  }
}

TEST(IniEditor, RenamesAndCommentsOut) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/renames.tsv")) {
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(row[0].data(), row[0].size(), true);
    const char *section = row[1].c_str(), *option = row[2].c_str(), *name = orNull(row[3]);
    const bool isDone = row[2] == "-"   ? editor.renameSection(section, name)
                        : row[3] == "-" ? editor.commentOutOption(section, option)
                                        : editor.renameOption(section, option, name);
    EXPECT_EQ(isDone, row.at(4) != "-") << row[0];
    EXPECT_EQ(textOf(editor), isDone ? row[4] : row[0]);
  }
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer("[A]\nx=1\n", 8, true);
  EXPECT_FALSE(editor.renameOption("A", "x", ""));
  EXPECT_FALSE(editor.renameSection("A", ""));
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

/// Locks without waiting.
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
    // The lock is advisory: an editor that did not get it is not hindered.
    EXPECT_EQ(second.load(true), fs::exists(path));
    EXPECT_THAT((std::array{first.save(), locks(second)}), Each(true));
    // The lock holds for the file that save() has put in place of the old one.
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

/// Makes a step of a row of other_programs.tsv: one of the editor, or a change by another program.
bool makeStep(const std::string& step, VelClIniFileEditor& editor, const std::string& path) {
  if (step == "lock") return locks(editor);
  if (step == "load") return editor.load(true);
  if (step == "save") return editor.setValue("A", "x", "2") && editor.save();
  if (step == "remove") return fs::remove(path);
  if (step == "append") return (std::ofstream(path, std::ios::app) << "y=1\n").good();
  EXPECT_EQ(step, "replace");
  // Both files exist for a moment, so that the new one gets another file number.
  std::ofstream(path + "2") << "[B]\nx=1\n";
  fs::rename(path + "2", path);
  return true;
}

TEST(IniEditor, SavesOnlyOverTheFileThatItHasLocked) {
  const auto contents = [](const std::string& path) { return fs::exists(path) ? readFile(path) : "no file"; };
  const vel::test::ScratchDirectory directory;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/other_programs.tsv")) {
    SCOPED_TRACE(row[0]);
    const std::string path = directory.path(row[0] + ".ini");
    if (row[1] == "yes") std::ofstream(path) << "[A]\nx=1\n";
    VelClIniFileEditor editor(path.c_str());
    std::string beforeLastStep;
    bool works = true;
    std::istringstream steps(row[2]);
    for (std::string step; steps >> step;) {
      EXPECT_TRUE(works) << "before " << step;
      beforeLastStep = contents(path);
      works = makeStep(step, editor, path);
    }
    EXPECT_EQ(works, row.at(3) == "yes");
    EXPECT_EQ(editor.isReplaced(), !works);
    if (!works) {
      EXPECT_EQ(contents(path), beforeLastStep);
    }
    EXPECT_TRUE(locks(editor));
    EXPECT_FALSE(editor.isReplaced()) << "a new lock is for the file as it is now";
  }
}

}  // namespace
