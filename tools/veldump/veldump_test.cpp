// Runs veldump as its users do: what it shows, what it makes of its own dumps, and what it refuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "vel_include/vel_util.h"

namespace {

using testing::HasSubstr;
using Arguments = std::vector<std::string>;

vel::test::ChildResult veldump(const Arguments& arguments, const std::string& input = {}) {
  auto result = vel::test::runChild("veldump", arguments,
                                    {.environment = {{"LC_ALL", "C"}}, .input = input, .rawOutput = true});
  std::erase(result.errors, '\r');
  return result;
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

TEST_F(Veldump, ShowsTheSamePartsOfAFileAndOfItsInput) {
  const std::string bytes = "abcdefghijklmnopqrstuvwxyz";
  const std::string file = directory_.write("input", bytes);
  const Arguments parts[] = {{"-offset", "24"}, {"-width", "4", "-offset", "1", "-length", "2"},
                             {"-offset", "26"}, {"-offset", "18446744073709551615"},
                             {"-length", "0"},  {"-length", "26"}};
  for (const Arguments& part : parts) {
    Arguments arguments = part;
    arguments.push_back(file);
    EXPECT_EQ(veldump(arguments).output, veldump(part, bytes).output) << testing::PrintToString(part);
  }
}

TEST_F(Veldump, HeadsSeveralFilesAndGoesOnBehindOneThatIsMissing) {
  const std::string a = directory_.write("a", "A"), b = directory_.write("b", ""),
                    c = directory_.write("c", "C"), missing = directory_.path("missing");
  const auto result = veldump({a, missing, b, c});
  const std::string rest(" __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | ");
  const std::string end(15, '_');
  EXPECT_EQ(result.output, "==> " + a + " <==\n00000000: 41" + rest + "A" + end + "\n==> " + b +
                               " <==\n==> " + c + " <==\n00000000: 43" + rest + "C" + end + "\n");
  EXPECT_THAT(result.errors, HasSubstr("The file could not be opened: " + missing));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(veldump({directory_.path()}).exitCode, 1);
}

TEST_F(Veldump, RefusesLinesOfAnyLength) {
  for (const char* end : {"", "\n"}) {
    const auto result = veldump({"-reverse"}, std::string(100'000, '0') + end);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("follow the line before it: standard input: 1\n"));
  }
}

}  // namespace
