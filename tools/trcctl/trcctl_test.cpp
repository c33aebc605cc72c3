// Runs trcctl as its users do, on a trace that the example wrote, and compares what it prints with files. To
// write these anew, set VEL_WRITE_EXPECTED=1; then read them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using vel::test::ChildResult;
using Arguments = std::vector<std::string>;

const std::string kSample = VEL_TRACE_SAMPLE;

ChildResult trcctl(const Arguments& arguments, const vel::test::Variables& environment = {}) {
  vel::test::ChildOptions options;
  options.environment = {{"LC_ALL", "C"}, {"TOUR_TRACE_FILE", kSample}, {"TOUR_TRACE_DETAIL", "HIGH"}};
  options.environment.insert(options.environment.end(), environment.begin(), environment.end());
  options.rawOutput = true;
  return vel::test::runChild("trcctl", arguments, options);
}

std::uint32_t number32At(const std::string& bytes, std::size_t place) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes.at(place + i));
  return number;
}

void putNumber32(std::string& bytes, std::size_t place, std::uint32_t number) {
  for (std::size_t i = 0; i < 4; ++i, number >>= 8) bytes.at(place + i) = static_cast<char>(number);
}

/// The trace with the times and numbers of the sample, and its one clipped block of data cut short.
std::string normalized(std::string trace) {
  std::uint32_t count = 0;
  for (std::size_t start = 0; start < trace.size(); ++count) {
    putNumber32(trace, start + 4, 1000 + 10 * count);
    putNumber32(trace, start + 8, 4711);
    putNumber32(trace, start + 12, 20 + count % 2);
    const std::size_t texts = static_cast<unsigned char>(trace[start + 2]) + std::size_t{0} +
                              static_cast<unsigned char>(trace[start + 3]);
    std::uint32_t size = number32At(trace, start + 16);
    if ((trace[start] & 0x1F) == 5) {
      EXPECT_EQ(size, 4096U - 48U);
      trace.erase(start + 20 + texts + 18, size - 18);
      putNumber32(trace, start + 16, size = 18);
    }
    start += 20 + texts + size;
  }
  return trace;
}

TEST(Trcctl, TheExampleWritesTheSampleOnEverySystem) {
  const vel::test::ScratchDirectory directory;
  vel::test::ChildOptions options;
  options.environment = {{"TOUR_TRACE_ACTIVE", "yes"},
                         {"TOUR_TRACE_DETAIL", "HIGH"},
                         {"TOUR_TRACE_BUFSIZE", "4"},
                         {"TOUR_TRACE_FILE", directory.path("tour.trc")}};
  ASSERT_EQ(vel::test::runChild("example_trace", {}, options).exitCode, 0);
  EXPECT_EQ(normalized(vel::test::readFile(directory.path("tour.trc"))), vel::test::readFile(kSample));
}

TEST(Trcctl, DisplaysTheSampleInTheSameBytesOnEverySystem) {
  struct Row {
    const char* expected;
    Arguments arguments;
  };
  const Row rows[] = {
      {"default", {}},
      {"indented", {"-findent", "|  ", "-fnest"}},
      {"values", {"-fhex", "-fbin", "-fnofhd", "-fdetail", "MED", "-format", "%f %m: %d\\n"}},
      {"one_line", {"-fssfhd", "-format", "%s\\t%p.%t %c %l %X %f\\n\\t%m=%d%n"}},
      {"components", {"-fcompids", "*,-7", "-findent", "    ", "-format", "%f %x %m %d%n"}},
      {"thread", {"-ftid", "21", "-fpid", "4711", "-fdetail", "off", "-fnest", "-format", "%s %f %x %d%n"}},
  };
  for (const Row& row : rows) {
    Arguments arguments = {"-key", "tour", "-display"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ChildResult result = trcctl(arguments);
    EXPECT_EQ(result.exitCode, 0) << row.expected;
    const std::string file = std::string(VEL_EXPECTED_DIR "/") + row.expected + ".txt";
    if (std::getenv("VEL_WRITE_EXPECTED") != nullptr)
      std::ofstream(file, std::ios::binary) << result.output;
    else
      EXPECT_EQ(result.output, vel::test::readFile(file)) << row.expected;
    EXPECT_THAT(result.errors, HasSubstr("Number of entries...................: 26"));
    EXPECT_THAT(result.errors, HasSubstr("Compression rate....................: 0.8"));
  }
}

TEST(Trcctl, ShowsTheStatusOfATrace) {
  const vel::test::Variables variables = {
      {"TOUR_TRACE_ACTIVE", "yes"}, {"TOUR_TRACE_BUFSIZE", "8"}, {"TOUR_TRACE_DETAIL", ""}};
  const ChildResult result = trcctl({"-key", "tour", "-instance", "i1", "-file", kSample, "-quiet",
                                     "-fdetail", "medium", "-fcompids", "3,5.7,255", "-ftid", "9"},
                                    variables);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output,
            "Trace Status\n"
            "  Key/Instance........................: tour:i1\n"
            "  Trace active........................: YES\n"
            "  Trace enabled.......................: YES\n"
            "  Trace uses shared memory............: NO\n"
            "  Trace buffer size...................: 8144 Bytes\n"
            "  Trace file..........................: " +
                kSample +
                "\n"
                "Trace Filter\n"
                "  Detail level........................: MED\n"
                "  Filter process id...................: *\n"
                "  Filter thread id....................: 9\n"
                "  Include component(s)................: 3,5.7,255\n"
                "  Exclude component(s)................: 1.2,4,8.254\n");
  EXPECT_THAT(trcctl({"-key", "tour"}).output, HasSubstr("Component Set.......................: *\n"));
  const ChildResult verbose = trcctl({"-key", "tour", "-verbose"});
  EXPECT_THAT(verbose.output, StartsWith("[VEL: TRACE: key: tour]\n"));
}

