// A save that finds no room. The shell's limit of a file's size stands for a full disk; with the signal
// ignored the write fails, and without that the program is ended by it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

namespace fs = std::filesystem;

TEST(IniDurability, AFullDiskCostsNoFile) {
  const std::string saver = fs::path(vel::test::ownProgram()).replace_filename("ini_saver").string();
  const std::string old = "[A]\no0=old\n";
  for (const char* task : {"once", "edit"})
    for (const char* onSignal : {"trap '' XFSZ;", ""}) {
      const vel::test::ScratchDirectory directory;
      const std::string path = directory.write("a.ini", old);
      const std::string script = std::string("ulimit -f 1; ") + onSignal + " \"$0\" \"$1\" \"$2\"";
      const auto result = vel::test::runChild("/bin/sh", {"-c", script, saver, path, task});
      EXPECT_NE(result.exitCode, 0);
      EXPECT_EQ(vel::test::readFile(path), old);
      const auto entries = std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator());
      EXPECT_TRUE(*onSignal == '\0' || entries == 1);
    }
}

}  // namespace
