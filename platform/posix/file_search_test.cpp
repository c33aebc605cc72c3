// Tests the search for programs, libraries and message catalogs.
#include <sys/stat.h>

#include "platform/byte_files.h"
#include "platform/catalogs.h"
#include "platform/dynamic_libraries.h"
#include "platform/launching.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

/// The current directory is "here", and the search path has "first" and "second".
class FileSearch : public testing::Test {
 protected:
  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  std::string add(const std::string& name, mode_t mode = 0700) const {
    EXPECT_EQ(chmod(scratch_.write(name, "#!/bin/sh\nexit 7\n").c_str(), mode), 0);
    return path(name);
  }
  void addLibrary(const std::string& name) const {
    fs::copy_file(fs::path(test::ownProgram()).replace_filename("libsample_library.so"), path(name));
  }

  test::ScratchDirectory scratch_;

 private:
  test::CurrentDirectory here_{fs::path(scratch_.write("here/x", "")).parent_path()};
  test::Variable path_{"PATH", ("/nowhere::../first:" + path("second")).c_str()};
};

std::string program(const char* name, std::size_t capacity = 261) {
  std::string out(capacity, '#');
  return searchProgram(name, out.data(), capacity) ? out.c_str() : "-";
}

/// Runs the program, whose name has a directory, and returns its exit code.
int runByName(std::string name) {
  EXPECT_TRUE(programExists(name.c_str())) << name;
  char* const arguments[] = {name.data(), nullptr};
  std::uint32_t exitCode = 0;
  EXPECT_EQ(launchAndWait({nullptr, arguments, false}, exitCode), 0U) << name;
  return static_cast<int>(exitCode);
}

TEST_F(FileSearch, ProgramsAreInTheCurrentDirectoryThenAlongThePath) {
  EXPECT_EQ(program(""), "-");
  EXPECT_EQ(program(std::string(5000, 'x').c_str()), "-");
  const std::string anyCase = add("second/Tool");
  EXPECT_EQ(program("tool.EXE"), anyCase);
  const std::string second = add("second/tool");
  EXPECT_EQ(program("tool.exe"), second);
  EXPECT_EQ(program("tool.bin"), "-");
  EXPECT_EQ(program("tool", second.size() + 1), second);
  for (const std::size_t capacity : {std::size_t{1}, second.size()})
    EXPECT_EQ(program("tool", capacity), "-");
  add("first/tool", 0600);
  fs::create_directory(path("here/tool"));
  EXPECT_EQ(program("tool.EXE"), second);
  chmod(path("first/tool").c_str(), 0700);
  EXPECT_EQ(program("tool.EXE"), fs::current_path().string() + "/../first/tool");
  for (const char* exact : {"second/tool.EXE", "here/tool.EXE"}) {
    const std::string given = add(exact);
    EXPECT_EQ(program("tool.EXE"), given);
  }
}

TEST_F(FileSearch, ProgramsWithADirectoryMayHaveBackslashNames) {
  const std::string tool = add("Dir/Tool");
  add("here/tool");
  for (const std::string& name : {tool, tool + ".EXE", test::backSlashed(path("DIR/TOOL.EXE")),
                                  std::string("..\\dir\\tool"), std::string("C:tool.EXE")})
    EXPECT_EQ(runByName(name), 7) << name;
  for (const std::string& name :
       {"..\\dir\\absent.exe"s, "..\\" + std::string(300, 'x'), "../" + std::string(5000, 'x')})
    EXPECT_FALSE(programExists(name.c_str()));
}

/// Loads a library and calls its procedure. Returns 0 or the error code.
std::uint32_t loading(const std::string& name) {
  void* library = nullptr;
  if (const NativeError error = loadLibrary(name.c_str(), library); error != 0) return error;
  const Procedure procedure = findProcedure(library, "velSampleAnswer");
  EXPECT_EQ(procedure == nullptr ? 0 : procedure(), 42) << name;
  freeLibrary(library);
  return 0;
}

