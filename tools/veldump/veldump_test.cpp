// Runs veldump as its users do: its session, and round trips of large files.
#include "platform/test/test.h"
#include "vel_include/vel_util.h"

namespace {

using vel::test::runTool;

/// Returns more bytes than the tool's buffers hold, with all values, runs of equal lines and an incomplete
/// last line.
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

TEST(Veldump, PrintsTheDumpOfTheLibraryAndReversesIt) {
  const vel::test::ScratchDirectory directory;
  const std::string bytes = manyBytes(), file = directory.write("bytes", bytes);
  for (const bool binary : {false, true}) {
    std::vector<std::string> arguments = {file};
    if (binary) arguments.emplace_back("-bin");
    const auto dump = runTool("veldump", arguments);
    EXPECT_EQ(dump.exitCode, 0);
    EXPECT_TRUE(dump.output == libraryDump(bytes, binary)) << binary;
    EXPECT_TRUE(runTool("veldump", {"-reverse"}, dump.output).output == bytes) << binary;
    arguments.emplace_back("-squeeze");
    const auto squeezed = runTool("veldump", arguments);
    EXPECT_LT(squeezed.output.size(), dump.output.size() * 2 / 3);
    EXPECT_TRUE(runTool("veldump", {"-reverse", directory.write("dump", squeezed.output)}).output == bytes);
  }
  EXPECT_TRUE(runTool("veldump", {}, bytes).output == libraryDump(bytes, false));
}

/// A pipe that is larger than what is kept of it.
TEST(Veldump, FindsOffsetsFromTheEndOfPipes) {
  const std::string bytes = manyBytes();
  for (const std::size_t count : {std::size_t{1}, std::size_t{100'000}, bytes.size()}) {
    const auto dump = runTool("veldump", {"-offset", "-" + std::to_string(count)}, bytes);
    EXPECT_TRUE(runTool("veldump", {"-reverse"}, dump.output).output == bytes.substr(bytes.size() - count))
        << count;
  }
}

TEST(Veldump, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "veldump/test/veldump.session", true);
}

}  // namespace
