// Runs veldump as its users do: what it shows, what it makes of its own dumps, and what it refuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_util.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Arguments = std::vector<std::string>;

vel::test::ChildResult veldump(const Arguments& arguments, const std::string& input = {}) {
  vel::test::ChildOptions options;
  options.environment = {{"LC_ALL", "C"}};
  options.rawOutput = true;
  options.input = input;
  auto result = vel::test::runChild("veldump", arguments, options);
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

TEST_F(Veldump, ShowsWhatWasAskedFor) {
  const std::string alphabet = "abcdefghijklmnopqrstuvwxyz";
  const std::string zeros(48, '0');
  struct Row {
    Arguments arguments;
    std::string input;
    const char* output;
  };
  const Row rows[] = {
      {{}, "", ""},
      {{"-offset", "24"},
       alphabet,
       "00000018: 79 7A __ __ __ __ __ __  __ __ __ __ __ __ __ __ | yz______________\n"},
      {{"-offset", "0x5", "-length", "0x3"},
       alphabet,
       "00000005: 66 67 68 __ __ __ __ __  __ __ __ __ __ __ __ __ | fgh_____________\n"},
      {{"-width", "4", "-offset", "1", "-length", "2"},
       alphabet,
       "00000004: 65 66 67 68 69 6A 6B 6C  __ __ __ __ __ __ __ __ | efghijkl________\n"},
      {{"-width", "8", "-offset", "3", "-length", "0xFFFFFFFFFFFFFFFF"},
       alphabet,
       "00000018: 79 7A __ __ __ __ __ __  __ __ __ __ __ __ __ __ | yz______________\n"},
      {{"-length", "0"}, alphabet, ""},
      {{"-offset", "26"}, alphabet, ""},
      {{"-offset", "18446744073709551615"}, alphabet, ""},
      // Two equal lines: nothing is left out between the first and the last.
      {{"-squeeze", "-length", "32"},
       zeros,
       "00000000: 30 30 30 30 30 30 30 30  30 30 30 30 30 30 30 30 | 0000000000000000\n"
       "00000010: 30 30 30 30 30 30 30 30  30 30 30 30 30 30 30 30 | 0000000000000000\n"},
      {{"-squeeze"},
       zeros,
       "00000000: 30 30 30 30 30 30 30 30  30 30 30 30 30 30 30 30 | 0000000000000000\n*\n"
       "00000020: 30 30 30 30 30 30 30 30  30 30 30 30 30 30 30 30 | 0000000000000000\n"},
      {{"-squeeze", "-bin", "-length", "17"},
       zeros,
       "00000000: 00110000 00110000 00110000 00110000  00110000 00110000 00110000 00110000 | 00000000\n*\n"
       "00000010: 00110000 ________ ________ ________  ________ ________ ________ ________ | 0_______\n"},
  };
  for (const Row& row : rows) {
    const auto piped = veldump(row.arguments, row.input);
    EXPECT_EQ(piped.output, row.output) << testing::PrintToString(row.arguments);
    EXPECT_EQ(piped.exitCode, 0);
    EXPECT_THAT(piped.errors, HasSubstr("VELDUMP - Hexadecimal and binary dump"));
    Arguments arguments = row.arguments;
    arguments.push_back(directory_.write("input", row.input));
    EXPECT_EQ(veldump(arguments).output, row.output) << testing::PrintToString(row.arguments);
  }
}

TEST_F(Veldump, HeadsSeveralFilesAndGoesOnBehindOneThatIsMissing) {
  const std::string a = directory_.write("a", "A");
  const std::string b = directory_.write("b", "");
  const std::string c = directory_.write("c", "C");
  const std::string missing = directory_.path("missing");
  const auto result = veldump({a, missing, b, c});
  const std::string rest(" __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | ");
  const std::string end(15, '_');
  EXPECT_EQ(result.output, "==> " + a + " <==\n00000000: 41" + rest + "A" + end + "\n==> " + b +
                               " <==\n==> " + c + " <==\n00000000: 43" + rest + "C" + end + "\n");
  EXPECT_THAT(result.errors, HasSubstr("The file could not be opened: " + missing));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(veldump({directory_.path()}).exitCode, 1);
}

constexpr const char* kFirst =
    "00000000: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 | abcdefghijklmnop\n";

TEST_F(Veldump, TakesDumpsBackAsEditorsLeaveThem) {
  struct Row {
    std::string dump;
    std::string bytes;
  };
  const std::string full = "abcdefghijklmnop";
  const Row rows[] = {
      {"", ""},
      {std::string(kFirst) + "00000010: 0d 0A __ __ __ __ __ __  __ __ __ __ __ __ __ __ |\r\n",
       full + "\r\n"},
      {"123456789ABCDEF0: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 | changed", full},
      {std::string(kFirst) + "*\n00000030: 21 __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | !\n",
       full + full + full + "!"},
      {"FFFFFFF8: 01100001 01100010 ________ ________  ________ ________ ________ ________ | ab\n"
       "FFFFFFFA: 01100011 ________ ________ ________  ________ ________ ________ ________ | c\n",
       "abc"},
  };
  for (const Row& row : rows) {
    const auto result = veldump({"-reverse"}, row.dump);
    EXPECT_EQ(result.output, row.bytes) << row.dump;
    EXPECT_EQ(result.exitCode, 0) << row.dump << result.errors;
  }
}

TEST_F(Veldump, SaysWhichLineIsNoneOfADump) {
  struct Row {
    std::string dump;
    const char* lineNumber;
  };
  const std::string first = kFirst;
  const Row rows[] = {
      {first + first, ": 2\n"},
      {first + "00000020: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 | abcdefghijklmnop\n", ": 2\n"},
      {first + "*\n00000028: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 | abcdefghijklmnop\n", ": 3\n"},
      {first + "*\n", ": 2\n"},
      {first + "*", ": 2\n"},
      {first + "*\n*\n", ": 3\n"},
      {"*\n" + first, ": 1\n"},
      {first + "\n", ": 2\n"},
      {"00000000: 61 __ 63 __ __ __ __ __  __ __ __ __ __ __ __ __ | a\n", ": 1\n"},
      {"00000000: 6G __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | a\n", ": 1\n"},
      {"00000000: 61-62 __ __ __ __ __ __  __ __ __ __ __ __ __ __ | a\n", ": 1\n"},
      {"00000000: __ __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ |\n", ": 1\n"},
      {"00000000: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70", ": 1\n"},
      {"0000000: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 | abcdefghijklmnop\n", ": 1\n"},
      {"10000000000000000: 61 62 63 64 65 66 67 68  69 6A 6B 6C 6D 6E 6F 70 |\n", ": 1\n"},
      {"00000000: 01100001 01100012 ________ ________  ________ ________ ________ ________ | a\n", ": 1\n"},
      {"00000000: ", ": 1\n"},
      {std::string(100'000, '0'), ": 1\n"},
      {std::string(100'000, '0') + "\n", ": 1\n"},
  };
  for (const Row& row : rows) {
    const auto result = veldump({"-reverse"}, row.dump);
    EXPECT_EQ(result.exitCode, 1) << row.dump.substr(0, 200);
    EXPECT_THAT(result.errors,
                HasSubstr(std::string("follow the line before it: standard input") + row.lineNumber))
        << row.dump.substr(0, 200);
  }
}

TEST_F(Veldump, RefusesCommandLinesThatMakeNoSense) {
  struct Row {
    Arguments arguments;
    int exitCode;
    const char* message;
  };
  const Row rows[] = {
      {{"-width", "3"}, 204, "The width must be 1, 2, 4 or 8"},
      {{"-width", "0"}, 204, "The width must be 1, 2, 4 or 8"},
      {{"-offset", "1k"}, 204, "A number is expected: 1k"},
      {{"-length", "18446744073709551616"}, 204, "A number is expected: 18446744073709551616"},
      {{"-length", "0x"}, 204, "A number is expected: 0x"},
      {{"-reverse", "-bin"}, 201, "Beside -reverse only file names can be given"},
      {{"-reverse", "-length", "5"}, 201, "Beside -reverse only file names can be given"},
      {{"-offset"}, 203, "offset"},
      {{"-unknown"}, 201, "Unknown command line argument: -unknown"},
  };
  for (const Row& row : rows) {
    const auto result = veldump(row.arguments, "abc");
    EXPECT_EQ(result.exitCode, row.exitCode) << row.message;
    EXPECT_THAT(result.errors, HasSubstr(row.message));
    EXPECT_THAT(result.output, testing::Not(HasSubstr("61 62 63")));
  }
  EXPECT_THAT(veldump({"--help"}).output,
              StartsWith("veldump - Hexadecimal and binary dump\n\nUsage: veldump "));
  EXPECT_EQ(veldump({"--version"}).output, "veldump VELLibR5-24\n");
}

}  // namespace
