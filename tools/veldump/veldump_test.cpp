// Runs veldump as its users do: what it shows, what it makes of its own dumps, and what it refuses.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "vel_include/vel_util.h"

namespace {

using Arguments = std::vector<std::string>;

vel::test::ChildResult veldump(const Arguments& arguments, const std::string& input = {}) {
  return vel::test::runChild("veldump", arguments,
                             {.environment = {{"LC_ALL", "C"}}, .input = input, .rawOutput = true});
}

/// Larger than the tool's buffers, no whole number of lines, all byte values, and runs of equal lines.
std::string manyBytes() {
  std::string bytes;
  for (unsigned int i = 0; i < 200'000; ++i) bytes += static_cast<char>(i * 2654435761U >> 24);
  bytes.insert(100'000, std::string(160'001, '\0'));
  return bytes + "the end\r\n\x1A";
}

std::string libraryDump(const std::string& bytes, bool binary) {
  std::ostringstream dump;
  binary ? velDumpBin(dump, bytes.data(), bytes.size()) : velDump(dump, bytes.data(), bytes.size());
  return dump.str();
}

class Veldump : public testing::Test {
 protected:
  vel::test::ScratchDirectory directory_;
};

TEST_F(Veldump, PrintsTheLibrarysLinesAndTakesThemBack) {
  const std::string bytes = manyBytes();
  const std::string file = directory_.write("bytes", bytes);
  for (const bool binary : {false, true}) {
    Arguments arguments = {file};
    if (binary) arguments.insert(arguments.begin(), "-bin");
    const auto dump = veldump(arguments);
    EXPECT_EQ(dump.exitCode, 0);
    EXPECT_TRUE(dump.output == libraryDump(bytes, binary)) << binary;
    EXPECT_TRUE(veldump({"-reverse"}, dump.output).output == bytes) << binary;
    arguments.insert(arguments.begin(), "-squeeze");
    const auto squeezed = veldump(arguments);
    EXPECT_LT(squeezed.output.size(), dump.output.size() * 2 / 3);
    EXPECT_TRUE(veldump({"-reverse", directory_.write("dump", squeezed.output)}).output == bytes) << binary;
  }
  EXPECT_TRUE(veldump({}, bytes).output == libraryDump(bytes, false));
}

TEST_F(Veldump, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "veldump/test/veldump.session", true);
}

}  // namespace
