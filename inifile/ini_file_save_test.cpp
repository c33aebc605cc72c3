// Cursors, changes to the model, and what saving writes. That it round-trips
// is fuzz/inifile_load_fuzz.cpp's matter.

#include <memory>
#include <random>
#include <sstream>

#include "inifile/test/ini_fixture.h"
#include "vel_include/vel.h"

using testing::Each;
using testing::ElementsAre;
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

/// What a derived class can call.
struct Lines : VelClIniFileSave {
  Lines() : VelClIniFileSave("unused") {}
  using VelClIniFileSave::saveComment, VelClIniFileSave::saveOption;
  using VelClIniFileSave::saveOptionBool, VelClIniFileSave::saveSection;
};

TEST(IniSave, WritesSingleLines) {
  const Lines lines;
  std::ostringstream stream;
  stream.width(9);
  stream << std::hex;
  const std::array written{lines.saveSection(stream, "S", "c"),
                           lines.saveComment(stream, nullptr),
                           lines.saveComment(stream, "d"),
                           lines.saveOption(stream, "i", -5, "c"),
                           lines.saveOption(stream, "u", 4294967295U, ""),
                           lines.saveOption(stream, "l", -2147483647L, nullptr),
                           lines.saveOption(stream, "m", 255UL, "c"),
                           lines.saveOption(stream, "c", ';', "c"),
                           lines.saveOption(stream, "n", '\n', nullptr),
                           lines.saveOption(stream, "e", "", "c"),
                           lines.saveOption(stream, "e", nullptr, "c"),
                           lines.saveOption(stream, "0", '\0', "c"),
                           lines.saveOption(stream, nullptr, 'n', nullptr),
                           lines.saveOptionBool(stream, "t", true, nullptr),
                           lines.saveOptionBool(stream, "f", false, "c")};
  EXPECT_THAT(written, Each(true));
  EXPECT_EQ(stream.str(),
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
  EXPECT_TRUE(file.getSection("A"));
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
  fs::create_directory(directory.path("d.ini"));
  for (const char* const entry : {"none/a.ini", "d.ini"})
    EXPECT_FALSE(VelClIniFileSave(directory.path(entry).c_str()).save()) << entry;
  // After a save to a stream there is no file of its own.
  saved(again);
  EXPECT_FALSE(again.save());
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 2);
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
  EXPECT_FALSE(save.save());
  EXPECT_FALSE(editor.save());
  fs::remove(path);
  fs::create_symlink("file", path);
  EXPECT_TRUE(save.save());
  EXPECT_TRUE(save.hasKeptRights());
  EXPECT_EQ(readFile(file), "\n[A]\n");
  EXPECT_TRUE(editor.save());
  EXPECT_TRUE(editor.hasKeptRights());
  EXPECT_EQ(readFile(file), "[B]\n");
}

TEST(IniEditing, FindsNullNamesNowhere) {
  VelClIniFile file("unused");
  EXPECT_TRUE(file.loadFromBuffer(nullptr, 1, '\n', true, true));
  loadText(file, "[A]\nx=1\n");
  VelClIniFileSectionCursor section(file);
  EXPECT_TRUE(section.setToFirst());
  VelClIniFileOptionCursor option(section);
  EXPECT_TRUE(option.setToFirst());
  EXPECT_TRUE(file.getSection("A"));
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer(nullptr, 1, true);
  editor.loadFromBuffer("[]\n=1\nx=2\n", 10, true);
  EXPECT_TRUE(editor.setValue("", "x", nullptr));
  const char* value = nullptr;
  EXPECT_THAT((std::array{section.matches(nullptr), section.setTo(nullptr)}), Each(false));
  EXPECT_THAT((std::array{option.matches(nullptr), option.setTo(nullptr)}), Each(false));
  EXPECT_FALSE(VelClIniFileOptionCursor(file, nullptr).setToFirst());
  EXPECT_THAT((std::array{file.getOption(nullptr, value), file.addOption(nullptr, "1"),
                          file.setNewValue(nullptr, "1"), file.deleteOption(nullptr),
                          file.deleteSection(nullptr), file.addSection(nullptr), file.getSection(nullptr)}),
              Each(false));
  EXPECT_THAT((std::array{editor.setValue(nullptr, "x", "1"), editor.setValue("", nullptr, "1"),
                          editor.deleteOption("", nullptr), editor.deleteOption(nullptr, "x"),
                          editor.deleteSection(nullptr), editor.addSection(nullptr)}),
              Each(false));
  EXPECT_EQ(shown(file), "[A]x=1|");
}

