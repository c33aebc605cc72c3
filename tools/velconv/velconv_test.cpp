// Runs velconv as scripts do: its list, its answers to small texts, and files larger than its buffers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "vel_include/vel_strict_conversion.h"

namespace {

using vel::test::readFile;
using Arguments = std::vector<std::string>;

vel::test::ChildResult velconv(const Arguments& arguments, const std::string& input = {}) {
  return vel::test::runChild("velconv", arguments,
                             {.environment = {{"LC_ALL", "C"}}, .input = input, .rawOutput = true});
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// With every "icu" changed to `way`.
std::string withWay(std::string line, const std::string& way) {
  const std::string icu = "\ticu";
  for (std::size_t at = line.find(icu); at != std::string::npos; at = line.find(icu, at + 1))
    line.replace(at + 1, icu.size() - 1, way);
  return line;
}

/// The file has the ways with ICU 72. Without any ICU nothing takes its place but, for two pages, the system.
TEST(Velconv, ListsEveryCcsidWithItsWays) {
  const auto lines = linesOf(velconv({"-list"}).output);
  auto expected = linesOf(readFile(VEL_TEST_DATA "velconv/test/listing.tsv"));
  expected.erase(expected.begin());
  ASSERT_EQ(lines.size(), expected.size());
  const bool hasIcu = std::ranges::find(lines, "367\t367\tASCII\ticu\ticu") != lines.end();
  int fromSystem = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    fromSystem += lines[i].ends_with("\tsystem") ? 1 : 0;
    if (lines[i].ends_with("\tsystem")) continue;
    EXPECT_EQ(lines[i], withWay(expected[i], hasIcu ? "icu" : "none"));
  }
  EXPECT_LE(fromSystem, hasIcu ? 1 : 2);
}

TEST(Velconv, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velconv/test/velconv.session", true);
}

class VelconvFiles : public testing::Test {
 protected:
  vel::test::ScratchDirectory directory_;
};

/// The library's own word in this process, which finds what the tool finds; only ICU knows some ways.
bool hasWayTo(const std::string& number) {
  using Conversion = VelClStrictConversion;
  return Conversion::getRouteFromUcs2(VelClCCSID(number.c_str())) != Conversion::VelEnRoute::NONE;
}

void expectNoWay(const vel::test::ChildResult& result) {
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, testing::HasSubstr("There is no way between these code pages"));
}

/// Larger than the tool's buffers; lines of other lengths, and characters of one to four bytes.
std::string manyLines() {
  std::string text;
  for (unsigned int i = 0; text.size() < 1'000'000; ++i)
    text += std::string(i % 83, static_cast<char>('!' + i % 90)) +
            (i % 3 == 0 ? "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80" : "\xE4\xB8\x80\xEF\xBD\x9E") + "\r\n";
  return text;
}

TEST_F(VelconvFiles, ConvertsLargeFilesThereAndBack) {
  const std::string text = manyLines(), source = directory_.write("source", text);
  const std::string there = directory_.path("there"), back = directory_.path("back");
  for (const std::string number : {"1208", "65500", "18030"}) {
    const auto result = velconv({"-from", "1208", "-to", number, "-out", there, source});
    if (!hasWayTo(number)) {
      expectNoWay(result);
      continue;
    }
    EXPECT_EQ(result.exitCode, 0) << number;
    EXPECT_EQ(velconv({"-from", number, "-to", "1208", there, "-out", back}).exitCode, 0) << number;
    EXPECT_TRUE(readFile(back) == text) << number;
    EXPECT_EQ(number == "1208", readFile(there) == text) << number;
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

/// Of single bytes, in their table's order; all of them come back.
TEST_F(VelconvFiles, ConvertsEveryByteThereAndBack) {
  std::string bytes;
  for (unsigned int i = 0; i < 600'000; ++i) bytes += static_cast<char>(i * 2654435761U >> 15);
  const std::string source = directory_.write("source", bytes);
  for (const std::string number : {"37", "500", "850", "819"}) {
    const auto there = velconv({"-from", number, "-to", "1208", source});
    EXPECT_EQ(there.exitCode, 0) << number;
    const auto back = velconv({"-from", "1208", "-to", number}, there.output);
    if (!hasWayTo(number)) {
      expectNoWay(back);
      continue;
    }
    EXPECT_EQ(back.exitCode, 0) << number;
    EXPECT_TRUE(back.output == bytes) << number;
  }
}

}  // namespace
