// Cursors, changes to the model, and what saving writes. That it round-trips
// is fuzz/inifile_load_fuzz.cpp's matter.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "inifile/test/ini_fixture.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"
#include "vel_include/vel.h"

using vel::test::loadText;
using vel::test::readFile;
using vel::test::ScratchDirectory;
using vel::test::shown;

namespace fs = std::filesystem;

namespace {

std::string saved(VelClIniFileSave& file) {
  std::ostringstream stream;
  EXPECT_TRUE(file.save(stream));
  return stream.str();
}

TEST(IniSave, WritesTheModel) {
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/saved.tsv")) {
    VelClIniFileSave file("unused");
    loadText(file, row[0]);
    EXPECT_EQ(saved(file), row.at(1)) << row[0];
  }
}

/// Lines of a derived class.
class Lines : public VelClIniFileSave {
 public:
  Lines() : VelClIniFileSave("unused") {}
  std::string write() const {
    std::ostringstream stream;
    stream.width(9);
    stream << std::hex;
    EXPECT_TRUE(saveSection(stream, "S", "c") && saveComment(stream, nullptr) && saveComment(stream, "d"));
    EXPECT_TRUE(saveOption(stream, "i", -5, "c") && saveOption(stream, "u", 4294967295U, ""));
    EXPECT_TRUE(saveOption(stream, "l", -2147483647L, nullptr) && saveOption(stream, "m", 255UL, "c"));
    EXPECT_TRUE(saveOption(stream, "c", ';', "c") && saveOption(stream, "n", '\n', nullptr));
    EXPECT_TRUE(saveOption(stream, "e", "", "c") && saveOption(stream, "e", nullptr, "c"));
    EXPECT_TRUE(saveOption(stream, "0", '\0', "c") && saveOption(stream, nullptr, 'n', nullptr));
    EXPECT_TRUE(saveOptionBool(stream, "t", true, nullptr) && saveOptionBool(stream, "f", false, "c"));
    return stream.str();
  }
};

TEST(IniSave, WritesSingleLines) {
  EXPECT_EQ(Lines().write(),
            "\n[S]\t; c\n\n\t; d\ni\t= -5\t; c\nu\t= 4294967295\nl\t= -2147483647\nm\t= 255\t; c\n"
            "c\t= ';'\t; c\nn\t= '\\n'\n0\t= '\\x00'\t; c\n\t= 'n'\nt\t= ON\nf\t= OFF\t; c\n");
}

TEST(IniSave, ReplacesTheWholeFile) {
  const ScratchDirectory directory;
  const std::string path = directory.write("a.INI", "[A]\nx=1 ; old\n");
  VelClIniFileSave file(VelClFilename(directory.path("a").c_str()));
  ASSERT_TRUE(file.load(true));
  EXPECT_TRUE(file.save());
  EXPECT_EQ(readFile(path), "\n[A]\nx\t= 1\t; old\n");
  EXPECT_TRUE(file.getSection("A") && file.setNewValue("x", std::string(1000, 'v').c_str()));
  for (int i = 0; i < 200; ++i)
    EXPECT_TRUE(file.addOption(("o" + std::to_string(i)).c_str(), std::string(1000, 'w').c_str()));
  EXPECT_TRUE(file.save());
  VelClIniFileSave again(path.c_str());
  EXPECT_TRUE(again.load(false));
  EXPECT_EQ(shown(again), shown(file));
  // What cannot be written stays as it is.
  file.setReadOnly(true);
  EXPECT_TRUE(again.deleteSection("A"));
  EXPECT_FALSE(again.save());
  file.setReadOnly(false);
  EXPECT_GT(fs::file_size(path), 200'000U);
  EXPECT_FALSE(VelClIniFileSave(directory.path("none/a.ini").c_str()).save());
  fs::create_directory(directory.path("d.ini"));
  EXPECT_FALSE(VelClIniFileSave(directory.path("d.ini").c_str()).save());
  // Behind a save to a stream there is no file of its own.
  saved(again);
  EXPECT_FALSE(again.save());
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 2);
  std::ostringstream failed;
  failed.setstate(std::ios::badbit);
  EXPECT_FALSE(again.save(failed));
}