/// The place of the colon behind a label, in characters, whichever code page they are in.
std::size_t columnOfColon(const std::string& line) {
  std::size_t column = 0;
  for (std::size_t i = 0; i < line.find(": "); ++i)
    if ((static_cast<unsigned char>(line[i]) & 0xC0) != 0x80) ++column;
  return column;
}

/// Runs once more in German.
TEST(TrcctlInUsersLanguage, AlignsLabelsWithUmlauts) {
  const char* const language = std::getenv("LC_ALL");
  ASSERT_NE(language, nullptr);
  std::istringstream page(trcctl({"-key", "tour"}, {{"LC_ALL", language}}).output);
  std::size_t umlauts = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("  ")) continue;
    EXPECT_EQ(columnOfColon(line), 2 + 36U) << line;
    for (const char c : line) umlauts += static_cast<unsigned char>(c) >= 0xC0 ? 1 : 0;
  }
  EXPECT_EQ(umlauts, std::string(language) == "C" ? 0U : 3U);
}

TEST(Trcctl, EndsWithTheFaultsOfTheFile) {
  const vel::test::ScratchDirectory directory;
  const std::string sample = vel::test::readFile(kSample);
  const std::string cut = directory.write("cut.trc", sample.substr(0, sample.size() - 1));
  const std::string bad = directory.write("bad.trc", sample + std::string(20, '\0'));
  struct Row {
    Arguments arguments;
    const char* message;
    int exitCode;
  };
  const Row rows[] = {
      {{"-key", "tour", "-file", "missing.trc"}, "Specified trace file not found: missing.trc", 1},
      {{"-key", "tour", "-display", "-file", "missing.trc"},
       "Specified trace file not found: missing.trc",
       1},
      {{"-key", "unheard-of", "-display"},
       "Trace file could not be identified; specified key may be invalid",
       1},
      {{"-key", ""}, "Trace file could not be identified", 1},
      {{"-key", "tour", "-file", directory.path(), "-display"},
       "Could not open trace file for read access",
       1},
      {{"-key", "tour", "-file", cut, "-display"}, "Trace file corrupted: unexpected end-of-file", 2},
      {{"-key", "tour", "-file", bad, "-display"}, "Trace file corrupted: invalid data found", 2},
      {{"-key", "tour", "-file", std::string(261, 'x')}, "Could not open trace file for read access", 1},
      {{"-key", "tour", "-instance", ""}, "Invalid instance", 4},
      {{"-key", "tour", "-format"}, "No value specified for command line switch: format", 203},
      {{"-display"}, "Missing command line switch: key", 201},
      {{"-key", "tour", "-dump"}, "Unknown command line argument: -dump", 201},
  };
  for (const Row& row : rows) {
    const ChildResult result = trcctl(row.arguments);
    EXPECT_THAT(result.errors, HasSubstr(row.message));
    EXPECT_EQ(result.exitCode, row.exitCode) << row.message;
  }
  // What stands before the fault is shown.
  EXPECT_THAT(trcctl({"-key", "tour", "-file", bad, "-display"}).output,
              StartsWith(vel::test::readFile(VEL_EXPECTED_DIR "/default.txt")));
}

TEST(Trcctl, AnswersHelpAndVersion) {
  const ChildResult help = trcctl({"--help"});
  EXPECT_THAT(help.output, StartsWith("trcctl - Trace Controller\n\nUsage: trcctl -key <key>"));
  EXPECT_THAT(help.output, HasSubstr("%%  percent sign\nEvery format must hold %d exactly once.\n"));
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(trcctl({"--version"}).output, StartsWith("trcctl VELLibR"));
}

}  // namespace
