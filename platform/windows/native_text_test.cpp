// Tests names and values that the ANSI code page cannot spell, while the process uses that code page. The
// test runs with code page 1252 and a file system that has all characters.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/windows/native_text.h"

#include "platform/code_pages.h"
#include "platform/directories.h"
#include "platform/environment.h"
#include "platform/file_copy.h"
#include "platform/files.h"
#include "platform/launching.h"
#include "platform/test/test.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_process.h"

namespace vel::platform {

namespace {

constexpr UINT kWestern = 1252;
constexpr UINT kJapanese = 932;

struct TextRow {
  const wchar_t* wide;
  UINT codePage;
  const char* narrow;    ///< null if the code page lacks a character
  const char* readable;  ///< with "?" for it
};

TEST(NativeText, NeverReplacesCharactersBySimilarOnes) {
  const TextRow rows[] = {
      {L"", kWestern, "", ""},
      {L"J\u00FCrgen", kWestern, "J\xFCrgen", "J\xFCrgen"},
      // The system would write "J" and "Aa" for the letters of full width, and "a" for the one with a macron.
      {L"\uFF2A\u0101", kWestern, nullptr, "??"},
      {L"a\u043F", kWestern, nullptr, "a?"},
      {L"\U0001F600", kWestern, nullptr, "?"},
      {L"\u65E5\u672C", kJapanese, "\x93\xFA\x96\x7B", "\x93\xFA\x96\x7B"},
      {L"\u00FC\u65E5", kJapanese, nullptr, "?\x93\xFA"},
      {L"\u043F\u65E5\U0001F600", CP_UTF8, "\u043F\u65E5\U0001F600", "\u043F\u65E5\U0001F600"},
      {L"a\xD83D", CP_UTF8, nullptr, "a?"},
  };
  for (const TextRow& row : rows) {
    SCOPED_TRACE(row.readable);
    char out[32] = "";
    EXPECT_EQ(narrowText(row.wide, row.codePage, out, sizeof out),
              row.narrow != nullptr ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_STREQ(out, row.narrow != nullptr ? row.narrow : "");
    out[readableText(row.wide, row.codePage, Similar::Refuse, out, sizeof out)] = '\0';
    EXPECT_STREQ(out, row.readable);
    if (row.narrow == nullptr) continue;
    const std::size_t size = std::strlen(row.narrow);
    EXPECT_STREQ(WideText(row.narrow, row.codePage).get(), row.wide);
    EXPECT_EQ(narrowText(row.wide, row.codePage, out, size + 1), ERROR_SUCCESS);
    EXPECT_EQ(narrowText(row.wide, row.codePage, out, size), size > 0 ? ERROR_INSUFFICIENT_BUFFER : 122);
  }
}

TEST(NativeText, IllFormedBytesAreNoName) {
  for (const char* const bytes : {"\xFF", "\xC3", "a\xED\xA0\x80", "\xC0\xAF"}) {
    const WideText text(bytes, CP_UTF8);
    EXPECT_EQ(text.error(), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_STREQ(text.get(), L"");
  }
  const std::string longText(70'000, 'x');
  EXPECT_EQ(std::wcslen(WideText(longText.c_str(), CP_UTF8).get()), longText.size());
}

/// A directory with an entry whose name the code page lacks, and a file with the name that looks similar.
class UnmappableNames : public testing::Test {
 protected:
  void SetUp() override {
    if (GetACP() != kWestern) GTEST_SKIP() << "the names are chosen for another code page";
    wide_ = std::filesystem::path(scratch_.path()).wstring() + L"\\\uFF2A\u0101";
    ASSERT_TRUE(CreateDirectoryW(wide_.c_str(), nullptr) != FALSE);
    scratch_.write("Ja", "another file");
    CloseHandle(
        CreateFileW((wide_ + L"\\\u043F").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  }

  const test::ScratchDirectory scratch_;
  std::wstring wide_;
};

TEST_F(UnmappableNames, AreListedWithQuestionMarksAndCannotBeOpened) {
  DirectoryHandle directory;
  ASSERT_EQ(openDirectory(scratch_.path().c_str(), DirectoryLink::Follow, directory), 0);
  std::set<std::string> names;
  DirectoryEntry entry;
  for (ListingStep step; nextEntry(directory, entry, step) == 0 && step == ListingStep::Entry;)
    names.insert(entry.name);
  closeDirectory(directory);
  EXPECT_EQ(names, (std::set<std::string>{".", "..", "??", "Ja"}));
  const std::string listed = scratch_.path("??");
  EXPECT_FALSE(entryExists(listed.c_str()));
  EXPECT_NE(removeFile(listed.c_str()), 0);
  EXPECT_NE(copyFile(listed.c_str(), scratch_.path("copy").c_str()), 0);
  EXPECT_EQ(test::readFile(scratch_.path("Ja")), "another file");
}

TEST_F(UnmappableNames, DoNotKeepATreeFromBeingRemoved) {
  EXPECT_TRUE(VelClDirectory(scratch_.path().c_str()).removeAll(true));
  EXPECT_EQ(GetFileAttributesW(wide_.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(UnmappableNames, OfTheCurrentDirectoryAreAnError) {
  const test::CurrentDirectory inside(wide_);
  char name[kMaxPathLength];
  EXPECT_EQ(currentDirectory(name, sizeof name), EILSEQ);
  // Relative names work all the same.
  int descriptor = -1;
  ASSERT_EQ(createExclusively("inside", descriptor), 0);
  test::closeDescriptor(descriptor);
  EXPECT_EQ(copyFile("inside", "copy"), 0);
  EXPECT_NE(GetFileAttributesW((wide_ + L"\\copy").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(NativeValues, HaveQuestionMarksForWhatTheCodePageLacks) {
  ASSERT_TRUE(SetEnvironmentVariableW(L"VEL_TEST_VARIABLE", L"C:\\\uFF2A\u0101") != FALSE);
  ASSERT_EQ(_wputenv(L"VEL_TEST_VARIABLE=C:\\\uFF2A\u0101"), 0);
  const char* const value = environmentValue("VEL_TEST_VARIABLE");
  EXPECT_STREQ(value, "C:\\??");
  EXPECT_EQ(environmentValue("VEL_TEST_VARIABLE"), value) << "the text lives until the value changes";
  char assignment[] = "VEL_TEST_VARIABLE=J\xFCrgen";
  EXPECT_EQ(putEnvironment(assignment), 0);
  EXPECT_EQ(environmentValue("VEL_TEST_VARIABLE"), std::getenv("VEL_TEST_VARIABLE"));
  char removal[] = "VEL_TEST_VARIABLE=";
  EXPECT_EQ(putEnvironment(removal), 0);
  EXPECT_EQ(environmentValue("VEL_TEST_VARIABLE"), nullptr);
}

}  // namespace

}  // namespace vel::platform
