// Operations on real files, by back-slash names on every system, and the last error of each.
#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_process.h"

namespace {

using vel::test::readFile;

class Searcher : public VelClFile {
 public:
  Searcher() : VelClFile(VelClFilename("unused"), nullptr) {}
  using VelClFile::determineFileInEnvVarPath;
};

class FileTest : public testing::Test {
 protected:
  VelClLocation directory(const char* sub = "") const {
    return VelClLocation((scratch_.path() + "\\" + sub).c_str(), true);
  }
  VelClFilename name(const char* entry) const { return VelClFilename(directory(), entry, nullptr); }
  VelClFile file(const char* entry) const { return VelClFile(name(entry), nullptr); }
  VelClFile fileWith(const char* entry, const std::string& bytes) const {
    scratch_.write(entry, bytes);
    return file(entry);
  }
  std::string contents(const char* entry) const { return readFile(scratch_.path(entry)); }

  vel::test::ScratchDirectory scratch_;
};

testing::AssertionResult leaves(const VelClFile& file, unsigned long id, VelEnErrorClass errorClass) {
  const _VelStError& error = file.getLastError();
  if (error.errorId == id && error.errorClass == errorClass) return testing::AssertionSuccess();
  return testing::AssertionFailure() << error.errorId << ", class " << static_cast<int>(error.errorClass);
}

testing::AssertionResult leavesNoError(const VelClFile& file) {
  return leaves(file, VEL_NO_ERROR, VelEnErrorClass::UNKNOWN);
}

TEST(File, TakesADefaultType) {
  const struct {
    const char* name;
    const char* defaultType;
    const char* text;
    const char* type;
  } rows[] = {{"readme", "txt", "readme.txt", "txt"},
              {"readme", ".DLL", "readme.DLL", "DLL"},
              {"a.cfg", "txt", "a.cfg", "cfg"},
              {"a.", "txt", "a.", ""},
              {"a", nullptr, "a", ""}};
  for (const auto& row : rows) {
    VelClFile file(VelClFilename(row.name), row.defaultType);
    EXPECT_STREQ(row.text, file) << row.name;
    EXPECT_STREQ(row.type, file.getFileType()) << row.name;
    file.setFileType(file.getFileType());
    EXPECT_STREQ(row.type, file.getFileType()) << row.name;
  }
}

TEST_F(FileTest, AnswersForAMissingFile) {
  const VelClFile missing = file("missing");
  EXPECT_TRUE(missing.isHidden() && missing.isReadOnly());
  EXPECT_FALSE(missing.isExistent() || missing.isDirectory());
  EXPECT_EQ(0U, missing.getFileSize());
  EXPECT_EQ(0, missing.getDateTimeOfCreation());
  EXPECT_EQ(0, missing.getDateTimeOfLastAccess());
  EXPECT_EQ(0, missing.getDateTimeOfLastModification());
}

TEST_F(FileTest, AnswersForAFile) {
  const VelClFile there = fileWith("there", "12345");
  const auto now = static_cast<int64_t>(std::time(nullptr));
  EXPECT_TRUE(there.isExistent());
  EXPECT_FALSE(there.isHidden() || there.isReadOnly());
  EXPECT_EQ(5U, there.getFileSize());
  for (const int64_t time : {there.getDateTimeOfCreation(), there.getDateTimeOfLastAccess(),
                             there.getDateTimeOfLastModification()})
    EXPECT_NEAR(static_cast<double>(now), static_cast<double>(time), 60);
}

TEST_F(FileTest, CopiesOverAnExistingTarget) {
  VelClFile source = fileWith("source", "new\r\n");
  scratch_.write("target", "a longer old text");
  EXPECT_FALSE(source.copyTo(name("no\\where"), true));
  EXPECT_TRUE(leaves(source, FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM));
  EXPECT_TRUE(source.copyTo(name("target"), true));
  EXPECT_TRUE(leavesNoError(source));
  EXPECT_EQ("new\r\n", contents("target"));
  EXPECT_FALSE(file("missing").copyTo(name("target"), true));
  EXPECT_EQ("new\r\n", contents("target"));
}

TEST_F(FileTest, CopiesReadOnlyFilesWithOrWithoutAttributes) {
  VelClFile source = fileWith("source.x", "text");
  source.setReadOnly(true);
  EXPECT_TRUE(source.isReadOnly());
  EXPECT_TRUE(source.copyTo(name("kept"), true));
  EXPECT_TRUE(source.copyTo(name("writable"), false));
  EXPECT_TRUE(file("kept").isReadOnly());
  EXPECT_FALSE(file("writable").isReadOnly());
  EXPECT_EQ("text", contents("writable"));
  source.setReadOnly(false);
  EXPECT_FALSE(source.isReadOnly());
}

TEST_F(FileTest, CopiesIntoADirectoryUnderTheSameName) {
  VelClFile source = fileWith("source.x", "text");
  scratch_.write("sub.x", "");
  EXPECT_FALSE(source.copyTo(directory(), true));
  EXPECT_TRUE(leaves(source, FILE_COULD_NOT_COPY_SELF, VelEnErrorClass::INCONSISTENT_SITUATION));
  const vel::test::ScratchDirectory other;
  EXPECT_TRUE(source.copyTo(VelClLocation(other.path().c_str(), false), true));
  EXPECT_EQ("text", readFile(other.path("source.x")));
}

TEST_F(FileTest, DoesNotCopyOntoItself) {
  VelClFile source = fileWith("source", "text");
  EXPECT_FALSE(source.copyTo(name("SOURCE"), false));
  EXPECT_TRUE(leaves(source, FILE_COULD_NOT_COPY_SELF, VelEnErrorClass::INCONSISTENT_SITUATION));
  // The same file by a name that only the system can tell.
  EXPECT_FALSE(source.copyTo(name(".\\source"), false));
  EXPECT_TRUE(leaves(source, FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM));
  EXPECT_EQ("text", contents("source"));
}

TEST_F(FileTest, RemovesReadOnlyFilesButNoDirectory) {
  VelClFile gone = fileWith("gone", "text");
  gone.setReadOnly(true);
  EXPECT_TRUE(gone.remove());
  EXPECT_TRUE(leavesNoError(gone));
  EXPECT_FALSE(gone.isExistent());
  EXPECT_FALSE(gone.remove());
  EXPECT_TRUE(leaves(gone, FILE_COULD_NOT_REMOVE, VelEnErrorClass::IO_NOT_EXISTENT));
  const vel::test::ScratchDirectory other;
  VelClFile notAFile(VelClFilename(other.path().c_str()), nullptr);
  EXPECT_FALSE(notAFile.remove());
  EXPECT_TRUE(leaves(notAFile, FILE_COULD_NOT_REMOVE, VelEnErrorClass::IO_PERMISSION_DENIED));
  EXPECT_TRUE(notAFile.isExistent());
}

TEST_F(FileTest, RenamesButNeverOntoAnExistingFile) {
  VelClFile renamed = fileWith("old", "old text");
  scratch_.write("taken", "taken text");
  EXPECT_FALSE(renamed.renameAs(name("taken")));
  EXPECT_TRUE(leaves(renamed, FILE_COULD_NOT_RENAME, VelEnErrorClass::IO_ALREADY_IN_USE));
  EXPECT_STREQ("old", renamed.getFilename().getName());
  EXPECT_EQ("taken text", contents("taken"));
  EXPECT_TRUE(renamed.renameAs(name("new.x")));
  EXPECT_TRUE(leavesNoError(renamed));
  EXPECT_STREQ("new.x", renamed.getFilename().getName());
  EXPECT_EQ("old text", contents("new.x"));
  VelClFile missing = file("old");
  EXPECT_FALSE(missing.renameAs(name("other")));
  EXPECT_TRUE(leaves(missing, FILE_COULD_NOT_RENAME, VelEnErrorClass::IO_PERMISSION_DENIED));
}

TEST_F(FileTest, IsFoundAlongAVariable) {
  const vel::test::ScratchDirectory second;
  second.write("wanted.x", "");
  const std::string tooLong(300, 'x');
  const std::string path = ";;" + tooLong + ";" + scratch_.path() + ";" + second.path() + ";";
  VelClEnvironmentVariable("VEL_TEST_PATH", path.c_str());
  const Searcher searcher;
  VelClFilename found("sub\\wanted.x");
  EXPECT_TRUE(searcher.determineFileInEnvVarPath(found, "VEL_TEST_PATH"));
  EXPECT_TRUE(found == VelClFilename(VelClLocation(second.path().c_str(), false), "wanted.x", nullptr));
  // An existing file is taken as it is, without the variable.
  EXPECT_TRUE(searcher.determineFileInEnvVarPath(found, nullptr));

  VelClFilename missing("missing");
  EXPECT_FALSE(searcher.determineFileInEnvVarPath(missing, "VEL_TEST_UNSET"));
  EXPECT_STREQ("missing", missing.getAsCString());
  EXPECT_FALSE(searcher.determineFileInEnvVarPath(missing, "VEL_TEST_PATH"));
  EXPECT_STREQ("missing", missing.getName());
  EXPECT_TRUE(missing.matchesPath(VelClFilename(VelClLocation(second.path().c_str(), false), "x", nullptr)));
  VelClEnvironmentVariable("VEL_TEST_PATH", ";;;");
  EXPECT_FALSE(searcher.determineFileInEnvVarPath(missing, "VEL_TEST_PATH"));
  VelClEnvironmentVariable("VEL_TEST_PATH", nullptr);
}

TEST(TmpDirectory, IsTmpThenTempThenTheSystems) {
  const std::string tmp = velGetTmpDirectory();
  const char* before = VelClEnvironmentVariableQueryOnly("TEMP").getValue();
  const std::string temp = before != nullptr ? before : "";
  VelClEnvironmentVariable("TMP", "one");
  VelClEnvironmentVariable("TEMP", "two");
  EXPECT_STREQ("one", velGetTmpDirectory());
  VelClEnvironmentVariable("TMP", nullptr);
  EXPECT_STREQ("two", velGetTmpDirectory());
  VelClEnvironmentVariable("TEMP", nullptr);
  EXPECT_TRUE(VelClLocation(velGetTmpDirectory(), false).isRoot() ||
              VelClLocation(velGetTmpDirectory(), false).isExistent());
  VelClEnvironmentVariable("TMP", tmp.c_str());
  VelClEnvironmentVariable("TEMP", temp.c_str());
}

}  // namespace
