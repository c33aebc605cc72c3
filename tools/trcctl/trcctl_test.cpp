// Runs trcctl as its users do, on a trace that the example wrote.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"

namespace {

const std::string kSample = VEL_TEST_DATA "../trace/test/tour.trc";

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

TEST(Trcctl, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "trcctl/test/trcctl.session", true);
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
  const vel::test::ChildOptions options{.environment = {{"TOUR_TRACE_FILE", kSample}}};
  std::istringstream page(vel::test::runChild("trcctl", {"-key", "tour"}, options).output);
  std::size_t umlauts = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("  ")) continue;
    EXPECT_EQ(columnOfColon(line), 2 + 36U) << line;
    for (const char c : line) umlauts += static_cast<unsigned char>(c) >= 0xC0 ? 1 : 0;
  }
  EXPECT_EQ(umlauts, std::string(language) == "C" ? 0U : 3U);
}

}  // namespace
