#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;

TEST(DllFile, LoadsALibraryBesideTheProgram) {
  const VelClDllProcLoaderFile library("sample_library");
  ASSERT_TRUE(library.isValid());
  EXPECT_NE(library.getHandle(), nullptr);
  EXPECT_TRUE(library.isFoundInSystemPath());
  EXPECT_TRUE(library.getFilename().isAbsolute());
  EXPECT_EQ(library.getLastError().getErrorId(), 0UL);
  const VelProcedure procedure = library.getProcedure("velSampleAnswer");
  ASSERT_NE(procedure, nullptr);
  EXPECT_EQ(procedure(), 42);
  EXPECT_EQ(library.getProcedure("velNoSuchProcedure"), nullptr);
  EXPECT_EQ(library.getProcedure(nullptr), nullptr);
}

TEST(DllFile, LoadsALibraryByItsPath) {
  const fs::path directory = fs::path(vel::test::ownProgram()).parent_path();
  const VelClDllFile library((directory / "sample_library").string().c_str());
  EXPECT_TRUE(library.isValid());
  EXPECT_FALSE(library.isFoundInSystemPath());
}

TEST(DllFile, MissingLibrariesLeaveTheSystemsCode) {
  struct Row {
    const char* name;
    const char* completed;
  };
  for (const Row& row : {Row{"vel_no_such_library", "vel_no_such_library.DLL"},
                         Row{"C:\\nowhere\\sample_library", "C:\\nowhere\\sample_library.DLL"},
                         Row{"nowhere/sample_library.xyz", "nowhere/sample_library.xyz"}, Row{"", ".DLL"}}) {
    const VelClDllProcLoaderFile library(row.name);
    EXPECT_FALSE(library.isValid()) << row.name;
    EXPECT_STREQ(library.getAsCString(), row.completed);
    EXPECT_FALSE(library.isFoundInSystemPath());
    EXPECT_NE(library.getLastError().getErrorId(), 0UL);
    EXPECT_LT(library.getLastError().getErrorId(), static_cast<unsigned long>(INIFILE_INVAL_SECTION));
    EXPECT_EQ(library.getLastError().errorClass, VelEnErrorClass::RESOURCE_MISSING);
    EXPECT_EQ(library.getProcedure("velSampleAnswer"), nullptr);
  }
}

TEST(DllFile, RefusesAFileThatIsNoLibrary) {
  const vel::test::ScratchDirectory scratch;
  const VelClDllFile library(scratch.write("text.DLL", "no library").c_str());
  EXPECT_FALSE(library.isValid());
  EXPECT_NE(library.getLastError().getErrorId(), 2UL);
  EXPECT_EQ(library.getLastError().errorClass, VelEnErrorClass::RESOURCE_MISSING);
}

TEST(DllFile, PlainFunctionsDoTheSame) {
  void* const handle = velDllProcLoaderOpen("sample_library");
  ASSERT_NE(handle, nullptr);
  const VelProcedure procedure = velDllProcLoaderGetProcedure(handle, "velSampleAnswer");
  ASSERT_NE(procedure, nullptr);
  EXPECT_EQ(procedure(), 42);
  EXPECT_EQ(velDllProcLoaderGetProcedure(handle, "velNoSuchProcedure"), nullptr);
  velDllProcLoaderClose(handle);
  EXPECT_EQ(velDllProcLoaderOpen("vel_no_such_library"), nullptr);
  EXPECT_EQ(velDllProcLoaderOpen(nullptr), nullptr);
  EXPECT_EQ(velDllProcLoaderGetProcedure(nullptr, "velSampleAnswer"), nullptr);
  velDllProcLoaderClose(nullptr);
}

}  // namespace
