// Tests operations on real files by backslash names on every system, the last error of each, and the
// translation mode of descriptors.
#include <ctime>

#include "filesys/test/directory_fixture.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;
using enum VelEnErrorClass;
using namespace vel::test;

class FileTest : public vel::test::DirectoryFixture {
 protected:
  VelClFile file(const char* entry) const { return VelClFile(name(entry), nullptr); }
  VelClFile fileWith(const char* entry, const char* bytes) const {
    scratch_.write(entry, bytes);
    return file(entry);
  }
  std::string contents(const char* entry) const { return readFile(scratch_.path(entry)); }
};

TEST(File, GetsTheDefaultTypeIfItHasNone) {
  EXPECT_STREQ("readme.txt", VelClFile(VelClFilename("readme"), "txt"));
  EXPECT_STREQ("a.DLL", VelClFile(VelClFilename("a"), ".DLL"));
  EXPECT_STREQ("cfg", VelClFile(VelClFilename("a.cfg"), "txt").getFileType());
  EXPECT_STREQ("", VelClFile(VelClFilename("a"), nullptr).getFileType());
}

auto propertiesOf(const VelClFile& file) {
  return std::tuple(file.isExistent(), file.isHidden(), file.isReadOnly(),
                    static_cast<int>(file.getFileSize()));
}

TEST_F(FileTest, HasPropertiesWhetherItExistsOrNot) {
  const VelClFile there = fileWith("there", "12345");
  for (const VelClFile& missing :
       {file("missing"), file("missing\\x"), VelClFile(VelClFilename(""), nullptr)}) {
    EXPECT_EQ(propertiesOf(missing), std::tuple(false, true, true, 0));
    EXPECT_THAT((std::array{missing.getDateTimeOfCreation(), missing.getDateTimeOfLastAccess(),
                            missing.getDateTimeOfLastModification()}),
                testing::Each(0));
  }
  EXPECT_EQ(propertiesOf(there), std::tuple(true, false, false, 5));
  const auto now = static_cast<double>(std::time(nullptr));
  EXPECT_NEAR(now, static_cast<double>(there.getDateTimeOfCreation()), 60);
  EXPECT_NEAR(now, static_cast<double>(there.getDateTimeOfLastAccess()), 60);
  fs::last_write_time(scratch_.path("there"), fs::file_time_type::clock::now() - std::chrono::hours(1000));
  EXPECT_NEAR(now - 3'600'000, static_cast<double>(there.getDateTimeOfLastModification()), 60);
}

TEST_F(FileTest, IsCopiedWithItsContentsAndOptionallyItsAttributes) {
  std::string large;
  for (int line = 0; line < 30000; ++line) large += std::to_string(line) + '\n';
  // The target is new, was longer, or was shorter.
  for (const std::string& bytes : {large, std::string("short\r\n\0\x1A.", 10), std::string(), large}) {
    scratch_.write("source.x", bytes);
    EXPECT_TRUE(file("source.x").copyTo(name("target"), true));
    EXPECT_EQ(bytes, contents("target"));
  }
  VelClFile source = file("source.x");
  source.setReadOnly(true);
  for (const bool withAttributes : {true, false}) {
    EXPECT_EQ(outcome(source.copyTo(name("copy"), withAttributes), source), kNoError);
    EXPECT_EQ(withAttributes, file("copy").isReadOnly());
    EXPECT_TRUE(file("copy").remove());
  }
  EXPECT_TRUE(source.isReadOnly());
  fs::create_directory(scratch_.path("sub"));
  EXPECT_TRUE(source.copyTo(directory("sub").getName(), true));
  EXPECT_EQ(large, contents("sub/source.x"));
}

TEST_F(FileTest, FailedCopiesChangeNoFile) {
  fileWith("readOnly", "kept").setReadOnly(true);
  scratch_.write("source", "kept");
  fs::create_hard_link(scratch_.path("source"), scratch_.path("link"));
  fs::create_directory(scratch_.path("sub"));
  const char* const rows[][2] = {{"source", "no\\where"}, {"source", "readOnly"},  {"source", "link"},
                                 {"source", "sub"},       {"source", ".\\source"}, {"missing", "source"},
                                 {"sub", "new"},          {"missing", "new"},      {"", "new"}};
  for (const auto& [from, to] : rows) {
    VelClFile source = file(from);
    EXPECT_EQ(outcome(source.copyTo(name(to), false), source), LastError(FILE_COULD_NOT_COPY, IO_PROBLEM))
        << to;
  }
  VelClFile source = file("source");
  EXPECT_EQ(outcome(source.copyTo(name("SOURCE"), false), source),
            LastError(FILE_COULD_NOT_COPY_SELF, INCONSISTENT_SITUATION));
  EXPECT_EQ("keptkept", contents("source") + contents("readOnly"));
  EXPECT_FALSE(file("new").isExistent());
  EXPECT_TRUE(fs::is_empty(scratch_.path("sub")));
}