TEST(IniSave, SavesAgainAfterAFailure) {
  const ScratchDirectory directory;
  const std::string path = directory.path("a.ini"), file = directory.write("file", "old");
  std::error_code hasNoLinks;
  fs::create_symlink("/dev/full", path, hasNoLinks);
  if (hasNoLinks || !fs::exists(path)) GTEST_SKIP() << "no device that is full";
  VelClIniFileSave save(path.c_str());
  VelClIniFileEditor editor(path.c_str());
  editor.loadFromBuffer("[B]\n", 4, true);
  EXPECT_TRUE(save.addSection("A"));
  EXPECT_FALSE(save.save() || editor.save());
  fs::remove(path);
  fs::create_symlink("file", path);
  EXPECT_TRUE(save.save() && save.hasKeptRights());
  EXPECT_EQ(readFile(file), "\n[A]\n");
  EXPECT_TRUE(editor.save() && editor.hasKeptRights());
  EXPECT_EQ(readFile(file), "[B]\n");
}

TEST(IniEditing, FindsNullNamesNowhere) {
  VelClIniFile file("unused");
  EXPECT_TRUE(file.loadFromBuffer(nullptr, 1, '\n', true, true) && loadText(file, "[A]\nx=1\n"));
  VelClIniFileSectionCursor section(file);
  EXPECT_TRUE(section.setToFirst() && !section.matches(nullptr));
  VelClIniFileOptionCursor option(section);
  EXPECT_TRUE(option.setToFirst() && !option.matches(nullptr));
  EXPECT_FALSE(option.setTo(nullptr) || section.setTo(nullptr));
  EXPECT_FALSE(VelClIniFileOptionCursor(file, nullptr).setToFirst());
  const char* value = nullptr;
  EXPECT_TRUE(file.getSection("A"));
  EXPECT_FALSE(file.getOption(nullptr, value) || file.addOption(nullptr, "1") ||
               file.setNewValue(nullptr, "1"));
  EXPECT_FALSE(file.deleteOption(nullptr) || file.deleteSection(nullptr) || file.addSection(nullptr));
  EXPECT_FALSE(file.getSection(nullptr));
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer(nullptr, 1, true);
  editor.loadFromBuffer("[]\n=1\nx=2\n", 10, true);
  EXPECT_TRUE(editor.setValue("", "x", nullptr));
  EXPECT_FALSE(editor.setValue(nullptr, "x", "1") || editor.setValue("", nullptr, "1") ||
               editor.deleteOption("", nullptr) || editor.deleteOption(nullptr, "x") ||
               editor.deleteSection(nullptr) || editor.addSection(nullptr));
  EXPECT_EQ(shown(file), "[A]x=1|");
}

TEST(IniEditing, KeepsTheModel) {
  VelClIniFile file("unused");
  EXPECT_FALSE(file.addOption("x", "1") || file.setNewValue("x", "1") || file.deleteOption("x"));
  EXPECT_TRUE(file.addSection("A"));
  EXPECT_TRUE(file.addOption("x", "1", "c") && file.addOption("y", nullptr));
  EXPECT_TRUE(file.addSection("B") && file.addOption("z", "3"));
  EXPECT_FALSE(file.addSection("a"));
  EXPECT_FALSE(file.addOption("X", "2"));
  EXPECT_TRUE(file.setNewValue("X", std::string(1000, 'v').c_str()));
  EXPECT_FALSE(file.setNewValue("x", std::string(1022, 'v').c_str()));
  EXPECT_TRUE(file.setNewValue("x", "2"));
  EXPECT_EQ(shown(file), "[A]x=2;c|y=|[B]z=3|");
  for (const char* name : {"", "a b", "a=", "[a", ";a", "a\n"})
    EXPECT_FALSE(file.addOption(name, "1")) << name;
  for (const char* name : {"", "a]", "a\nb"}) EXPECT_FALSE(file.addSection(name)) << name;
  EXPECT_FALSE(file.addOption("n", std::string(1022, 'v').c_str()) ||
               file.addOption("n", "1", std::string(1020, 'c').c_str()));
  EXPECT_FALSE(file.addOption("n", "1", "a\nb") || file.addOption(std::string(1023, 'n').c_str(), ""));
  EXPECT_TRUE(file.deleteOption("Y"));
  EXPECT_FALSE(file.deleteOption("Y"));
  EXPECT_TRUE(file.addOption("last", "4"));
  EXPECT_TRUE(file.deleteSection("b"));
  EXPECT_TRUE(file.addSection("C"));
  EXPECT_EQ(shown(file), "[A]x=2;c|last=4|[C]");
  EXPECT_NE(file.getExistingSection("a"), nullptr);
  EXPECT_TRUE(file.deleteSection("C"));
  EXPECT_FALSE(file.addOption("x", "1"));
  EXPECT_EQ(file.getExistingSection("c"), nullptr);
}

