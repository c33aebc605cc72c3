// The editor changes what it is asked to and not one byte else.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "inifile/test/ini_fixture.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel.h"

using namespace std::string_literals;
using vel::test::readFile;
using vel::test::shown;

namespace {

std::string textOf(const VelClIniFileEditor& editor) {
  return {editor.getText(), editor.getLength()};
}

struct Row {
  std::string before;
  const char* section;
  const char* option;  ///< null: the section itself is meant
  const char* value;   ///< null: deletes
  std::string after;   ///< "" for a refusal
};

bool change(VelClIniFileEditor& editor, const Row& row) {
  if (row.option == nullptr)
    return row.value == nullptr ? editor.deleteSection(row.section) : editor.addSection(row.section);
  return row.value == nullptr ? editor.deleteOption(row.section, row.option)
                              : editor.setValue(row.section, row.option, row.value);
}

const std::string kLong(1100, 'v');

const Row kRows[] = {
    // Values.
    {"; c\r\n[A] x\r\n X =\t1  ; c \r\n\r\n", "a", "y", "2",
     "; c\r\n[A] x\r\n X =\t1  ; c \r\ny = 2\r\n\r\n"},
    {"; c\r\n[A] x\r\nX =\t1  ; c \r\n\r\n", "a", "x", "2", "; c\r\n[A] x\r\nX =\t2  ; c \r\n\r\n"},
    {"[A]\nx=1", "A", "x", "22", "[A]\nx=22"},
    {"[A]\nx=;c", "A", "x", "v", "[A]\nx=v;c"},
    {"[A]\nx=1;c\0d\n"s, "A", "x", "v", "[A]\nx=v;c\0d\n"s},
    {"[A]\nx=\"1\" ;c\n", "A", "x", "2", "[A]\nx=\"2\" ;c\n"},
    {"[A]\nx='1' $(NONE)  ;c\n", "A", "x", "2", "[A]\nx=2  ;c\n"},
    {"[A]\nx=1\n", "A", "x",
     " a;\"\\\x1B"
     "f'$(HOME)\n",
     "[A]\nx=\" a;\\\"\\\\\\x1b\"\"f'$(HOME)\\n\"\n"},
    {"[A]\nx=1\n", "A", "x", "D:\\a$b", "[A]\nx=D:\\a$b\n"},
    {"[A]\nx=1\n", "A", "x", "$(NONE)", "[A]\nx=\"$(NONE)\"\n"},
    {"[A]\nx=1\nx=2\n[a]\nx=3\n", "A", "x", "9", "[A]\nx=9\nx=2\n[a]\nx=3\n"},
    {"[A]\nx=1\n", "A", "x", "", "[A]\nx=\n"},
    {"[A]\nx=1\n", "A", "x", kLong.c_str(), ""},
    // Continuation lines.
    {"[A]\nx=a ;b\n\n  c ;d\n e\ny=1\n", "A", "x", "v", "[A]\nx=v ;b\n\n   ;d\ny=1\n"},
    {"[A]\nx=a\n c", "A", "x", nullptr, "[A]\n"},
    // New options and sections.
    {"[A]\nx:=1\n\n; of B\n[B]\n", "A", "y", "2", "[A]\nx:=1\ny=2\n\n; of B\n[B]\n"},
    {"[A]\nx    = \"1\"\n", "A", "y", "a;b", "[A]\nx    = \"1\"\ny    = \"a;b\"\n"},
    {"[A]", "A", "y", "2", "[A]\ny = 2"},
    {"[A]\r\nx=1", "A", "y", "2", "[A]\r\nx=1\r\ny=2"},
    {"", "A", "y", "2", "[A]\ny = 2\n"},
    {"[A]\n", "B", "y", "2", "[A]\n\n[B]\ny = 2\n"},
    {"[A]\n", "B", "y z", "2", ""},
    {"[A]\n", "B", nullptr, "", "[A]\n\n[B]\n"},
    {"[A]\n", "a", nullptr, "", ""},
    {"[A]\n", "B]", nullptr, "", ""},
    {"[A]\n", kLong.c_str(), nullptr, "", ""},
    {"[A]\n", kLong.c_str(), "x", "1", ""},
    {"[A]\nx=" + kLong + "\n", "A", "y", "2", ""},
    {"[A]\nx=" + kLong + "\n", "B", "y", "2", ""},
    // Removals.
    {"[A]\nx=1\n;c\ny=2\n", "A", "x", nullptr, "[A]\n;c\ny=2\n"},
    {"[A]\nx=1\n", "A", "y", nullptr, ""},
    {"[A]\nx=1\n", "B", "x", nullptr, ""},
    {"[A]\nx=1\n\n; of B\n[B]\ny=1\n", "A", nullptr, nullptr, "\n; of B\n[B]\ny=1\n"},
    {"[A]\nx=1\n[B\njunk\n[C]\n", "A", nullptr, nullptr, "[C]\n"},
    {"[A]\n", "B", nullptr, nullptr, ""},
};

TEST(IniEditor, ChangesNothingElse) {
  for (const Row& row : kRows) {
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(row.before.data(), row.before.size(), true);
    const std::string model = shown(editor.getIniFile());
    const bool changed = change(editor, row);
    EXPECT_EQ(changed, !row.after.empty()) << row.before;
    EXPECT_EQ(textOf(editor), changed ? row.after : row.before) << row.before;
    EXPECT_EQ(shown(editor.getIniFile()) == model, !changed) << row.before;
    if (!changed || row.option == nullptr || row.value == nullptr) continue;
    const char* value = nullptr;
    EXPECT_TRUE(editor.getIniFile().getSection(row.section) &&
                editor.getIniFile().getOption(row.option, value));
    EXPECT_STREQ(value, row.value);
  }
}

/// Whether one piece of `before` makes `after` when it is replaced by a piece no longer than `most`.
bool differsInOnePlace(const std::string& before, const std::string& after, std::size_t most) {
  const auto front = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto back = std::mismatch(before.rbegin(), std::make_reverse_iterator(front.first), after.rbegin(),
                                  std::make_reverse_iterator(front.second));
  return static_cast<std::size_t>(back.second.base() - front.second) <= most;
}

TEST(IniEditor, SetsAnyValueInAnyText) {
  constexpr const char* kPieces[] = {"[A]\n",      "[B]\r\n", "x=1\n", "y = 'q' ; c\r\n",
                                     " more\n",    "junk\n",  "\n",    "; c\n",
                                     "x=\"open\n", "[",       "$(",    ")",
                                     "=",          "\"",      "'",     "\\",
                                     "\r"};
  std::mt19937 numbers(4711);
  int changes = 0;
  for (int round = 0; round < 4000; ++round) {
    std::string text;
    for (auto count = numbers() % 20; count > 0; --count) text += kPieces[numbers() % std::size(kPieces)];
    std::string value;
    for (auto count = numbers() % 8; count > 0; --count) value += static_cast<char>(1 + numbers() % 255);
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(text.data(), text.size(), false);
    if (!editor.setValue("A", "x", value.c_str())) {
      EXPECT_EQ(textOf(editor), text);
      continue;
    }
    ++changes;
    EXPECT_TRUE(differsInOnePlace(text, textOf(editor), 4 * value.size() + 20)) << text;
    const char* read = nullptr;
    EXPECT_TRUE(editor.getIniFile().getSection("A") && editor.getIniFile().getOption("x", read));
    EXPECT_STREQ(read, value.c_str());
    EXPECT_TRUE(editor.deleteOption("a", "X"));
    EXPECT_TRUE(editor.deleteSection("a"));
  }
  EXPECT_GT(changes, 3900);
}

struct MergeRow {
  std::string before;
  std::string source;
  std::string after;  ///< "" for a refusal
};

const MergeRow kMergeRows[] = {
    {"; c\r\n[B]\r\nx = 1 ; c\r\nx=2\r\n\r\n[A]\r\n[b]\r\nx=3",
     "[a]\ny=4\nY=5\n[b]\nz=;\nx=' '\n[B]\nx=9\n[C]\nw=1\n[D]\n",
     "; c\r\n[B]\r\nx = \" \" ; c\r\nx=2\r\nz=\r\n\r\n[A]\r\ny = 4\r\n[b]\r\nx=3\r\n\r\n[C]\r\nw = 1"},
    {"[A]\nx=a\n b ;c\n d\ny=\"q\"\n", "[a]\nx=1\ny=2", "[A]\nx=1\n  ;c\ny=\"2\"\n"},
    {"", "[A]\nx=1\n[B]\ny=\n", "[A]\nx = 1\n\n[B]\ny = \n"},
    {"[A]\n", "[A]\nx=1\n[B]\n=1", ""},
    {"[A]\n", "[]\nx=1", ""},
    {"[A]\nx=" + kLong + "\n", "[A]\nx=1\n[B]\ny=1", ""},
};

TEST(IniEditor, MergesAllOrNothing) {
  for (const MergeRow& row : kMergeRows) {
    VelClIniFileEditor editor("unused");
    editor.loadFromBuffer(row.before.data(), row.before.size(), true);
    VelClIniFile source("unused");
    vel::test::loadText(source, row.source);
    EXPECT_EQ(editor.merge(source), !row.after.empty()) << row.before;
    EXPECT_EQ(textOf(editor), row.after.empty() ? row.before : row.after);
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
