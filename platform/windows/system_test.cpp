// Import thunks, platform identifiers, descriptors' modes, code pages and catalog libraries.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <array>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

using test::ScratchDirectory;

TEST(WindowsSystem, IsOfTheNtFamily) {
  EXPECT_EQ(windowsPlatformId(), 2);
}

/// A jump through a table entry, in front of or behind it.
struct Thunk {
  std::array<std::uint8_t, 8> code;
  const void* entry;

  void jumpTo(const void* target) {
    const std::int32_t distance = offsetof(Thunk, entry) - 6;
    code = {0xFF, 0x25};
    std::memcpy(code.data() + 2, &distance, sizeof distance);
    entry = target;
  }
};

TEST(WindowsSystem, ThunksLeadToTheFunction) {
  const std::uint8_t function[] = {0xFF, 0x24, 0, 0, 0, 0};
  Thunk inner{};
  Thunk outer{};
  inner.jumpTo(function);
  outer.jumpTo(&inner);
  EXPECT_EQ(resolveImportThunk(function), function);
  EXPECT_EQ(resolveImportThunk(&inner), function);
  EXPECT_EQ(resolveImportThunk(&outer), function);
  EXPECT_EQ(resolveImportThunk(nullptr), nullptr);
  Thunk endless{};
  endless.jumpTo(&endless);
  EXPECT_EQ(resolveImportThunk(&endless), &endless);
}

TEST(WindowsDescriptors, TellTheModeBefore) {
  const ScratchDirectory scratch;
  const int file = _open(scratch.write("file", "").c_str(), _O_RDWR | _O_BINARY);
  ASSERT_NE(file, -1);
  EXPECT_EQ(setDescriptorMode(file, DescriptorMode::Text), DescriptorMode::Binary);
  EXPECT_EQ(setDescriptorMode(file, DescriptorMode::Binary), DescriptorMode::Text);
  EXPECT_EQ(setDescriptorMode(file, DescriptorMode::Binary), DescriptorMode::Binary);
  EXPECT_FALSE(isTerminal(file));
  _close(file);
  const int null = _open("NUL", _O_WRONLY);
  ASSERT_NE(null, -1);
  EXPECT_FALSE(isTerminal(null));
  _close(null);
}

TEST(WindowsLanguages, TextsAreCutBetweenCharacters) {
  if (ansiIsUtf8()) GTEST_SKIP() << "no single-byte code page";
  struct Row {
    std::u16string text;
    std::size_t capacity;
    std::string bytes;
  };
  const Row rows[] = {
      {u"ab", 9, "ab"},          {u"ab", 1, "a"},       {u"ab", 0, ""}, {u"a\U0001F600b", 9, "a?b"},
      {{0xDE00, u'x'}, 9, "?x"}, {u"x\uFFFF", 9, "x?"},
  };
  for (const Row& row : rows) {
    char out[16];
    std::memset(out, '#', sizeof out);
    const std::size_t count = utf16ToAnsi(row.text.data(), row.text.size(), out, row.capacity);
    EXPECT_EQ(std::string(out, count), row.bytes) << &row - rows;
    EXPECT_EQ(out[row.capacity], '#') << &row - rows;
  }
}

TEST(WindowsCatalogs, AreLoadedAndMapped) {
  const std::string program = test::ownProgram();
  CatalogImage image{};
  ASSERT_TRUE(openCatalog(program.c_str(), image));
  EXPECT_NE(image.module, nullptr);
  const std::string bytes = test::readFile(program);
  // Up to the end of the last page.
  ASSERT_GE(image.sizeInBytes, bytes.size());
  EXPECT_EQ(std::memcmp(image.data, bytes.data(), bytes.size()), 0);
  closeCatalog(image);
  EXPECT_EQ(image.module, nullptr);
  EXPECT_EQ(image.data, nullptr);
  const ScratchDirectory scratch;
  for (const std::string& name : {scratch.path("missing.DLL"), scratch.write("text.DLL", "no library"),
                                  scratch.write("empty.DLL", ""), std::string("no_such_catalog.DLL")})
    EXPECT_FALSE(openCatalog(name.c_str(), image)) << name;
}

}  // namespace

}  // namespace vel::platform