/// Long lists of names that repeat, changed at random, against plain lists.
TEST(IniEditing, FindsTheFirstOfANameAfterEveryChange) {
  std::mt19937 numbers(4711);
  std::string text = "[A]\n";
  std::vector<std::pair<std::string, int>> options;
  for (int i = 0; i < 400; ++i) {
    const std::string name = "n" + std::to_string(numbers() % 150);
    options.emplace_back(name, i);
    text += name + "=" + std::to_string(i) + "\n";
  }
  VelClIniFile file("unused");
  loadText(file, text);
  ASSERT_TRUE(file.getSection("A"));
  for (int i = 400; i < 3000; ++i) {
    const std::string name = "n" + std::to_string(numbers() % 150);
    const auto found = std::find_if(options.begin(), options.end(), [&](auto& o) { return o.first == name; });
    int value = -1;
    EXPECT_EQ(file.getOption(name.c_str(), value), found != options.end());
    EXPECT_EQ(value, found != options.end() ? found->second : -1);
    const bool adds = numbers() % 3 == 0;
    EXPECT_EQ(
        adds ? file.addOption(name.c_str(), std::to_string(i).c_str()) : file.deleteOption(name.c_str()),
        adds == (found == options.end()));
    if (adds && found == options.end()) options.emplace_back(name, i);
    if (!adds && found != options.end()) options.erase(found);
    if (i % 50 != 0) continue;
    std::string list = "[A]";
    for (const auto& [kept, number] : options) list += kept + "=" + std::to_string(number) + "|";
    EXPECT_EQ(shown(file), list);
  }
}

TEST(IniCursors, StandOnlyOnWhatExists) {
  auto file = std::make_unique<VelClIniFile>("unused");
  loadText(*file, "[A]\nx=1\n[B]\ny=on ;c\nz='q'\n[b]\n");
  VelClIniFileSectionCursor section(*file);
  EXPECT_FALSE(section.isValid() || section.setToNext() || section.matches(""));
  EXPECT_STREQ(section.getSection(), "");
  EXPECT_TRUE(section.setTo("b") && section.matches("b") && !section.matches("A"));
  EXPECT_STREQ(section.getSection(), "B");
  EXPECT_TRUE(section.setToNext() && section.setTo("B"));
  // It stays where it is: the second of the name.
  EXPECT_STREQ(section.getSection(), "b");
  EXPECT_FALSE(section.setToNext());
  EXPECT_FALSE(section.setTo("c"));
  EXPECT_TRUE(section.setTo("B"));
  VelClIniFileOptionCursor option(section);
  EXPECT_FALSE(option.isValid() || option.getValueBool());
  EXPECT_EQ(std::string(option.getOption()) + option.getComment(), "");
  EXPECT_TRUE(option.setTo("Z") && option.setTo("z") && !option.matches("y"));
  char c = 0;
  EXPECT_TRUE(option.getValue(c));
  EXPECT_EQ(c, 'q');
  EXPECT_TRUE(option.setToFirst() && option.getValueBool());
  EXPECT_STREQ(option.getComment(), "c");
  VelClIniFileOptionCursor copy(option);
  VelClIniFileOptionCursor other(*file, "A");
  EXPECT_TRUE(other.setToFirst());
  EXPECT_FALSE(VelClIniFileOptionCursor(*file, "none").setToFirst());
  // What a cursor stands on is deleted: first an option, then a section, then the file.
  EXPECT_TRUE(file->getSection("B") && file->deleteOption("y"));
  EXPECT_FALSE(option.isValid() || copy.isValid() || option.setToNext());
  EXPECT_STREQ(option.getValue(), "");
  EXPECT_TRUE(option.setToFirst() && option.matches("z"));
  EXPECT_TRUE(file->deleteSection("B"));
  EXPECT_FALSE(option.isValid() || option.setToFirst() || option.setTo("z") || section.isValid());
  copy = other;
  copy = *&copy;
  EXPECT_TRUE(copy.isValid() && section.setToFirst());
  const VelClIniFileSectionCursor secondSection(section);
  file.reset();
  copy = VelClIniFileOptionCursor(other);
  section = secondSection;
  EXPECT_FALSE(copy.isValid() || other.setToFirst() || section.setToFirst() || section.setTo("A"));
}

}  // namespace