TEST_F(FileTest, IsRemovedEvenIfReadOnlyUnlessItIsADirectory) {
  VelClFile gone = fileWith("gone", "text"), notAFile(VelClFilename(scratch_.path().c_str()), nullptr);
  gone.setReadOnly(true);
  EXPECT_TRUE(gone.remove());
  EXPECT_FALSE(gone.isExistent());
  EXPECT_EQ(kNoError, lastError(gone));
  EXPECT_EQ(outcome(gone.remove(), gone), LastError(FILE_COULD_NOT_REMOVE, IO_NOT_EXISTENT));
  EXPECT_EQ(outcome(notAFile.remove(), notAFile), LastError(FILE_COULD_NOT_REMOVE, IO_PERMISSION_DENIED));
  EXPECT_TRUE(notAFile.isExistent());
}

TEST_F(FileTest, IsNeverRenamedToAnExistingEntry) {
  VelClFile renamed = fileWith("old", "old text"), missing = file("missing");
  scratch_.write("taken", "taken text");
  fs::create_directory(scratch_.path("empty"));
  for (const char* taken : {"taken", "old", "empty"}) {
    EXPECT_EQ(outcome(renamed.renameAs(name(taken)), renamed),
              LastError(FILE_COULD_NOT_RENAME, IO_ALREADY_IN_USE));
  }
  EXPECT_EQ(outcome(missing.renameAs(name("other")), missing),
            LastError(FILE_COULD_NOT_RENAME, IO_PERMISSION_DENIED));
  for (const char* free : {"new", "NEW"}) {
    EXPECT_EQ(outcome(renamed.renameAs(name(free)), renamed), kNoError);
    EXPECT_STREQ(free, renamed.getFilename().getName());
    EXPECT_EQ("taken textold text", contents("taken") + contents(free));
  }
}

class Searcher : public VelClFile {
 public:
  Searcher() : VelClFile(VelClFilename("unused"), nullptr) {}
  using VelClFile::determineFileInEnvVarPath;
};

TEST_F(FileTest, IsFoundAlongTheDirectoriesOfAVariable) {
  const vel::test::ScratchDirectory first;
  scratch_.write("wanted.x", "");
  // A name that was cut to the limit would be that of an existing directory.
  std::string tooLong = first.path();
  while (tooLong.size() < 300) tooLong += "\\.";
  VelClEnvironmentVariable path("VEL_TEST_PATH", (";;" + tooLong + ";" + first.path()).c_str());
  VelClFilename wanted("sub\\wanted.x");
  EXPECT_FALSE(Searcher().determineFileInEnvVarPath(wanted, "VEL_TEST_UNSET"));
  EXPECT_FALSE(Searcher().determineFileInEnvVarPath(wanted, path.getName()));
  // The name keeps the last directory tried.
  EXPECT_EQ(VelClFilename(VelClLocation(first.path().c_str(), false), "wanted.x", nullptr), wanted);
  path.appendValue((";" + scratch_.path() + ";").c_str());
  EXPECT_TRUE(Searcher().determineFileInEnvVarPath(wanted, path.getName()));
  EXPECT_TRUE(wanted.isExistent());
  // An existing file keeps its name.
  EXPECT_TRUE(Searcher().determineFileInEnvVarPath(wanted, "VEL_TEST_UNSET"));
  path.resetValue();
}

TEST(TmpDirectory, IsTmpThenTempThenTheDirectoryOfTheSystem) {
  const vel::test::Variable tmp("TMP", "one"), temp("TEMP", "two");
  EXPECT_STREQ("one", velGetTmpDirectory());
  tmp.set(nullptr);
  EXPECT_STREQ("two", velGetTmpDirectory());
  temp.set(nullptr);
  EXPECT_TRUE(VelClLocation(velGetTmpDirectory(), false).isExistent());
}

TEST(OpenMode, QueriesDoNotChangeTheMode) {
  for (const bool binary : {false, true}) {
    ASSERT_TRUE(velFileSetBinaryMode(0, binary));
    const bool isBinary = velFileIsOpenedInBinaryMode(0);
    if (binary) {
      EXPECT_TRUE(isBinary);
    }
    EXPECT_NE(isBinary, velFileIsOpenedInTextMode(0));
    EXPECT_EQ(isBinary, velFileIsOpenedInBinaryMode(0));
  }
  // Closed descriptors count as text.
  for (const int notOpen : {-1, 4711, 1 << 30}) {
    EXPECT_TRUE(velFileIsOpenedInTextMode(notOpen)) << notOpen;
    EXPECT_FALSE(velFileIsOpenedInBinaryMode(notOpen)) << notOpen;
    EXPECT_FALSE(velFileSetBinaryMode(notOpen, true)) << notOpen;
  }
}

}  // namespace