TEST_F(FileSearch, LibrariesAreTriedUnderThreeNames) {
  for (const char* name : {"given.DLL", "plain.so", "libusual.so", "bad.so"}) addLibrary(name);
  scratch_.write("bad.DLL", "no library");
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/library_names.tsv"))
    for (const std::string& name : {path(row[0]), test::backSlashed(path(row[0]))})
      EXPECT_EQ(loading(name), row.at(1) == "yes" ? 0U : std::uint32_t{ENOENT}) << name;
  for (const std::string& bad : {path("bad.DLL"), test::backSlashed(path("bad.DLL"))})
    EXPECT_EQ(loading(bad), std::uint32_t{ENOEXEC});
  EXPECT_EQ(loading("C:" + path("GIVEN.dll")), 0U);
  EXPECT_EQ(loading(""), std::uint32_t{ENOENT});
}

TEST_F(FileSearch, LibrariesOfTheSystemAreFoundByTheLoaderOnly) {
  char path[261];
  EXPECT_FALSE(searchLibrary("libc.so.6", path, sizeof path));
  void* library = nullptr;
  ASSERT_EQ(loadLibrary("libc.so.6", library), 0U);
  EXPECT_NE(findProcedure(library, "getpid"), nullptr);
  freeLibrary(library);
}

/// Returns the contents of the catalog found, or "-".
std::string catalog(const std::string& name, CatalogOwner owner = CatalogOwner::Other) {
  int descriptor = -1;
  if (openCatalog(name.c_str(), owner, descriptor) != 0) return "-";
  std::string contents(100, '#');
  std::size_t size = 0;
  EXPECT_EQ(readBytes(descriptor, contents.data(), contents.size(), size), 0);
  contents.resize(size);
  closeDescriptor(descriptor);
  return contents;
}

TEST_F(FileSearch, CatalogsAreTheFirstFilesThatAreNotEmpty) {
  scratch_.write("here/MSGS.dll", "other case");
  EXPECT_EQ(catalog("msgs.DLL"), "other case");
  fs::create_directory(path("here/msgs.DLL"));
  scratch_.write("first/msgs.DLL", "");
  EXPECT_EQ(catalog("msgs.DLL"), "-");
  scratch_.write("second/msgs.DLL", "second");
  EXPECT_EQ(catalog("msgs.DLL"), "second");
  fs::remove(path("here/msgs.DLL"));
  for (const std::string directory : {"first", "here"}) {
    scratch_.write(directory + "/msgs.DLL", directory);
    EXPECT_EQ(catalog("msgs.DLL"), directory);
  }
  ASSERT_EQ(mkfifo(path("here/pipe.DLL").c_str(), 0600), 0);
  EXPECT_EQ(catalog("pipe.DLL"), "-");
}

TEST_F(FileSearch, TheLibrarysOwnCatalogIsSearchedInTheCurrentDirectoryLast) {
  const auto own = [](const char* name) { return catalog(name, CatalogOwner::ThisLibrary); };
  EXPECT_EQ(own("own.DLL"), "-");
  scratch_.write("here/own.DLL", "here");
  EXPECT_EQ(own("own.DLL"), "here");
  // The case of its name does not matter.
  scratch_.write("second/OWN.dll", "second");
  EXPECT_EQ(own("own.DLL"), "second");
  EXPECT_EQ(catalog("own.DLL"), "here");
  // The library is linked into this program, whose directory is searched first.
  scratch_.write("second/small_catalog.DLL", "second");
  EXPECT_TRUE(own("small_catalog.DLL").starts_with("MZ"));
}

TEST_F(FileSearch, CatalogsWithADirectoryAreNotSearched) {
  scratch_.write("first/msgs.DLL", "first");
  scratch_.write("here/Sub/Msgs.DLL", "sub");
  EXPECT_EQ(catalog("sub\\msgs.dll"), "sub");
  EXPECT_EQ(catalog(path("first/msgs.DLL")), "first");
  const std::string names[] = {"",           "./msgs.DLL",   std::string(300, 'x') + "\\msgs.DLL",
                               "C:msgs.DLL", "sub/msgs.dll", std::string(5000, 'x')};
  for (const std::string& name : names) EXPECT_EQ(catalog(name), "-") << name;
}

}  // namespace

}  // namespace vel::platform