TEST(IniEditing, KeepsTheModel) {
  VelClIniFile file("unused");
  EXPECT_THAT((std::array{file.addOption("x", "1"), file.setNewValue("x", "1"), file.deleteOption("x")}),
              Each(false));
  EXPECT_THAT((std::array{file.addSection("A"), file.addOption("x", "1", "c"), file.addOption("y", nullptr),
                          file.addSection("B"), file.addOption("z", "3")}),
              Each(true));
  // A section that is there becomes the current one.
  EXPECT_FALSE(file.addSection("a"));
  EXPECT_FALSE(file.addOption("X", "2"));
  EXPECT_TRUE(file.setNewValue("X", std::string(1000, 'v').c_str()));
  EXPECT_FALSE(file.setNewValue("x", std::string(1022, 'v').c_str()));
  EXPECT_TRUE(file.setNewValue("x", "2"));
  EXPECT_EQ(shown(file), "[A]x=2;c|y=|[B]z=3|");
  for (const std::string& name : {std::string(), std::string("a b"), std::string("a="), std::string("[a"),
                                  std::string(";a"), std::string("a\n"), std::string(1023, 'n')})
    EXPECT_FALSE(file.addOption(name.c_str(), "")) << name;
  for (const char* name : {"", "a]", "a\nb"}) EXPECT_FALSE(file.addSection(name)) << name;
  EXPECT_FALSE(file.addOption("n", std::string(1022, 'v').c_str()));
  for (const std::string& comment : {std::string(1020, 'c'), std::string("a\nb")})
    EXPECT_FALSE(file.addOption("n", "1", comment.c_str())) << comment;
  EXPECT_TRUE(file.deleteOption("Y"));
  EXPECT_FALSE(file.deleteOption("Y"));
  EXPECT_THAT((std::array{file.addOption("last", "4"), file.deleteSection("b"), file.addSection("C")}),
              Each(true));
  EXPECT_EQ(shown(file), "[A]x=2;c|last=4|[C]");
  EXPECT_TRUE(file.deleteSection("C"));
  EXPECT_FALSE(file.addOption("x", "1"));
  EXPECT_NE(file.getExistingSection("a"), nullptr);
  EXPECT_EQ(file.getExistingSection("c"), nullptr);
}

/// Long lists of names that repeat, changed at random, against plain lists.
TEST(IniEditing, FindsTheFirstOfANameAfterEveryChange) {
  std::mt19937 random(4711);
  const auto anyName = [&random] { return "n" + std::to_string(random() % 150); };
  std::vector<std::pair<std::string, int>> options;
  const auto listed = [&options] {
    std::string text;
    for (const auto& [name, value] : options) text += name + "=" + std::to_string(value) + "|";
    return text;
  };
  for (int i = 0; i < 400; ++i) options.emplace_back(anyName(), i);
  VelClIniFile file("unused");
  const std::string text = "[A]|" + listed();
  file.loadFromBuffer(text.data(), text.size(), '|', true, true);
  ASSERT_TRUE(file.getSection("A"));
  for (int i = 400; i < 3000; ++i) {
    const std::string name = anyName();
    const auto found = std::ranges::find(options, name, &std::pair<std::string, int>::first);
    const bool isThere = found != options.end(), adds = random() % 3 == 0;
    int value = -1;
    EXPECT_EQ(file.getOption(name.c_str(), value), isThere);
    EXPECT_EQ(value, isThere ? found->second : -1);
    EXPECT_EQ(
        adds ? file.addOption(name.c_str(), std::to_string(i).c_str()) : file.deleteOption(name.c_str()),
        adds != isThere);
    if (adds && !isThere) options.emplace_back(name, i);
    if (!adds && isThere) options.erase(found);
    if (i % 50 != 0) continue;
    EXPECT_EQ(shown(file), "[A]" + listed());
  }
}

TEST(IniCursors, StandOnlyOnWhatExists) {
  auto file = std::make_unique<VelClIniFile>("unused");
  loadText(*file, "[A]\nx=1\n[B]\ny=on ;c\nz='q'\n[b]\n");
  VelClIniFileSectionCursor section(*file);
  EXPECT_THAT((std::array{section.isValid(), section.setToNext(), section.matches("")}), Each(false));
  EXPECT_STREQ(section.getSection(), "");
  EXPECT_THAT((std::array{section.setTo("b"), section.matches("b"), section.matches("A")}),
              ElementsAre(true, true, false));
  EXPECT_STREQ(section.getSection(), "B");
  // It stays where it is: the second of the name.
  EXPECT_THAT((std::array{section.setToNext(), section.setTo("B")}), Each(true));
  EXPECT_STREQ(section.getSection(), "b");
  EXPECT_THAT((std::array{section.setToNext(), section.setTo("c"), section.setTo("B")}),
              ElementsAre(false, false, true));
  VelClIniFileOptionCursor option(section);
  EXPECT_THAT((std::array{option.isValid(), option.getValueBool()}), Each(false));
  EXPECT_EQ(std::string(option.getOption()) + option.getComment(), "");
  char c = 0;
  EXPECT_THAT((std::array{option.setTo("Z"), option.setTo("z"), option.matches("y"), option.getValue(c)}),
              ElementsAre(true, true, false, true));
  EXPECT_EQ(c, 'q');
  EXPECT_THAT((std::array{option.setToFirst(), option.getValueBool()}), Each(true));
  EXPECT_STREQ(option.getComment(), "c");
  VelClIniFileOptionCursor copy(option), other(*file, "A");
  EXPECT_TRUE(other.setToFirst());
  EXPECT_FALSE(VelClIniFileOptionCursor(*file, "none").setToFirst());
  // What a cursor stands on is deleted: first an option, then a section, then the file.
  EXPECT_TRUE(file->getSection("B"));
  EXPECT_TRUE(file->deleteOption("y"));
  EXPECT_THAT((std::array{option.isValid(), copy.isValid(), option.setToNext()}), Each(false));
  EXPECT_STREQ(option.getValue(), "");
  EXPECT_TRUE(option.setToFirst());
  EXPECT_STREQ(option.getOption(), "z");
  EXPECT_TRUE(file->deleteSection("B"));
  EXPECT_THAT((std::array{option.isValid(), option.setToFirst(), option.setTo("z"), section.isValid()}),
              Each(false));
  copy = other;
  copy = *&copy;
  EXPECT_THAT((std::array{copy.isValid(), section.setToFirst()}), Each(true));
  const VelClIniFileSectionCursor secondSection(section);
  file.reset();
  copy = VelClIniFileOptionCursor(other);
  section = secondSection;
  EXPECT_THAT((std::array{copy.isValid(), other.setToFirst(), section.setToFirst(), section.setTo("A")}),
              Each(false));
}

}  // namespace
