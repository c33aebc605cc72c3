// Cursors, changes to the model, and saving. That saved files round-trip is tested by
// fuzz/inifile_load_fuzz.cpp.
#include "inifile/test/ini_fixture.h"
#include "vel_include/vel.h"

using testing::Each;
using testing::ElementsAre;
using namespace vel::test;

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

/// Makes the protected functions public.
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
  // A file that cannot be written is left alone.
  file.setReadOnly(true);
  EXPECT_TRUE(again.deleteSection("A"));
  EXPECT_FALSE(again.save());
  file.setReadOnly(false);
  EXPECT_GT(fs::file_size(path), 200'000U);
  fs::create_directory(directory.path("d.ini"));
  for (const char* const entry : {"none/a.ini", "d.ini"})
    EXPECT_FALSE(VelClIniFileSave(directory.path(entry).c_str()).save()) << entry;
  // Intentional: saving to a stream closes the file, so that later saves fail.
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
  if (hasNoLinks || !fs::exists(path)) GTEST_SKIP() << "there is no device that is always full";
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

/// Makes the change of a row of model_changes.tsv.
bool change(VelClIniFile& file, const std::vector<std::string>& row) {
  const char *name = orNull(row[3]), *value = orNull(row[4]), *comment = orNull(row[5]);
  if (row[2] == "add section") return file.addSection(name);
  if (row[2] == "delete section") return file.deleteSection(name);
  if (row[2] == "add option") return file.addOption(name, value, comment);
  if (row[2] == "delete option") return file.deleteOption(name);
  EXPECT_EQ(row[2], "set value");
  return file.setNewValue(name, value);
}

TEST(IniEditing, ChangesTheModelOrRefuses) {
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/model_changes.tsv")) {
    SCOPED_TRACE(row[2] + " " + row[3] + ": " + row[0]);
    VelClIniFile file("unused");
    loadText(file, row[0]);
    file.getSection(orNull(row[1]));
    const std::string before = shown(file);
    EXPECT_EQ(change(file, row), row.at(6) != "-");
    EXPECT_EQ(shown(file), row[6] == "-" ? before : row[6]);
  }
}

TEST(IniEditing, AddsOptionsToTheSectionThatWasAddedOrFoundLast) {
  VelClIniFile file("unused");
  EXPECT_TRUE(file.addSection("A"));
  EXPECT_TRUE(file.addOption("x", nullptr));
  EXPECT_TRUE(file.addSection("B"));
  EXPECT_TRUE(file.addOption("y", "2"));
  EXPECT_FALSE(file.addSection("a"));
  EXPECT_TRUE(file.addOption("z", "3"));
  EXPECT_TRUE(file.deleteSection("b"));
  EXPECT_TRUE(file.deleteOption("z"));
  EXPECT_TRUE(file.addOption("last", "4"));
  for (const std::string& value : {std::string(1000, 'v'), std::string("1")})
    EXPECT_TRUE(file.setNewValue("x", value.c_str()));
  EXPECT_EQ(shown(file), "[A]x=1|last=4|");
  EXPECT_TRUE(file.deleteSection("A"));
  EXPECT_FALSE(file.addOption("x", "1"));
  EXPECT_EQ(file.getExistingSection("a"), nullptr);
}

/// Changes a long list of repeated names at random, and compares it with a plain list.
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

TEST(IniCursors, AreValidOnlyOnExistingSectionsAndOptions) {
  auto file = std::make_unique<VelClIniFile>("unused");
  EXPECT_TRUE(file->loadFromBuffer(nullptr, 1, '\n', true, true));
  loadText(*file, "[A]\nx=1\n[B]\ny=on ;c\nz='q'\n[b]\n");
  VelClIniFileSectionCursor section(*file);
  EXPECT_THAT((std::array{section.isValid(), section.setToNext(), section.matches("")}), Each(false));
  EXPECT_STREQ(section.getSection(), "");
  EXPECT_THAT(
      (std::array{section.setTo("b"), section.matches("b"), section.matches("A"), section.matches(nullptr)}),
      ElementsAre(true, true, false, false));
  EXPECT_STREQ(section.getSection(), "B");
  // Intentional: setTo() keeps a cursor on the second section of a name if it is there.
  EXPECT_THAT((std::array{section.setToNext(), section.setTo("B")}), Each(true));
  EXPECT_STREQ(section.getSection(), "b");
  EXPECT_THAT(
      (std::array{section.setToNext(), section.setTo("c"), section.setTo(nullptr), section.setTo("B")}),
      ElementsAre(false, false, false, true));
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
  for (const char* const name : {"none", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(VelClIniFileOptionCursor(*file, name).setToFirst());
    EXPECT_FALSE(file->getSection(name));
    const char* value = nullptr;
    EXPECT_FALSE(file->getOption(name, value));
    EXPECT_THAT((std::array{option.setTo(name), option.matches(name)}), Each(false));
  }
  // Deletes what the cursors are on: first an option, then a section, then the file.
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
