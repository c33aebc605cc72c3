// Tests loading dynamic libraries, and the codes of failures.
#include "platform/test/test.h"
#include "vel_include/vel_process.h"

namespace {

TEST(DllFile, IsLoadedFromTheProgramsDirectoryOrByItsPath) {
  const VelClDllProcLoaderFile library("sample_library");
  ASSERT_TRUE(library.isValid());
  EXPECT_TRUE(library.isFoundInSystemPath());
  EXPECT_TRUE(library.getFilename().isAbsolute());
  EXPECT_EQ(library.getLastError().getErrorId(), 0UL);
  const VelProcedure procedure = library.getProcedure("velSampleAnswer");
  ASSERT_NE(procedure, nullptr);
  EXPECT_EQ(procedure(), 42);
  for (const char* missing : {"velNoSuchProcedure", static_cast<const char*>(nullptr)})
    EXPECT_EQ(library.getProcedure(missing), nullptr);
  const auto path = std::filesystem::path(vel::test::ownProgram()).replace_filename("sample_library");
  const VelClDllFile byPath(path.string().c_str());
  EXPECT_EQ(std::tuple(byPath.isValid(), byPath.isFoundInSystemPath()), std::tuple(true, false));
}

TEST(DllFile, FailsWithTheErrorCodeOfTheSystem) {
  const vel::test::ScratchDirectory scratch;
  const std::string noLibrary = scratch.write("text.DLL", "no library");
  const bool isWindows = std::filesystem::path::preferred_separator == '\\';
  // ERROR_MOD_NOT_FOUND and ERROR_BAD_EXE_FORMAT, or ENOENT and ENOEXEC.
  const unsigned long missing = isWindows ? 126 : 2, refused = isWindows ? 193 : 8;
  const struct {
    const char *name, *completed;
    bool isMissing;
  } rows[] = {{"vel_no_such_library", "vel_no_such_library.DLL", true},
              {"C:\\nowhere\\sample_library", "C:\\nowhere\\sample_library.DLL", true},
              {"nowhere/sample_library.xyz", "nowhere/sample_library.xyz", true},
              {noLibrary.c_str(), noLibrary.c_str(), false},
              {"", ".DLL", true}};
  for (const auto& row : rows) {
    const VelClDllProcLoaderFile library(row.name);
    EXPECT_EQ(std::tuple(library.isValid(), library.isFoundInSystemPath()), std::tuple(false, false));
    EXPECT_STREQ(library.getAsCString(), row.completed);
    EXPECT_EQ(library.getLastError().getErrorId(), row.isMissing ? missing : refused) << row.name;
    EXPECT_EQ(library.getLastError().errorClass, VelEnErrorClass::RESOURCE_MISSING);
    EXPECT_EQ(library.getProcedure("velSampleAnswer"), nullptr);
  }
}

TEST(DllProcLoader, AgreesWithTheClass) {
  void* const handle = velDllProcLoaderOpen("sample_library");
  const VelProcedure procedure = velDllProcLoaderGetProcedure(handle, "velSampleAnswer");
  ASSERT_NE(procedure, nullptr);
  EXPECT_EQ(procedure(), 42);
  velDllProcLoaderClose(handle);
  for (const char* missing : {"vel_no_such_library", static_cast<const char*>(nullptr)})
    EXPECT_EQ(velDllProcLoaderOpen(missing), nullptr);
  EXPECT_EQ(velDllProcLoaderGetProcedure(nullptr, "velSampleAnswer"), nullptr);
  velDllProcLoaderClose(nullptr);
}

}  // namespace
