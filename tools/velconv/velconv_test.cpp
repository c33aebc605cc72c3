// Runs velconv as scripts do: its list, its answers to small texts, and files larger than its buffers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "platform/test/table.h"
#include "vel_include/vel_strict_conversion.h"

namespace {

using vel::test::readFile;
using vel::test::readTable;
using vel::test::runTool;

class VelconvFiles : public testing::Test {
 protected:
  vel::test::ScratchDirectory directory_;
};

/// The file has the ways with ICU 72. Without any ICU nothing takes its place but, for two pages, the system.
TEST_F(VelconvFiles, ListsEveryCcsidWithItsWays) {
  const auto listed =
      readTable(directory_.write("list", "headings\n" + runTool("velconv", {"-list"}).output));
  auto expected = readTable(VEL_TEST_DATA "velconv/test/listing.tsv");
  ASSERT_EQ(listed.size(), expected.size());
  const bool hasIcu =
      std::ranges::count(listed, std::vector<std::string>{"367", "367", "ASCII", "icu", "icu"}) != 0;
  int fromSystem = 0;
  for (std::size_t i = 0; i < listed.size(); ++i) {
    fromSystem += listed[i].back() == "system" ? 1 : 0;
    if (listed[i].back() == "system") continue;
    std::ranges::replace(expected[i], "icu", hasIcu ? "icu" : "none");
    EXPECT_EQ(listed[i], expected[i]);
  }
  EXPECT_LE(fromSystem, hasIcu ? 1 : 2);
}

TEST(Velconv, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velconv/test/velconv.session", true);
}

/// The library's own word in this process, which finds what the tool finds; only ICU knows some ways.
bool hasWayTo(const std::string& number) {
  using Conversion = VelClStrictConversion;
  return Conversion::getRouteFromUcs2(VelClCCSID(number.c_str())) != Conversion::VelEnRoute::NONE;
}

/// Larger than the tool's buffers; lines of other lengths, and characters of one to four bytes.
std::string manyLines() {
  std::string text;
  for (unsigned int i = 0; text.size() < 1'000'000; ++i)
    text += std::string(i % 83, static_cast<char>('!' + i % 90)) +
            (i % 3 == 0 ? "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80" : "\xE4\xB8\x80\xEF\xBD\x9E") + "\r\n";
  return text;
}

/// Every byte, often.
std::string manyBytes() {
  std::string bytes;
  for (unsigned int i = 0; i < 600'000; ++i) bytes += static_cast<char>(i * 2654435761U >> 15);
  return bytes;
}

TEST_F(VelconvFiles, ConvertsLargeFilesThereAndBack) {
  const std::string lines = manyLines(), bytes = manyBytes();
  const std::string source = directory_.path("source"), there = directory_.path("there");
  struct Row {
    const std::string &text, from, to;
  };
  const Row rows[] = {{lines, "1208", "1208"}, {lines, "1208", "65500"}, {lines, "1208", "18030"},
                      {bytes, "37", "1208"},   {bytes, "500", "1208"},   {bytes, "850", "1208"},
                      {bytes, "819", "1208"}};
  for (const auto& [text, from, to] : rows) {
    SCOPED_TRACE(from + " to " + to);
    directory_.write("source", text);
    const auto result = runTool("velconv", {"-from", from, "-to", to, "-out", there, source});
    const auto last = hasWayTo(to) ? runTool("velconv", {"-from", to, "-to", from, there}) : result;
    const bool hasWay = hasWayTo(from) && hasWayTo(to);
    EXPECT_EQ(last.exitCode, hasWay ? 0 : 2);
    EXPECT_TRUE(last.output == (hasWay ? text : ""));
    EXPECT_THAT(last.errors, testing::HasSubstr(hasWay ? "" : "There is no conversion between these code pages"));
  }
}

/// A tool whose ICU has no memory for another converter says so, and does not take this for a missing way or
/// character. Where it is put, the substitute is the first one that it finds.
TEST_F(VelconvFiles, TellsWhenIcuHasNoMemory) {
  namespace fs = std::filesystem;
  const fs::path programs = fs::path(vel::test::ownProgram()).parent_path();
  for (const auto& entry : fs::directory_iterator(programs)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("velconv.") || name == "velconv" || name == "qamc5032.dll")
      fs::copy_file(entry.path(), directory_.path(name));
  }
  for (int version = 49; version < 100; ++version)
    for (const auto& name :
         {"icuuc" + std::to_string(version) + ".dll", "libicuuc.so." + std::to_string(version)})
      fs::copy_file(programs / "substitute_icu.library", directory_.path(name));
  const auto run = [&](int openings) {
    return vel::test::runChild(directory_.path("velconv"), {"-from", "1047", "-to", "1051"},
                               {.environment = {{"LC_ALL", "C"},
                                                {"PATH", programs.string()},
                                                {"LD_LIBRARY_PATH", directory_.path()},
                                                {"VEL_SUBSTITUTE_OPENINGS", std::to_string(openings)}},
                                .input = "abc\xE4"});
  };
  int openings = 0;
  for (; openings < 50; ++openings) {
    const auto result = run(openings);
    if (result.exitCode == 0) break;
    EXPECT_EQ(result.exitCode, 200) << result.endedAbnormally;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::HasSubstr("velconv: out of memory\n")) << openings;
  }
  EXPECT_GT(openings, 1);
  EXPECT_EQ(run(openings).output, "abc\xE4");
}

}  // namespace
